// Global memory blocks and the clipboard's text formats.
#include <algorithm>
#include <cstring>
#include <map>
#include <memory>

#include "platform/UserState.h"

namespace {

struct Block {
  std::unique_ptr<char[]> data;
  size_t size = 0;
  int locks = 0;
};

// Fixed blocks are their own address, as on the platform; movable ones get
// a handle that only GlobalLock turns into the address.
struct Globals {
  std::map<uintptr_t, Block> blocks;
  uintptr_t next_handle = 0x10004;
};

Globals& TheGlobals() {
  static Globals g;
  return g;
}

Block* FindBlock(HGLOBAL memory) {
  auto& blocks = TheGlobals().blocks;
  auto it = blocks.find(reinterpret_cast<uintptr_t>(memory));
  return it == blocks.end() ? nullptr : &it->second;
}

struct Clipboard {
  bool open = false;
  HWND owner = nullptr;
  std::map<UINT, HGLOBAL> data;
};

Clipboard& TheClipboard() {
  static Clipboard c;
  return c;
}

void FreeData() {
  for (auto& [format, memory] : TheClipboard().data) GlobalFree(memory);
  TheClipboard().data.clear();
}

HGLOBAL Copy(const void* bytes, size_t size) {
  HGLOBAL h = GlobalAlloc(GMEM_MOVEABLE, size);
  if (h == nullptr) return nullptr;
  std::memcpy(GlobalLock(h), bytes, size);
  GlobalUnlock(h);
  return h;
}

// The text of a block, up to its first NUL or its end.
template <class Char>
std::basic_string<Char> TextOf(HGLOBAL memory) {
  Block* b = FindBlock(memory);
  if (b == nullptr) return {};
  const auto* p = reinterpret_cast<const Char*>(b->data.get());
  const size_t n = b->size / sizeof(Char);
  size_t len = 0;
  while (len < n && p[len] != 0) ++len;
  return std::basic_string<Char>(p, len);
}

}  // namespace

namespace vantor::platform {

void ResetClipboard() {
  FreeData();
  TheClipboard() = Clipboard{};
  TheGlobals().blocks.clear();
}

}  // namespace vantor::platform

HGLOBAL GlobalAlloc(UINT flags, size_t bytes) {
  // Far beyond anything the library puts on the clipboard.
  if (bytes > (size_t{1} << 30)) {
    SetLastError(8);  // ERROR_NOT_ENOUGH_MEMORY
    return nullptr;
  }
  Block b;
  b.size = bytes;
  b.data = std::make_unique<char[]>(std::max<size_t>(bytes, 1));
  // Always zeroed: GMEM_ZEROINIT or not, nobody may read stale bytes.
  Globals& g = TheGlobals();
  uintptr_t handle;
  if ((flags & GMEM_MOVEABLE) != 0) {
    handle = g.next_handle;
    g.next_handle += 8;
  } else {
    handle = reinterpret_cast<uintptr_t>(b.data.get());
  }
  g.blocks.emplace(handle, std::move(b));
  return reinterpret_cast<HGLOBAL>(handle);
}

LPVOID GlobalLock(HGLOBAL memory) {
  Block* b = FindBlock(memory);
  if (b == nullptr) {
    SetLastError(6);  // ERROR_INVALID_HANDLE
    return nullptr;
  }
  ++b->locks;
  return b->data.get();
}

BOOL GlobalUnlock(HGLOBAL memory) {
  Block* b = FindBlock(memory);
  if (b == nullptr || b->locks == 0) return FALSE;
  --b->locks;
  return b->locks > 0 ? TRUE : FALSE;
}

HGLOBAL GlobalFree(HGLOBAL memory) {
  auto& blocks = TheGlobals().blocks;
  auto it = blocks.find(reinterpret_cast<uintptr_t>(memory));
  if (it == blocks.end()) return memory;
  blocks.erase(it);
  return nullptr;
}

size_t GlobalSize(HGLOBAL memory) {
  Block* b = FindBlock(memory);
  return b == nullptr ? 0 : b->size;
}

BOOL OpenClipboard(HWND owner) {
  Clipboard& c = TheClipboard();
  if (c.open) return FALSE;
  if (owner != nullptr && !IsWindow(owner)) return FALSE;
  c.open = true;
  c.owner = owner;
  return TRUE;
}

BOOL CloseClipboard() {
  Clipboard& c = TheClipboard();
  if (!c.open) {
    SetLastError(ERROR_CLIPBOARD_NOT_OPEN);
    return FALSE;
  }
  c.open = false;
  return TRUE;
}

BOOL EmptyClipboard() {
  Clipboard& c = TheClipboard();
  if (!c.open) {
    SetLastError(ERROR_CLIPBOARD_NOT_OPEN);
    return FALSE;
  }
  FreeData();
  return TRUE;
}

HANDLE SetClipboardData(UINT format, HANDLE data) {
  Clipboard& c = TheClipboard();
  if (!c.open) {
    SetLastError(ERROR_CLIPBOARD_NOT_OPEN);
    return nullptr;
  }
  if (format == 0 || (data != nullptr && FindBlock(data) == nullptr)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  auto it = c.data.find(format);
  if (it != c.data.end()) {
    GlobalFree(it->second);
    c.data.erase(it);
  }
  // Setting one text form drops the other; it is made again on request.
  if (format == CF_TEXT || format == CF_UNICODETEXT || format == CF_OEMTEXT) {
    for (UINT f : {CF_TEXT, CF_UNICODETEXT, CF_OEMTEXT}) {
      auto other = c.data.find(f);
      if (other != c.data.end()) {
        GlobalFree(other->second);
        c.data.erase(other);
      }
    }
  }
  if (data != nullptr) c.data[format] = data;
  return data;
}

HANDLE GetClipboardData(UINT format) {
  Clipboard& c = TheClipboard();
  if (!c.open) {
    SetLastError(ERROR_CLIPBOARD_NOT_OPEN);
    return nullptr;
  }
  auto it = c.data.find(format);
  if (it != c.data.end()) return it->second;
  // The platform makes the other text forms from the one it has.
  if (format == CF_TEXT || format == CF_OEMTEXT) {
    auto w = c.data.find(CF_UNICODETEXT);
    if (w == c.data.end()) return nullptr;
    const std::string a = vantor::ToAnsi(TextOf<char16_t>(w->second));
    HGLOBAL h = Copy(a.c_str(), a.size() + 1);
    if (h != nullptr) c.data[format] = h;
    return h;
  }
  if (format == CF_UNICODETEXT) {
    auto a = c.data.find(CF_TEXT);
    if (a == c.data.end()) a = c.data.find(CF_OEMTEXT);
    if (a == c.data.end()) return nullptr;
    const vantor::String w = vantor::FromAnsi(TextOf<char>(a->second));
    HGLOBAL h = Copy(w.c_str(), (w.size() + 1) * sizeof(char16_t));
    if (h != nullptr) c.data[format] = h;
    return h;
  }
  return nullptr;
}

BOOL IsClipboardFormatAvailable(UINT format) {
  const Clipboard& c = TheClipboard();
  if (c.data.count(format) != 0) return TRUE;
  const bool text = c.data.count(CF_TEXT) != 0 || c.data.count(CF_UNICODETEXT) != 0 ||
                    c.data.count(CF_OEMTEXT) != 0;
  return text && (format == CF_TEXT || format == CF_UNICODETEXT || format == CF_OEMTEXT) ? TRUE
                                                                                         : FALSE;
}
