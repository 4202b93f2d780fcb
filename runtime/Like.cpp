#include "runtime/Like.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "runtime/Error.h"
#include "runtime/Strings.h"

namespace vantor {

namespace {

// A pattern is read once into tokens that each take one character, except the
// star; matching then never has to look at brackets again.
struct Token {
  enum class Kind { Literal, Any, Digit, Set, Star };
  Kind kind = Kind::Literal;
  char16_t ch = 0;
  bool negate = false;
  std::vector<std::pair<char16_t, char16_t>> ranges;  // inclusive, for Set

  bool Matches(char16_t c) const {
    switch (kind) {
      case Kind::Literal:
        return c == ch;
      case Kind::Any:
        return true;
      case Kind::Digit:
        return c >= u'0' && c <= u'9';
      case Kind::Set: {
        bool in = false;
        for (const auto& [lo, hi] : ranges) {
          if (c >= lo && c <= hi) {
            in = true;
            break;
          }
        }
        return in != negate;
      }
      case Kind::Star:
        return false;
    }
    return false;
  }
};

// Reads "[...]" starting just after the "[". Returns false for a pattern the
// platform refuses: no closing bracket, or a range written high to low.
bool ReadSet(StringView p, size_t& i, std::vector<Token>& out) {
  Token t;
  t.kind = Token::Kind::Set;
  if (i < p.size() && p[i] == u'!') {
    t.negate = true;
    ++i;
  }
  for (;;) {
    if (i >= p.size()) return false;
    const char16_t c = p[i];
    if (c == u']') break;
    // A hyphen opens a range only between two characters; first or last in
    // the list it is itself.
    if (c != u'-' && i + 2 < p.size() && p[i + 1] == u'-' && p[i + 2] != u']') {
      const char16_t hi = p[i + 2];
      if (hi < c) return false;
      t.ranges.emplace_back(c, hi);
      i += 3;
      continue;
    }
    t.ranges.emplace_back(c, c);
    ++i;
  }
  ++i;  // past "]"
  if (t.ranges.empty()) {
    // "[]" stands for no character at all; "[!]" for any one character.
    if (t.negate) {
      Token any;
      any.kind = Token::Kind::Any;
      out.push_back(std::move(any));
    }
    return true;
  }
  out.push_back(std::move(t));
  return true;
}

bool Parse(StringView p, std::vector<Token>& out) {
  size_t i = 0;
  while (i < p.size()) {
    const char16_t c = p[i++];
    Token t;
    switch (c) {
      case u'*':
        // Runs of stars behave as one and would only slow the matcher.
        if (!out.empty() && out.back().kind == Token::Kind::Star) continue;
        t.kind = Token::Kind::Star;
        break;
      case u'?':
        t.kind = Token::Kind::Any;
        break;
      case u'#':
        t.kind = Token::Kind::Digit;
        break;
      case u'[':
        if (!ReadSet(p, i, out)) return false;
        continue;
      default:
        t.ch = c;
        break;
    }
    out.push_back(std::move(t));
  }
  return true;
}

// Every token but the star takes exactly one character, so the last star seen
// is the only choice ever worth revisiting: on a mismatch it swallows one more
// character and matching resumes after it. Time is bounded by text length
// times pattern length, space by the pattern.
bool Match(StringView s, const std::vector<Token>& tokens) {
  size_t i = 0, j = 0;
  size_t starToken = SIZE_MAX, starText = 0;
  while (i < s.size()) {
    if (j < tokens.size() && tokens[j].kind == Token::Kind::Star) {
      starToken = j++;
      starText = i;
    } else if (j < tokens.size() && tokens[j].Matches(s[i])) {
      ++i;
      ++j;
    } else if (starToken != SIZE_MAX) {
      j = starToken + 1;
      i = ++starText;
    } else {
      return false;
    }
  }
  while (j < tokens.size() && tokens[j].kind == Token::Kind::Star) ++j;
  return j == tokens.size();
}

}  // namespace

bool Like(StringView text, StringView pattern, VbCompareMethod compare) {
  // Text comparison folds both sides the way UCase and LCase do, so a range
  // such as "[A-Z]" then covers the folded letters a..z; accents still count.
  String foldedText, foldedPattern;
  if (compare == vbTextCompare) {
    foldedText = LCase(UCase(text));
    foldedPattern = LCase(UCase(pattern));
    text = foldedText;
    pattern = foldedPattern;
  }
  std::vector<Token> tokens;
  if (!Parse(pattern, tokens)) {
    Err().Set(errInvalidPattern);
    return false;
  }
  return Match(text, tokens);
}

}  // namespace vantor
