#pragma once
// An INI file read and written by the rules of the platform's profile
// functions, so that a file a Windows program wrote reads the same here and a
// file we write reads the same there:
//
// - sections and keys are found without regard to case, their names trimmed;
//   the first section of a name and the first key of a name in it win;
// - a line whose first character (after blanks) is ";" is a comment; so is
//   "#", which files made on Linux use the same way; a comment after a value
//   is part of the value, as on the platform;
// - a value is trimmed, and loses one pair of matching quotes around it;
// - writing replaces a key's line in place, adds a missing key after the last
//   line of its section, adds a missing section at the end, and leaves every
//   other line (comments, blank lines, unknown text) as it was.
//
// Files are UTF-8, with or without a byte-order mark; a file that is not
// valid UTF-8 was written by a Windows program in its code page (1252), and
// one with a UTF-16 mark is UTF-16. A rewritten file keeps its encoding and
// its line ends; a new file is UTF-8 with "\n".
#include <optional>
#include <string>
#include <vector>

#include "runtime/String.h"

namespace vantor::services {

class IniFile {
 public:
  IniFile() = default;

  // A missing or unreadable file reads as an empty one; Exists() tells.
  static IniFile Load(const std::string& path);
  // The file's bytes, as Load decodes them.
  static IniFile FromBytes(std::string_view bytes);
  // Writes the whole file in place, keeping its encoding; false when it
  // cannot be written (missing folder, no permission).
  bool Save(const std::string& path) const;

  bool Exists() const { return exists_; }

  // The value of a key, or nothing when the section or the key is absent or
  // the key's line has no "=". The value ends at its first NUL.
  std::optional<String> Get(StringView section, StringView key) const;

  // Gives a key its value, adding the key and its section where missing.
  // Refuses (false, nothing changed) names the file could not hold: empty,
  // a section with "]", a key with "=" or beginning with "[", ";" or "#",
  // and either with a line break or a NUL. The value is written up to its
  // first NUL or line break, which the file could not hold either.
  bool Set(StringView section, StringView key, StringView value);

  // The file as Save writes it, decoded.
  String Text() const;
  // The file's bytes as Save writes them.
  std::string Bytes() const;

 private:
  enum class Encoding { Utf8, Utf8Bom, Ansi, Utf16Le, Utf16Be };
  enum class LineKind { Other, Section, Key };
  struct Parsed {
    LineKind kind = LineKind::Other;
    String name;   // section or key, trimmed
    String value;  // the text after "=", trimmed
    bool hasValue = false;
  };
  static Parsed Parse(StringView line);
  // Index of the first header of the section, or npos.
  size_t FindSection(StringView lowered) const;
  // Index one past the section's last line (the next header or the end).
  size_t SectionEnd(size_t header) const;

  std::vector<String> lines_;
  String newline_ = u"\n";
  Encoding encoding_ = Encoding::Utf8;
  bool exists_ = false;
  bool finalNewline_ = true;
};

}  // namespace vantor::services
