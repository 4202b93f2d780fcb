#pragma once
// Errors of the run time. The platform's run time raises numbered errors; here
// the run time's own functions never throw: they record the error in the
// thread's error object and return the value given in their comment, which is
// what code running in skip-and-continue mode sees. Classes of the library that
// must raise to their host throw vantor::Error, and the object model turns it
// back into the error object.
#include <cstdint>
#include <exception>
#include <string>

#include "runtime/String.h"

namespace vantor {

// The platform's numbers for the errors the run time raises.
enum ErrorNumber : int32_t {
  errReturnWithoutGoSub = 3,
  errInvalidProcedureCall = 5,
  errOverflow = 6,
  errOutOfMemory = 7,
  errSubscriptOutOfRange = 9,
  errDivisionByZero = 11,
  errTypeMismatch = 13,
  errFileNotFound = 53,
  errBadFileMode = 54,
  errPathNotFound = 76,
  errObjectNotSet = 91,
  errInvalidPattern = 93,
  errInvalidUseOfNull = 94,
  errObjectRequired = 424,
  errNotSupported = 438,
  errWrongArguments = 450,
  errDuplicateKey = 457,
  errNotImplemented = 445,
  errApplicationDefined = 1004,
};

class Error : public std::exception {
 public:
  Error(int32_t number, String source = {}, String description = {});
  int32_t Number() const { return number_; }
  const String& Description() const { return description_; }
  const String& Source() const { return source_; }
  const char* what() const noexcept override { return what_.c_str(); }

 private:
  int32_t number_;
  String source_;
  String description_;
  std::string what_;
};

// The error object: one per thread, as the platform keeps one per apartment.
class ErrObject {
 public:
  int32_t Number() const { return number_; }
  const String& Description() const { return description_; }
  const String& Source() const { return source_; }
  explicit operator bool() const { return number_ != 0; }

  // Records an error without leaving the caller; an empty description takes
  // the platform's text for the number.
  void Set(int32_t number, StringView source = {}, StringView description = {});
  void Set(const Error& error);
  // Records the error and throws it, as the platform's Raise leaves the routine.
  [[noreturn]] void Raise(int32_t number, StringView source = {}, StringView description = {});
  void Clear();

  // The platform's message for a run-time error number.
  static String DefaultDescription(int32_t number);

 private:
  int32_t number_ = 0;
  String source_;
  String description_;
};

ErrObject& Err();

}  // namespace vantor
