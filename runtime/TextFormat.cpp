#include "runtime/TextFormat.h"

#include <algorithm>
#include <vector>

#include "runtime/Strings.h"

namespace vantor {

namespace {

struct Piece {
  enum class Kind { Literal, Blank, Nothing };  // Blank is "@", Nothing is "&"
  Kind kind = Kind::Literal;
  String text;
};

struct Section {
  std::vector<Piece> pieces;
  size_t placeholders = 0;
  bool leftToRight = false;
  int casing = 0;  // -1 "<", +1 ">"
};

void AddLiteral(Section& s, StringView text) {
  if (s.pieces.empty() || s.pieces.back().kind != Piece::Kind::Literal)
    s.pieces.push_back({Piece::Kind::Literal, {}});
  s.pieces.back().text.append(text);
}

// A text pattern may have a second section, after ";", for an empty text, as
// the platform's text formats do.
std::vector<Section> ReadSections(StringView format) {
  std::vector<Section> sections(1);
  for (size_t i = 0; i < format.size(); ++i) {
    Section& s = sections.back();
    const char16_t c = format[i];
    switch (c) {
      case u'@':
      case u'&':
        s.pieces.push_back({c == u'@' ? Piece::Kind::Blank : Piece::Kind::Nothing, {}});
        ++s.placeholders;
        break;
      case u'!':
        s.leftToRight = true;
        break;
      case u'<':
        s.casing = -1;
        break;
      case u'>':
        s.casing = 1;
        break;
      case u'\\':
        if (i + 1 < format.size()) AddLiteral(s, format.substr(++i, 1));
        break;
      case u'"': {
        const size_t end = format.find(u'"', i + 1);
        const size_t stop = end == StringView::npos ? format.size() : end;
        AddLiteral(s, format.substr(i + 1, stop - i - 1));
        i = stop;
        break;
      }
      case u';':
        sections.emplace_back();
        break;
      default:
        AddLiteral(s, format.substr(i, 1));
        break;
    }
  }
  return sections;
}

// The text's characters, a surrogate pair counting as one, so a placeholder
// never gets half a character.
std::vector<StringView> Characters(StringView text) {
  std::vector<StringView> out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size();) {
    const bool pair = i + 1 < text.size() && text[i] >= 0xD800 && text[i] <= 0xDBFF &&
                      text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF;
    const size_t n = pair ? 2 : 1;
    out.push_back(text.substr(i, n));
    i += n;
  }
  return out;
}

}  // namespace

String TextFormat::Apply(StringView text, StringView format) {
  const std::vector<Section> sections = ReadSections(format);
  const Section& s = text.empty() && sections.size() > 1 ? sections[1] : sections[0];

  String cased;
  if (s.casing != 0) {
    cased = s.casing < 0 ? LCase(text) : UCase(text);
    text = cased;
  }
  const std::vector<StringView> chars = Characters(text);
  const size_t n = chars.size();
  const size_t p = s.placeholders;

  // Right to left, the last placeholder takes the last character and the
  // first placeholders are left without one; characters beyond the
  // placeholders come out together where the first placeholder stands. Left to
  // right mirrors that.
  const size_t extra = n > p ? n - p : 0;
  const size_t empty = p > n ? p - n : 0;

  String out;
  out.reserve(text.size() + format.size());
  auto appendRange = [&](size_t from, size_t to) {
    for (size_t k = from; k < to; ++k) out.append(chars[k]);
  };

  if (p == 0) {
    if (!s.leftToRight) appendRange(0, n);
    for (const Piece& piece : s.pieces) out.append(piece.text);
    if (s.leftToRight) appendRange(0, n);
    return out;
  }

  size_t slot = 0;  // placeholder count so far
  for (const Piece& piece : s.pieces) {
    if (piece.kind == Piece::Kind::Literal) {
      out.append(piece.text);
      continue;
    }
    const size_t k = slot++;
    bool has = false;
    size_t index = 0;
    if (s.leftToRight) {
      has = k < n;
      index = k;
    } else {
      if (k == 0) appendRange(0, extra);
      has = k >= empty;
      index = k - empty + extra;
    }
    if (has) {
      out.append(chars[index]);
    } else if (piece.kind == Piece::Kind::Blank) {
      out.push_back(u' ');
    }
    if (s.leftToRight && slot == p) appendRange(p, std::max(n, p));
  }
  return out;
}

}  // namespace vantor
