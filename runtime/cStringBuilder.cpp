#include "runtime/cStringBuilder.h"

#include <algorithm>
#include <new>

#include "runtime/Error.h"

namespace vantor {

namespace {

// A builder that would pass the platform's string size cannot be read back as
// a String anyway; growing past it is error 7 and leaves the text as it was.
constexpr size_t kMaxLength = size_t{1} << 30;
// Reserve is only a hint; a huge one is not worth committing memory for.
constexpr size_t kMaxReserve = size_t{1} << 24;

bool Fits(size_t current, size_t extra) {
  if (extra <= kMaxLength && current <= kMaxLength - extra) return true;
  Err().Set(errOutOfMemory);
  return false;
}

}  // namespace

void cStringBuilder::Append(StringView text) {
  if (!Fits(buffer_.size(), text.size())) return;
  try {
    buffer_.append(text);
  } catch (const std::bad_alloc&) {
    Err().Set(errOutOfMemory);
  }
}

void cStringBuilder::AppendLine(StringView text) {
  if (!Fits(buffer_.size(), text.size() + 2)) return;
  Append(text);
  Append(u"\r\n");
}

void cStringBuilder::Insert(int32_t position, StringView text) {
  if (position < 0 || static_cast<size_t>(position) > buffer_.size()) return;
  if (!Fits(buffer_.size(), text.size())) return;
  try {
    buffer_.insert(static_cast<size_t>(position), text);
  } catch (const std::bad_alloc&) {
    Err().Set(errOutOfMemory);
  }
}

void cStringBuilder::Remove(int32_t position, int32_t length) {
  if (position < 0 || length <= 0 || static_cast<size_t>(position) >= buffer_.size()) return;
  // A length running past the end removes up to the end.
  buffer_.erase(static_cast<size_t>(position), static_cast<size_t>(length));
}

int32_t cStringBuilder::Find(StringView text, int32_t start) const {
  if (start < 0 || static_cast<size_t>(start) > buffer_.size()) return -1;
  const size_t at = StringView(buffer_).find(text, static_cast<size_t>(start));
  return at == StringView::npos ? -1 : static_cast<int32_t>(at);
}

void cStringBuilder::Reserve(int32_t capacity) {
  if (capacity <= 0) return;
  try {
    buffer_.reserve(std::min(static_cast<size_t>(capacity), kMaxReserve));
  } catch (const std::bad_alloc&) {
    Err().Set(errOutOfMemory);
  }
}

}  // namespace vantor
