#include "tools/vantor/GalleryCommand.h"

#include <filesystem>
#include <fstream>
#include <vector>

#include "frame/ThemePalette.h"
#include "frame/USButton.h"
#include "frame/USLabel.h"
#include "host/Form.h"
#include "host/LibraryClasses.h"
#include "imaging/c32bppDIB.h"
#include "platform/Desktop.h"
#include "platform/HeadlessPresenter.h"

namespace vantor::tools {

namespace {

const char* const kThemeNames[] = {"Office Blue",     "Office Silver",    "Windows 8",
                                   "Windows 8 Green", "Windows 8 Red",    "Windows 8 Orange",
                                   "Windows 8 Black"};
const char* const kAlignmentNames[] = {
    "Picture BehindText",    "Picture BottomEdge",     "Picture BottomOfCaption",
    "Picture LeftEdge",      "Picture LeftOfCaption",  "Picture RightEdge",
    "Picture RightOfCaption", "Picture TopEdge",       "Picture TopOfCaption"};

struct Shot {
  std::string file;
  std::string caption;
};

struct Section {
  std::string title;
  std::vector<std::string> columns;
  std::vector<std::pair<std::string, std::vector<Shot>>> rows;
};

// A small picture for the buttons: a green disc with a white tick, drawn here
// so the gallery needs no file of its own.
std::vector<uint8_t> TickPng() {
  constexpr int kSide = 16;
  std::vector<uint8_t> px(kSide * kSide * 4, 0);
  for (int y = 0; y < kSide; ++y)
    for (int x = 0; x < kSide; ++x) {
      const double dx = x - 7.5, dy = y - 7.5;
      if (dx * dx + dy * dy > 60) continue;
      uint8_t* p = &px[(static_cast<size_t>(y) * kSide + x) * 4];
      const bool tick = (x >= 4 && x <= 7 && y == x + 4) || (x >= 7 && x <= 12 && y == 18 - x) ||
                        (x >= 4 && x <= 7 && y == x + 3) || (x >= 7 && x <= 12 && y == 17 - x);
      p[0] = tick ? 255 : 0x40, p[1] = tick ? 255 : 0xA0, p[2] = tick ? 255 : 0x30, p[3] = 255;
    }
  imaging::c32bppDIB dib;
  std::vector<uint8_t> png;
  if (dib.SetDIBbits(px, kSide, kSide, true, false, true)) dib.SaveToStream_PNG(png);
  return png;
}

std::string Escape(const std::string& s) {
  std::string out;
  for (char c : s) {
    if (c == '<') out += "&lt;";
    else if (c == '>') out += "&gt;";
    else if (c == '&') out += "&amp;";
    else out += c;
  }
  return out;
}

bool WritePage(const std::filesystem::path& dir, const std::vector<Section>& sections) {
  std::ofstream page(dir / "index.html", std::ios::trunc);
  page << "<!DOCTYPE html>\n<html lang=\"pt-BR\"><head><meta charset=\"utf-8\">\n"
          "<title>Vantor: galeria de controles</title>\n<style>\n"
          "body{font-family:sans-serif;margin:2em;background:#fafafa;color:#222}\n"
          "table{border-collapse:collapse;margin-bottom:2em}\n"
          "td,th{padding:6px 10px;border:1px solid #ddd;text-align:center;vertical-align:middle}\n"
          "th{background:#eee;font-weight:normal}\nimg{image-rendering:pixelated}\n"
          "figcaption{font-size:80%;color:#666}\n</style></head><body>\n"
          "<h1>Vantor: galeria de controles</h1>\n";
  for (const Section& s : sections) {
    page << "<h2>" << Escape(s.title) << "</h2>\n<table>\n<tr><th></th>";
    for (const std::string& c : s.columns) page << "<th>" << Escape(c) << "</th>";
    page << "</tr>\n";
    for (const auto& [name, shots] : s.rows) {
      page << "<tr><th>" << Escape(name) << "</th>";
      for (const Shot& shot : shots) {
        page << "<td><figure><img src=\"" << shot.file << "\" alt=\"" << Escape(shot.caption)
             << "\"><figcaption>" << Escape(shot.caption) << "</figcaption></figure></td>";
      }
      page << "</tr>\n";
    }
    page << "</table>\n";
  }
  page << "</body></html>\n";
  return static_cast<bool>(page);
}

}  // namespace

int RunGallery(std::span<const std::string> args, std::ostream& out, std::ostream& err) {
  if (args.size() != 1) {
    err << "usage: vantor gallery OUTDIR\n";
    return 2;
  }
  const std::filesystem::path dir(args[0]);
  std::error_code ec;
  std::filesystem::create_directories(dir, ec);
  if (!std::filesystem::is_directory(dir, ec)) {
    err << "cannot make the folder '" << args[0] << "'\n";
    return 1;
  }
  platform::ResetDesktop();
  host::RegisterLibraryClasses();
  platform::HeadlessPresenter screen(1024, 768);
  std::vector<Section> sections;
  bool failed = false;
  auto save = [&](HWND hwnd, const std::string& file) {
    screen.Pump();
    if (!screen.SaveWindow(hwnd, (dir / file).string())) {
      err << "cannot write '" << (dir / file).string() << "'\n";
      failed = true;
    }
  };
  const std::vector<uint8_t> tick = TickPng();

  // Buttons: every theme in every state, with a short and a wrapping caption.
  {
    Section s{"USButton: temas e estados",
              {"normal", "hot", "down", "disabled", "focused", "checked", "legenda longa"},
              {}};
    for (int32_t theme = 0; theme < frame::ThemePalette::kThemeCount; ++theme) {
      host::Form form(400, 200);
      form.SetUserMode(true);
      auto* b = dynamic_cast<frame::USButton*>(form.Add("USButton", u"Botao", 150, 150, 1800, 480));
      auto* wrap =
          dynamic_cast<frame::USButton*>(form.Add("USButton", u"Longo", 150, 900, 1800, 600));
      if (b == nullptr || wrap == nullptr) return 1;
      form.Show();
      b->put_Theme(theme);
      b->put_Caption(u"&Confirmar");
      b->LoadImage_FromArray(tick, 0, 0, 0);
      wrap->put_Theme(theme);
      wrap->put_Caption(u"Gerar o relatório mensal de vendas");
      std::vector<Shot> shots;
      const char* const states[] = {"normal", "hot", "down", "disabled", "focused", "checked"};
      for (int st = 0; st < 6; ++st) {
        if (st == 3) {
          b->put_Enabled(false);
        } else if (st == 4) {
          b->put_Enabled(true);
          b->ShowState(frame::State_Normal, true);
        } else if (st == 5) {
          b->put_CheckBoxMode(true);
          b->put_Value(true);
          b->ShowState(frame::State_Normal, false);
        } else {
          b->ShowState(st, false);
        }
        const std::string file = "button-theme" + std::to_string(theme) + "-" + states[st] + ".png";
        save(b->hWnd(), file);
        shots.push_back({file, states[st]});
      }
      wrap->ShowState(frame::State_Normal, false);
      const std::string file = "button-theme" + std::to_string(theme) + "-wrap.png";
      save(wrap->hWnd(), file);
      shots.push_back({file, "quebra de linha"});
      s.rows.emplace_back(kThemeNames[theme], std::move(shots));
    }
    out << "USButton: " << s.rows.size() << " themes\n";
    sections.push_back(std::move(s));
  }

  // Buttons: the nine picture placements.
  {
    Section s{"USButton: posição da figura", {"", "", ""}, {}};
    host::Form form(400, 200);
    form.SetUserMode(true);
    form.Show();
    std::vector<Shot> row;
    for (int32_t a = 0; a <= 8; ++a) {
      auto* b = dynamic_cast<frame::USButton*>(form.Add("USButton", {}, 150, 150, 1350, 750));
      if (b == nullptr) return 1;
      b->put_Caption(u"Imprimir");
      b->put_PictureAlignment(a);
      b->LoadImage_FromArray(tick, 0, 0, 0);
      b->ShowState(frame::State_Normal, false);
      const std::string file = "button-picture" + std::to_string(a) + ".png";
      save(b->hWnd(), file);
      row.push_back({file, kAlignmentNames[a]});
      form.Remove(b->GetExtender()->Name());
      if (row.size() == 3) {
        s.rows.emplace_back("", std::move(row));
        row.clear();
      }
    }
    out << "USButton: 9 picture placements\n";
    sections.push_back(std::move(s));
  }

  // Labels: the tag language, colours, breaks and wrapping, both back styles.
  {
    Section s{"USLabel: marcas de formatação", {"texto", "resultado"}, {}};
    const char16_t* const captions[] = {
        u"Texto <b>negrito</b>, <i>itálico</i>, <u>sublinhado</u> e <s>riscado</s>",
        u"<c=255,0,0>Vermelho</c>, <c=0,128,0>verde</c> e <c=0,0,255>azul</c>",
        u"Primeira linha<br>Segunda linha<br><b>Terceira</b> linha",
        u"Uma legenda comprida que quebra as linhas dentro da largura do rótulo",
        u"Marca desconhecida <x> fica como texto",
    };
    host::Form form(400, 200);
    form.SetUserMode(true);
    form.Show();
    int n = 0;
    for (const char16_t* caption : captions) {
      for (int style = 0; style < 2; ++style) {
        auto* l = dynamic_cast<frame::USLabel*>(form.Add("USLabel", {}, 150, 150, 3600, 900));
        if (l == nullptr) return 1;
        // A fixed box, so that wrapping shows; AutoSize would fit the box to
        // the text instead.
        l->put_AutoSize(false);
        form.Move(l->GetExtender()->Name(), 150, 150, 3600, 900);
        l->put_BackStyle(static_cast<frame::ENUM_BACK_STYLE>(style == 0 ? 0 : frame::kBackStyleOpaque));
        if (style == 1) l->put_BackColor(0xE0FFFF);
        l->put_Caption(caption);
        const std::string file = "label" + std::to_string(n) + (style ? "-opaque" : "") + ".png";
        save(l->hWnd(), file);
        std::string text = ToUtf8(caption);
        s.rows.emplace_back(style ? "(fundo opaco)" : "",
                            std::vector<Shot>{{"", text}, {file, style ? "Opaque" : "Transparent"}});
        form.Remove(l->GetExtender()->Name());
      }
      ++n;
    }
    out << "USLabel: " << n << " captions\n";
    sections.push_back(std::move(s));
  }

  if (!WritePage(dir, sections)) {
    err << "cannot write '" << (dir / "index.html").string() << "'\n";
    return 1;
  }
  out << "index.html written to " << dir.string() << "\n";
  return failed ? 1 : 0;
}

}  // namespace vantor::tools
