#pragma once
// Builds long texts in one growing buffer, as the dump writer and the grid's
// export do page by page.
#include <cstdint>

#include "runtime/String.h"

namespace vantor {

class cStringBuilder {
 public:
  void Append(StringView text);
  void AppendLine(StringView text = {});  // with CR LF
  // position is 0-based; out of range does nothing.
  void Insert(int32_t position, StringView text);
  void Remove(int32_t position, int32_t length);
  // 0-based position of the text from start, or -1.
  int32_t Find(StringView text, int32_t start = 0) const;
  int32_t Length() const { return static_cast<int32_t>(buffer_.size()); }
  const String& ToString() const { return buffer_; }
  void Clear() { buffer_.clear(); }
  void Reserve(int32_t capacity);

 private:
  String buffer_;
};

}  // namespace vantor
