#pragma once
// The platform's Like operator: "*" any run of characters, "?" one character,
// "#" one digit, "[set]" one character of the set, "[!set]" one not in it, ranges
// "[a-z]" within a set. "[" "*" "?" "#" stand for themselves inside brackets.
// An unclosed "[" is error 93 (invalid pattern) and no match.
#include "runtime/String.h"
#include "runtime/VarType.h"

namespace vantor {

bool Like(StringView text, StringView pattern, VbCompareMethod compare = vbBinaryCompare);

}  // namespace vantor
