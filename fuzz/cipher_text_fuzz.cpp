// Cipher text reaches VT_Decriptografar from files and databases that anyone
// may have edited. Whatever the text and key, the member must answer without
// failing, its answer no longer than the whole blocks allow, and that answer
// must survive its own round trip.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "runtime/Error.h"
#include "runtime/String.h"
#include "services/VT.h"

using vantor::String;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const vantor::services::VT vt;
  // "key\ncipher text", or the whole input as cipher text under the empty key.
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const size_t newline = input.find('\n');
  const String key =
      newline == std::string_view::npos ? String() : vantor::FromUtf8(input.substr(0, newline));
  const String text =
      vantor::FromUtf8(newline == std::string_view::npos ? input : input.substr(newline + 1));

  const String plain = vt.VT_Decriptografar(text, key);
  if (plain.size() > text.size() / 16 * 8) __builtin_trap();
  if (!plain.empty() && (plain.front() == u' ' || plain.back() == u' ')) __builtin_trap();
  if (plain.find(u'\0') != String::npos) __builtin_trap();

  // What decryption gives is text the cipher can carry: blanks trimmed, no
  // NUL, every character one byte of the code page.
  const String sealed = vt.VT_Criptografar(plain, key);
  if (sealed.size() != (plain.size() + 5) / 6 * 16) __builtin_trap();
  if (vt.VT_Decriptografar(sealed, key) != plain) __builtin_trap();

  // And the input taken as plain text goes through as well.
  const String again = vt.VT_Criptografar(text, key);
  if (again.size() != (text.size() + 5) / 6 * 16) __builtin_trap();
  (void)vt.VT_Decriptografar(again, key);
  vantor::Err().Clear();
  return 0;
}
