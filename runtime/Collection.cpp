#include "runtime/Collection.h"

#include "runtime/Error.h"
#include "runtime/Strings.h"

namespace vantor {

namespace {

bool Given(const Variant& v) {
  return !v.IsEmpty() && !v.IsMissing();
}

}  // namespace

String Collection::Fold(StringView key) {
  // Through upper case and back, as text comparison folds, so that "ÇÃO",
  // "ção" and "Ção" are one key.
  return LCase(UCase(key));
}

int32_t Collection::Resolve(const Variant& index) const {
  if (const String* key = index.As<String>()) {
    const auto it = keys_.find(Fold(*key));
    if (it == keys_.end()) {
      Err().Set(errInvalidProcedureCall);
      return -1;
    }
    return static_cast<int32_t>(it->second);
  }
  if (!index.CanChangeType(vbLong)) {
    // Let the coercion report why (Null, an object, an overflow...).
    (void)index.ToLong();
    if (!Err()) Err().Set(errTypeMismatch);
    return -1;
  }
  const int32_t position = index.ToLong();
  if (position < 1 || position > Count()) {
    Err().Set(errSubscriptOutOfRange);
    return -1;
  }
  return position - 1;
}

bool Collection::Add(const Variant& item, const Variant& key, const Variant& before,
                     const Variant& after) {
  String folded;
  const String* text = nullptr;
  if (Given(key)) {
    text = key.As<String>();
    if (text == nullptr) {
      Err().Set(errTypeMismatch);
      return false;
    }
    // An empty text cannot be told from "no key", so it is refused.
    if (text->empty()) {
      Err().Set(errInvalidProcedureCall);
      return false;
    }
    folded = Fold(*text);
  }

  size_t at = items_.size();
  const bool hasBefore = Given(before);
  const bool hasAfter = Given(after);
  if (hasBefore && hasAfter) {
    Err().Set(errInvalidProcedureCall);
    return false;
  }
  if (hasBefore || hasAfter) {
    const int32_t position = Resolve(hasBefore ? before : after);
    if (position < 0) return false;
    at = static_cast<size_t>(position) + (hasAfter ? 1 : 0);
  }

  if (text != nullptr && keys_.count(folded) != 0) {
    Err().Set(errDuplicateKey);
    return false;
  }

  Entry entry{item.Deref(), text != nullptr ? *text : String()};
  if (at == items_.size()) {
    items_.push_back(std::move(entry));
    if (text != nullptr) keys_.emplace(std::move(folded), at);
  } else {
    items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(at), std::move(entry));
    Reindex();
  }
  return true;
}

Variant Collection::Item(const Variant& index) const {
  const int32_t position = Resolve(index);
  if (position < 0) return {};
  return items_[static_cast<size_t>(position)].item;
}

bool Collection::Remove(const Variant& index) {
  const int32_t position = Resolve(index);
  if (position < 0) return false;
  const size_t at = static_cast<size_t>(position);
  if (!items_[at].key.empty()) keys_.erase(Fold(items_[at].key));
  items_.erase(items_.begin() + position);
  // Removing in a loop is common, so the keys behind the gap move down one
  // without folding every key again; taking the last item moves none.
  if (at < items_.size()) {
    for (auto& [folded, slot] : keys_) {
      if (slot > at) --slot;
    }
  }
  return true;
}

void Collection::Clear() {
  items_.clear();
  keys_.clear();
}

bool Collection::Exists(StringView key) const {
  return keys_.count(Fold(key)) != 0;
}

void Collection::Reindex() {
  keys_.clear();
  for (size_t i = 0; i < items_.size(); ++i) {
    if (!items_[i].key.empty()) keys_.emplace(Fold(items_[i].key), i);
  }
}

}  // namespace vantor
