#include "runtime/Error.h"

namespace vantor {

namespace {
String DescriptionOrDefault(int32_t number, StringView description) {
  return description.empty() ? ErrObject::DefaultDescription(number) : String(description);
}
}  // namespace

Error::Error(int32_t number, String source, String description)
    : number_(number), source_(std::move(source)),
      description_(DescriptionOrDefault(number, description)) {
  what_ = "error " + std::to_string(number_) + ": " + ToUtf8(description_);
  if (!source_.empty()) what_ += " (" + ToUtf8(source_) + ")";
}

void ErrObject::Set(int32_t number, StringView source, StringView description) {
  number_ = number;
  source_ = String(source);
  description_ = DescriptionOrDefault(number, description);
}

void ErrObject::Set(const Error& error) {
  number_ = error.Number();
  source_ = error.Source();
  description_ = error.Description();
}

void ErrObject::Raise(int32_t number, StringView source, StringView description) {
  Set(number, source, description);
  throw Error(number_, source_, description_);
}

void ErrObject::Clear() {
  number_ = 0;
  source_.clear();
  description_.clear();
}

String ErrObject::DefaultDescription(int32_t number) {
  // The run time's own messages are English on the platform too.
  switch (number) {
    case 0: return {};
    case errReturnWithoutGoSub: return u"Return without GoSub";
    case errInvalidProcedureCall: return u"Invalid procedure call or argument";
    case errOverflow: return u"Overflow";
    case errOutOfMemory: return u"Out of memory";
    case errSubscriptOutOfRange: return u"Subscript out of range";
    case errDivisionByZero: return u"Division by zero";
    case errTypeMismatch: return u"Type mismatch";
    case errFileNotFound: return u"File not found";
    case errBadFileMode: return u"Bad file mode";
    case errPathNotFound: return u"Path not found";
    case errObjectNotSet: return u"Object variable or With block variable not set";
    case errInvalidPattern: return u"Invalid pattern string";
    case errInvalidUseOfNull: return u"Invalid use of Null";
    case errObjectRequired: return u"Object required";
    case errNotSupported: return u"Object doesn't support this property or method";
    case errNotImplemented: return u"Object doesn't support this action";
    case errWrongArguments: return u"Wrong number of arguments or invalid property assignment";
    case errDuplicateKey: return u"This key is already associated with an element of this collection";
    default: return u"Application-defined or object-defined error";
  }
}

ErrObject& Err() {
  thread_local ErrObject err;
  return err;
}

}  // namespace vantor
