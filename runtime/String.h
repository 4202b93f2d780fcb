#pragma once
// Text in the library is UTF-16, as the platform's strings are; UTF-8 and the
// "ANSI" code page (Windows-1252) are met only at the edges: files, the command
// line, and the narrow entry points that the system's code still calls.
#include <cstdint>
#include <string>
#include <string_view>

namespace vantor {

using String = std::u16string;
using StringView = std::u16string_view;

// Ill-formed UTF-8 never fails: each bad sequence becomes U+FFFD.
String FromUtf8(std::string_view utf8);
// A lone surrogate becomes U+FFFD.
std::string ToUtf8(StringView text);

// Windows-1252. Its five unassigned bytes (0x81, 0x8D, 0x8F, 0x90, 0x9D) map to
// the C1 controls of the same value, as the platform's own table does.
char16_t AnsiToChar(uint8_t byte);
// The byte for a character, or -1 if the code page has none.
int CharToAnsi(char16_t ch);
String FromAnsi(std::string_view ansi);
// Characters the code page lacks become '?', the platform's default character.
std::string ToAnsi(StringView text);

}  // namespace vantor
