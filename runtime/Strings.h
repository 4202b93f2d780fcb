#pragma once
// String functions of the platform's language. Positions are 1-based. Bad
// arguments (a start below 1, a negative length) set error 5 and give the
// empty or zero result, never throwing.
#include <cstdint>
#include <vector>

#include "runtime/String.h"
#include "runtime/VarType.h"

namespace vantor {

int32_t Len(StringView s);
// 0 when not found; an empty find gives start; a start past the end gives 0.
int32_t InStr(int32_t start, StringView s, StringView find,
              VbCompareMethod compare = vbBinaryCompare);
int32_t InStr(StringView s, StringView find, VbCompareMethod compare = vbBinaryCompare);
// Searches backwards from start (-1: the end).
int32_t InStrRev(StringView s, StringView find, int32_t start = -1,
                 VbCompareMethod compare = vbBinaryCompare);
// length -1: to the end.
String Mid(StringView s, int32_t start, int32_t length = -1);
String Left(StringView s, int32_t length);
String Right(StringView s, int32_t length);
// Only the blank (32) is trimmed, as on the platform; tabs stay.
String LTrim(StringView s);
String RTrim(StringView s);
String Trim(StringView s);
// Case mapping of Latin letters with their accents ("ção" and "ÇÃO"), Greek
// and Cyrillic; "ß" and "ÿ" keep their form where the code page has no
// single-letter partner for them.
String LCase(StringView s);
String UCase(StringView s);
// The result starts at start, as the platform's Replace cuts what is before
// it; count -1 replaces all.
String Replace(StringView expression, StringView find, StringView replaceWith, int32_t start = 1,
               int32_t count = -1, VbCompareMethod compare = vbBinaryCompare);
// An empty expression gives no elements; an empty delimiter gives the whole
// expression; limit -1 splits everything.
std::vector<String> Split(StringView expression, StringView delimiter = u" ", int32_t limit = -1,
                          VbCompareMethod compare = vbBinaryCompare);
String Join(const std::vector<String>& parts, StringView delimiter = u" ");
// -1, 0 or 1. Binary compares code units; text compares as the locale sorts,
// without regard to case: letters before their accented forms, those before
// the next letter.
int32_t StrComp(StringView a, StringView b, VbCompareMethod compare = vbBinaryCompare);
String Space(int32_t count);
// The platform's String(count, character): the first character repeated.
String StringOf(int32_t count, char16_t character);
String StrReverse(StringView s);
// Chr takes a code of the "ANSI" code page (0..255); ChrW a UTF-16 unit
// (-32768..65535). Asc gives the first character's code page byte ('?' 63
// when the code page lacks it); AscW its UTF-16 unit. An empty text is error 5.
String Chr(int32_t code);
String ChrW(int32_t code);
int32_t Asc(StringView s);
int32_t AscW(StringView s);

}  // namespace vantor
