#include "tools/vantor/CallArguments.h"

#include <cctype>
#include <charconv>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "runtime/String.h"

namespace vantor::tools {

namespace {

bool IsIdentifier(std::string_view s) {
  if (s.empty() || std::isdigit(static_cast<unsigned char>(s[0]))) return false;
  for (char c : s) {
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_') return false;
  }
  return true;
}

bool AllDigits(std::string_view s) {
  if (s.empty()) return false;
  for (char c : s) {
    if (!std::isdigit(static_cast<unsigned char>(c))) return false;
  }
  return true;
}

std::string Lower(std::string_view s) {
  std::string l(s);
  for (char& c : l) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return l;
}

// Without a leading "+", which from_chars does not take.
std::string Unsigned(std::string_view text) {
  return std::string(!text.empty() && text[0] == '+' ? text.substr(1) : text);
}

// "12", "-7", "+3": an integer.
bool IsInteger(std::string_view text) {
  if (!text.empty() && (text[0] == '+' || text[0] == '-')) text.remove_prefix(1);
  return AllDigits(text);
}

// "1.5", "-0.25", ".5", "2.", "1.5e3": a number with a decimal point.
bool ReadDecimal(std::string_view text, double& out) {
  if (text.find('.') == std::string_view::npos) return false;
  std::string_view body = text;
  if (!body.empty() && (body[0] == '+' || body[0] == '-')) body.remove_prefix(1);
  const size_t e = body.find_first_of("eE");
  const std::string_view mantissa = body.substr(0, e);
  const size_t dot = mantissa.find('.');
  if (dot == std::string_view::npos) return false;
  const std::string_view whole = mantissa.substr(0, dot), fraction = mantissa.substr(dot + 1);
  if ((whole.empty() && fraction.empty()) || (!whole.empty() && !AllDigits(whole)) ||
      (!fraction.empty() && !AllDigits(fraction)))
    return false;
  if (e != std::string_view::npos) {
    std::string_view exponent = body.substr(e + 1);
    if (!exponent.empty() && (exponent[0] == '+' || exponent[0] == '-')) exponent.remove_prefix(1);
    if (!AllDigits(exponent)) return false;
  }
  const std::string plain = Unsigned(text);
  const auto r = std::from_chars(plain.data(), plain.data() + plain.size(), out);
  return r.ec == std::errc() && r.ptr == plain.data() + plain.size();
}

bool ReadFile(const std::string& path, std::vector<uint8_t>& bytes) {
  // A directory opens as a stream on some systems and reads as nothing.
  std::error_code ec;
  if (std::filesystem::is_directory(path, ec)) return false;
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return !in.bad();
}

CallParse Fail(ParseStatus status, std::string error) {
  CallParse p;
  p.status = status;
  p.error = std::move(error);
  return p;
}

}  // namespace

bool ArgumentValue(std::string_view text, bool forceString, Variant& value, std::string& error,
                   ParseStatus& status) {
  if (forceString) {
    value = Variant(FromUtf8(text));
    return true;
  }
  double number = 0;
  if (IsInteger(text)) {
    const std::string plain = Unsigned(text);
    int32_t integer = 0;
    const auto r = std::from_chars(plain.data(), plain.data() + plain.size(), integer);
    if (r.ec == std::errc()) {
      value = Variant(integer);
    } else {
      // Too big for a Long, as a literal of the platform's language would be.
      std::from_chars(plain.data(), plain.data() + plain.size(), number);
      value = Variant(number);
    }
    return true;
  }
  if (ReadDecimal(text, number)) {
    value = Variant(number);
    return true;
  }
  const std::string lower = Lower(text);
  if (lower == "true" || lower == "false") {
    value = Variant(lower == "true");
    return true;
  }
  if (!text.empty() && text[0] == '@') {
    const std::string path(text.substr(1));
    if (path.empty()) {
      status = ParseStatus::Usage;
      error = "no file name after '@' (use --str @ for the text \"@\")";
      return false;
    }
    std::vector<uint8_t> bytes;
    if (!ReadFile(path, bytes)) {
      status = ParseStatus::Failure;
      error = "cannot read the file '" + path + "'";
      return false;
    }
    value = Variant(std::move(bytes));
    return true;
  }
  value = Variant(FromUtf8(text));
  return true;
}

CallParse ParseCallArguments(std::span<const std::string> args) {
  size_t i = 0;
  CallParse parse;
  CallRequest& req = parse.request;
  // Options come before the target; after it every word is an argument.
  for (; i < args.size() && args[i].starts_with("--"); ++i) {
    if (args[i] == "--out") {
      if (i + 1 >= args.size() || args[i + 1].empty())
        return Fail(ParseStatus::Usage, "--out needs a file name");
      req.outFile = args[++i];
    } else {
      return Fail(ParseStatus::Usage, "unknown option '" + args[i] + "'");
    }
  }
  if (i >= args.size()) return Fail(ParseStatus::Usage, "no Class.Member to call");

  // The target: Class.Member, Class.Property= or Class.Property=VALUE. The
  // class may be written as its program identifier, "Vantor2014.VT".
  const std::string& target = args[i++];
  const size_t equals = target.find('=');
  const std::string_view name = std::string_view(target).substr(0, equals);
  const size_t dot = name.rfind('.');
  const auto malformed = [&] {
    return Fail(ParseStatus::Usage,
                "malformed target '" + target + "': expected Class.Member or Class.Property=");
  };
  if (dot == std::string_view::npos) return malformed();
  const std::string_view cls = name.substr(0, dot), member = name.substr(dot + 1);
  const size_t progDot = cls.find('.');
  if (!IsIdentifier(member) ||
      (progDot == std::string_view::npos
           ? !IsIdentifier(cls)
           : !IsIdentifier(cls.substr(0, progDot)) || !IsIdentifier(cls.substr(progDot + 1))))
    return malformed();
  req.className = cls;
  req.member = member;
  req.assign = equals != std::string::npos;

  std::vector<Variant> positional, named;
  bool forceString = false;
  for (; i < args.size(); ++i) {
    const std::string& word = args[i];
    if (word == "--str" && !forceString) {
      forceString = true;
      continue;
    }
    std::string_view text = word;
    const size_t assignAt = text.find(":=");
    const bool isNamed =
        assignAt != std::string_view::npos && IsIdentifier(text.substr(0, assignAt));
    if (isNamed) {
      req.names.emplace_back(text.substr(0, assignAt));
      text.remove_prefix(assignAt + 2);
    } else if (!named.empty()) {
      return Fail(ParseStatus::Usage, "the positional argument '" + word +
                                          "' follows a named one; named arguments go last");
    }
    Variant value;
    if (!ArgumentValue(text, forceString, value, parse.error, parse.status)) {
      parse.request = {};
      return parse;
    }
    (isNamed ? named : positional).push_back(std::move(value));
    forceString = false;
  }
  if (forceString) return Fail(ParseStatus::Usage, "--str needs an argument after it");

  if (req.assign && equals + 1 < target.size()) {
    Variant value;
    if (!ArgumentValue(std::string_view(target).substr(equals + 1), false, value, parse.error,
                       parse.status)) {
      parse.request = {};
      return parse;
    }
    positional.push_back(std::move(value));
  }
  if (req.assign && positional.empty())
    return Fail(ParseStatus::Usage, "no value to assign to " + std::string(name));

  req.args = std::move(positional);
  for (Variant& v : named) req.args.push_back(std::move(v));
  return parse;
}

}  // namespace vantor::tools
