#pragma once
// The message bridge: an object sees the messages of windows of its own
// process before the window's own procedure runs, after it, or both, and only
// the messages it subscribed to. Hover tracking, the grid, the skinned form,
// tabs, menus and the text boxes all get their window messages through one.
//
// A window procedure is a bare function, but the subscriber is an object. A
// bridge therefore gives every window it subclasses a procedure of its own,
// taken from a fixed pool of distinct functions, and that procedure finds its
// window's tables and its owner's callback by its pool index. Each window so
// has its own place in the platform's procedure chain (GWL_WNDPROC), whatever
// else subclasses it before or after us.
//
// Re-entrancy: the callback runs inside message dispatch and may pump
// messages, subclass or unsubclass windows, or destroy the bridge itself; the
// procedure keeps what it needs alive until it returns.
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "platform/User.h"

namespace vantor::plumbing {

enum eMsgWhen : int32_t { MSG_BEFORE = 1, MSG_AFTER = 2, MSG_BEFORE_AFTER = 3 };

// Messages go by the platform's own names (WM_MOUSEMOVE...); this one stands
// for every message.
enum eMsg : int32_t { ALL_MESSAGES = -1 };

namespace detail {
struct Thunk;
}

class cSubClassEx {
 public:
  // The owner's side. `bBefore` tells which call this is; `bHandled` and
  // `lReturn` are the caller's: setting bHandled before the window's own
  // procedure answers the message with lReturn and skips that procedure and
  // the after call; after it, lReturn holds the procedure's result and may be
  // changed.
  using WndProcHandler = std::function<void(bool bBefore, bool& bHandled, LRESULT& lReturn,
                                            HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam)>;

  class Owner {
   public:
    virtual ~Owner() = default;
    virtual void WndProc(bool bBefore, bool& bHandled, LRESULT& lReturn, HWND hWnd, UINT uMsg,
                         WPARAM wParam, LPARAM lParam) = 0;
  };

  explicit cSubClassEx(WndProcHandler handler);
  // The owner must outlive the bridge, or destroy it first.
  explicit cSubClassEx(Owner& owner);
  // Gives every window still subclassed its own procedure back, from the last
  // subclassed down.
  ~cSubClassEx();
  cSubClassEx(const cSubClassEx&) = delete;
  cSubClassEx& operator=(const cSubClassEx&) = delete;

  // Replaces the window's procedure; the procedure made for it, or null when
  // the window does not exist, is not of this process, or no procedure is
  // left in the pool.
  WNDPROC Subclass(HWND hWnd);
  void AddMsg(HWND hWnd, int32_t uMsg, eMsgWhen when);
  void DelMsg(HWND hWnd, int32_t uMsg, eMsgWhen when);
  void UnSubclass(HWND hWnd);
  // The procedure the window had before Subclass, as GetWindowLongPtr gave
  // it; 0 for a window this bridge does not hold.
  LONG_PTR GetOriginalHwnd(HWND hWnd) const;

  // ---- what the tables hold, for diagnostics and tests
  // Records in the array, attached or free.
  size_t SlotCount() const { return records_.size(); }
  // The record of a window (-1 for none).
  int SlotOf(HWND hWnd) const;
  // -1 means every message.
  int32_t MsgCount(HWND hWnd, eMsgWhen when) const;
  // The before or after table as it stands, free entries (0) included.
  std::vector<int32_t> MsgTable(HWND hWnd, eMsgWhen when) const;

  // How many window procedures the pool holds, and how many are free now.
  static size_t PoolSize();
  static size_t PoolFree();

 private:
  struct Record {
    HWND hWnd = nullptr;  // null marks a free slot
    LONG_PTR original = 0;
    int32_t beforeCount = 0;
    int32_t afterCount = 0;
    std::shared_ptr<detail::Thunk> thunk;  // owns the two tables the procedure reads
  };

  Record* Find(HWND hWnd);
  const Record* Find(HWND hWnd) const;
  int FreeSlot() const;
  static void Add(int32_t& count, std::vector<int32_t>& table, int32_t uMsg);
  static void Del(int32_t& count, std::vector<int32_t>& table, int32_t uMsg);

  std::shared_ptr<const WndProcHandler> handler_;
  std::vector<Record> records_;
};

}  // namespace vantor::plumbing
