#include "tools/vantor/ImageCommand.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

#include "imaging/c32bppDIB.h"
#include "imaging/cPNGwriter.h"
#include "runtime/String.h"
#include "runtime/Variant.h"
#include "server/TypeLibrary.h"

namespace vantor::tools {

namespace {

using imaging::c32bppDIB;

constexpr const char* kUsage =
    "usage: vantor image info FILE | vantor image convert [--quality N] [--filter N] IN OUT";

// The enumeration member's name as the type library spells it, so that the
// listing and this command never disagree; the number when it has none.
std::string EnumName(std::string_view enumeration, int32_t value) {
  if (const server::EnumInfo* e = server::TypeLibrary::Get().FindEnum(enumeration)) {
    for (const server::EnumMember& m : e->members)
      if (m.value == value) return std::string(m.name);
  }
  return std::to_string(value);
}

std::string Extension(const std::string& path) {
  std::string ext = std::filesystem::path(path).extension().string();
  std::transform(ext.begin(), ext.end(), ext.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return ext;
}

std::optional<int32_t> Number(const std::string& text) {
  int32_t value = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// Reads `path` into `surface`, or says on `err` why not.
bool Load(const std::string& path, c32bppDIB& surface, std::ostream& err) {
  std::error_code ec;
  const std::filesystem::file_status status = std::filesystem::status(path, ec);
  if (!std::filesystem::exists(status)) {
    err << "vantor image: cannot open '" << path << "': no such file\n";
    return false;
  }
  if (std::filesystem::is_directory(status)) {
    err << "vantor image: cannot open '" << path << "': it is a folder\n";
    return false;
  }
  if (!surface.LoadPicture_File(FromUtf8(path))) {
    // JPEG and the rest are read through GDI+ alone; say so when that is
    // what stood in the way.
    char magic[3] = {};
    std::ifstream(path, std::ios::binary).read(magic, 3);
    const bool jpeg = magic[0] == '\xFF' && magic[1] == '\xD8' && magic[2] == '\xFF';
    err << "vantor image: '" << path << "' is not a picture this build reads ("
        << (jpeg && !surface.get_isGDIplusEnabled() ? "a JPEG needs GDI+, which is not here"
                                                    : "PNG, GIF, BMP, ICO or CUR")
        << ")\n";
    return false;
  }
  return true;
}

int Info(const std::string& path, std::ostream& out, std::ostream& err) {
  c32bppDIB surface;
  if (!Load(path, surface, err)) return 1;
  out << "Width: " << surface.get_Width() << "\n"
      << "Height: " << surface.get_Height() << "\n"
      << "ImageType: " << EnumName("ENUM_IMAGE_FORMAT", surface.get_ImageType()) << "\n"
      << "Alpha: " << EnumName("ENUM_ALPHA_TYPE", surface.get_Alpha()) << "\n";
  return 0;
}

int Convert(std::span<const std::string> args, std::ostream& out, std::ostream& err) {
  std::optional<int32_t> quality, filter;
  std::vector<std::string> files;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a == "--quality" || a == "--filter") {
      const std::optional<int32_t> n = i + 1 < args.size() ? Number(args[i + 1]) : std::nullopt;
      const bool isQuality = a == "--quality";
      const int32_t low = isQuality ? 1 : 0, high = isQuality ? 100 : 6;
      if (!n || *n < low || *n > high) {
        err << "vantor image: " << a << " takes a whole number from " << low << " to " << high
            << "\n";
        return 2;
      }
      (isQuality ? quality : filter) = n;
      ++i;
    } else if (a.starts_with("--")) {
      err << "vantor image: unknown option '" << a << "'\n";
      return 2;
    } else {
      files.push_back(a);
    }
  }
  if (files.size() != 2) {
    err << "vantor image: convert takes an input and an output file; " << kUsage << "\n";
    return 2;
  }
  const std::string& in = files[0];
  const std::string& target = files[1];
  const std::string ext = Extension(target);
  const bool png = ext == ".png", bmp = ext == ".bmp", gif = ext == ".gif",
             jpg = ext == ".jpg" || ext == ".jpeg";
  if (!png && !bmp && !gif && !jpg) {
    err << "vantor image: cannot write '" << target << "': unknown extension '" << ext
        << "' (use .png, .bmp, .gif or .jpg)\n";
    return 2;
  }
  if (quality && !jpg) {
    err << "vantor image: --quality is for .jpg output only\n";
    return 2;
  }
  if (filter && !png) {
    err << "vantor image: --filter is for .png output only\n";
    return 2;
  }

  c32bppDIB surface;
  if (!Load(in, surface, err)) return 1;
  const String name = FromUtf8(target);
  bool saved = false;
  if (png) {
    if (filter) surface.PngPropertySet(imaging::Png_FilterMethod, Variant(*filter));
    saved = surface.SaveToFile_PNG(name);
  } else if (bmp) {
    saved = surface.SaveToFile_Bitmap(name);
  } else if (gif) {
    saved = surface.SaveToFile_GIF(name);
  } else {
    saved = surface.SaveToFile_JPG(name, quality.value_or(75));
  }
  if (!saved) {
    err << "vantor image: cannot write '" << target << "'\n";
    return 1;
  }
  out << "wrote " << target << " (" << surface.get_Width() << " x " << surface.get_Height()
      << ")\n";
  return 0;
}

}  // namespace

int RunImage(std::span<const std::string> args, std::ostream& out, std::ostream& err) {
  if (!args.empty() && args[0] == "info") {
    if (args.size() != 2) {
      err << "vantor image: info takes one file; " << kUsage << "\n";
      return 2;
    }
    return Info(args[1], out, err);
  }
  if (!args.empty() && args[0] == "convert") return Convert(args.subspan(1), out, err);
  err << "vantor image: "
      << (args.empty() ? "no subcommand" : "unknown subcommand '" + args[0] + "'") << "; " << kUsage
      << "\n";
  return 2;
}

}  // namespace vantor::tools
