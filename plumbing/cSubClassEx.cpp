#include "plumbing/cSubClassEx.h"

#include <algorithm>
#include <array>
#include <deque>
#include <utility>

namespace vantor::plumbing {

namespace detail {

// What the window procedure of one subclassed window reads on every message.
// The bridge's record holds it too; it outlives both the record and the
// bridge while a call through it is still on the stack.
struct Thunk {
  size_t index = 0;  // its procedure in the pool
  std::shared_ptr<const cSubClassEx::WndProcHandler> handler;
  LONG_PTR original = 0;
  bool wide = true;
  int32_t beforeCount = 0;
  int32_t afterCount = 0;
  std::vector<int32_t> before;
  std::vector<int32_t> after;
};

}  // namespace detail

namespace {

using detail::Thunk;

// Enough for every control window of several large forms at once; a window
// beyond it is simply not subclassed, as when the platform runs out of memory
// for a procedure.
constexpr size_t kPoolSize = 4096;

struct PoolSlot {
  std::shared_ptr<Thunk> thunk;  // null while the procedure is free or retired
  // A retired procedure may still be called by a chain that was built over
  // it; such a call goes straight to the procedure the window had before.
  LONG_PTR original = 0;
  bool wide = true;
};

struct Pool {
  std::array<PoolSlot, kPoolSize> slots;
  // Oldest free first, so that a procedure just given up is the last to be
  // handed out again.
  std::deque<size_t> free;

  Pool() {
    for (size_t i = 0; i < kPoolSize; ++i) free.push_back(i);
  }
};

Pool& ThePool() {
  static Pool pool;
  return pool;
}

LRESULT CallOriginal(LONG_PTR original, bool wide, HWND hWnd, UINT uMsg, WPARAM wParam,
                     LPARAM lParam) {
  const auto proc = reinterpret_cast<WNDPROC>(original);
  return wide ? CallWindowProcW(proc, hWnd, uMsg, wParam, lParam)
              : CallWindowProcA(proc, hWnd, uMsg, wParam, lParam);
}

bool Wants(int32_t count, const std::vector<int32_t>& table, int32_t msg) {
  if (count == ALL_MESSAGES) return true;
  // 0 marks a free entry; it never stands for a subscription.
  if (msg == 0 || count <= 0) return false;
  const auto end = table.begin() + std::min<ptrdiff_t>(count, std::ssize(table));
  return std::find(table.begin(), end, msg) != end;
}

void Notify(const Thunk& thunk, bool before, bool& handled, LRESULT& result, HWND hWnd, UINT uMsg,
            WPARAM wParam, LPARAM lParam) {
  try {
    (*thunk.handler)(before, handled, result, hWnd, uMsg, wParam, lParam);
  } catch (...) {
    // A failing subscriber ends its own call only; the message goes on.
  }
}

LRESULT Run(size_t index, HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
  PoolSlot& slot = ThePool().slots[index];
  const std::shared_ptr<Thunk> thunk = slot.thunk;
  if (!thunk) return CallOriginal(slot.original, slot.wide, hWnd, uMsg, wParam, lParam);
  const auto msg = static_cast<int32_t>(uMsg);
  bool handled = false;
  LRESULT result = 0;
  if (Wants(thunk->beforeCount, thunk->before, msg)) {
    Notify(*thunk, true, handled, result, hWnd, uMsg, wParam, lParam);
    if (handled) return result;
  }
  result = CallOriginal(thunk->original, thunk->wide, hWnd, uMsg, wParam, lParam);
  // The counts are read again: the before call may have unsubscribed.
  if (Wants(thunk->afterCount, thunk->after, msg)) {
    Notify(*thunk, false, handled, result, hWnd, uMsg, wParam, lParam);
  }
  return result;
}

template <size_t I>
LRESULT CALLBACK PoolProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
  return Run(I, hWnd, uMsg, wParam, lParam);
}

template <size_t... I>
constexpr std::array<WNDPROC, sizeof...(I)> MakeProcs(std::index_sequence<I...>) {
  return {{&PoolProc<I>...}};
}

constexpr std::array<WNDPROC, kPoolSize> kProcs = MakeProcs(std::make_index_sequence<kPoolSize>{});

std::shared_ptr<Thunk> NewThunk(std::shared_ptr<const cSubClassEx::WndProcHandler> handler) {
  Pool& pool = ThePool();
  if (pool.free.empty()) return nullptr;
  const size_t index = pool.free.front();
  pool.free.pop_front();
  auto thunk = std::make_shared<Thunk>();
  thunk->index = index;
  thunk->handler = std::move(handler);
  pool.slots[index].thunk = thunk;
  return thunk;
}

// The procedure stops calling its owner. A reusable one goes back to the
// pool; one that a later subclass may still chain to stays a pass-through for
// good.
void Retire(Thunk& thunk, bool reusable) {
  thunk.beforeCount = 0;
  thunk.afterCount = 0;
  Pool& pool = ThePool();
  PoolSlot& slot = pool.slots[thunk.index];
  if (slot.thunk.get() != &thunk) return;
  slot.original = thunk.original;
  slot.wide = thunk.wide;
  slot.thunk.reset();
  if (reusable) pool.free.push_back(thunk.index);
}

// The Unicode check, made once: the wide or narrow procedure functions follow it.
bool Wide() {
  static const bool wide = IsWindowUnicode(GetDesktopWindow()) != FALSE;
  return wide;
}

LONG_PTR GetProc(HWND hWnd) {
  return Wide() ? GetWindowLongPtrW(hWnd, GWL_WNDPROC) : GetWindowLongPtrA(hWnd, GWL_WNDPROC);
}

LONG_PTR SetProc(HWND hWnd, LONG_PTR proc) {
  return Wide() ? SetWindowLongPtrW(hWnd, GWL_WNDPROC, proc)
                : SetWindowLongPtrA(hWnd, GWL_WNDPROC, proc);
}

bool OfThisProcess(HWND hWnd) {
  DWORD process = 0;
  return hWnd != nullptr && GetWindowThreadProcessId(hWnd, &process) != 0 &&
         process == GetCurrentProcessId();
}

}  // namespace

cSubClassEx::cSubClassEx(WndProcHandler handler)
    : handler_(std::make_shared<const WndProcHandler>(std::move(handler))) {
  // Made before any bridge, the pool is gone only after every bridge that
  // lives until the end of the program has given its windows back.
  ThePool();
}

cSubClassEx::cSubClassEx(Owner& owner)
    : cSubClassEx([&owner](bool bBefore, bool& bHandled, LRESULT& lReturn, HWND hWnd, UINT uMsg,
                           WPARAM wParam, LPARAM lParam) {
        owner.WndProc(bBefore, bHandled, lReturn, hWnd, uMsg, wParam, lParam);
      }) {}

cSubClassEx::~cSubClassEx() {
  for (size_t i = records_.size(); i-- > 0;) {
    if (records_[i].hWnd != nullptr) UnSubclass(records_[i].hWnd);
  }
  records_.clear();
}

WNDPROC cSubClassEx::Subclass(HWND hWnd) {
  if (!IsWindow(hWnd) || !OfThisProcess(hWnd)) return nullptr;
  std::shared_ptr<Thunk> thunk = NewThunk(handler_);
  if (!thunk) return nullptr;
  const WNDPROC proc = kProcs[thunk->index];
  thunk->wide = Wide();
  // Filled in before the window can call it.
  thunk->original = GetProc(hWnd);
  const LONG_PTR previous = SetProc(hWnd, reinterpret_cast<LONG_PTR>(proc));
  if (previous == 0) {
    Retire(*thunk, true);
    return nullptr;
  }
  thunk->original = previous;
  int slot = FreeSlot();
  if (slot < 0) {
    records_.emplace_back();
    slot = static_cast<int>(records_.size()) - 1;
  }
  records_[static_cast<size_t>(slot)] = Record{hWnd, previous, 0, 0, std::move(thunk)};
  return proc;
}

void cSubClassEx::AddMsg(HWND hWnd, int32_t uMsg, eMsgWhen when) {
  if (!OfThisProcess(hWnd)) return;
  Record* r = Find(hWnd);
  if (r == nullptr) return;
  Thunk& t = *r->thunk;
  if ((when & MSG_BEFORE) != 0) {
    Add(r->beforeCount, t.before, uMsg);
    t.beforeCount = r->beforeCount;
  }
  if ((when & MSG_AFTER) != 0) {
    Add(r->afterCount, t.after, uMsg);
    t.afterCount = r->afterCount;
  }
}

void cSubClassEx::DelMsg(HWND hWnd, int32_t uMsg, eMsgWhen when) {
  Record* r = Find(hWnd);
  if (r == nullptr) return;
  Thunk& t = *r->thunk;
  if ((when & MSG_BEFORE) != 0) {
    Del(r->beforeCount, t.before, uMsg);
    t.beforeCount = r->beforeCount;
  }
  if ((when & MSG_AFTER) != 0) {
    Del(r->afterCount, t.after, uMsg);
    t.afterCount = r->afterCount;
  }
}

void cSubClassEx::UnSubclass(HWND hWnd) {
  Record* r = Find(hWnd);
  if (r == nullptr) return;
  Thunk& t = *r->thunk;
  // A window that is gone can no longer call its procedure.
  bool reusable = !IsWindow(hWnd);
  if (!reusable && OfThisProcess(hWnd)) {
    const LONG_PTR current = GetProc(hWnd);
    if (current != r->original) {
      SetLastError(0);
      const LONG_PTR previous = SetProc(hWnd, r->original);
      // When something subclassed the window after us, its chain still ends
      // in our procedure: that one stays a pass-through instead of going back
      // to the pool.
      reusable = (previous != 0 || GetLastError() == 0) &&
                 current == reinterpret_cast<LONG_PTR>(kProcs[t.index]);
    }
  }
  Retire(t, reusable);
  r->hWnd = nullptr;
  r->beforeCount = 0;
  r->afterCount = 0;
  r->thunk.reset();
}

LONG_PTR cSubClassEx::GetOriginalHwnd(HWND hWnd) const {
  const Record* r = Find(hWnd);
  return r ? r->original : 0;
}

int cSubClassEx::SlotOf(HWND hWnd) const {
  const Record* r = Find(hWnd);
  return r ? static_cast<int>(r - records_.data()) : -1;
}

int32_t cSubClassEx::MsgCount(HWND hWnd, eMsgWhen when) const {
  const Record* r = Find(hWnd);
  if (r == nullptr) return 0;
  return (when & MSG_BEFORE) != 0 ? r->beforeCount : r->afterCount;
}

std::vector<int32_t> cSubClassEx::MsgTable(HWND hWnd, eMsgWhen when) const {
  const Record* r = Find(hWnd);
  if (r == nullptr) return {};
  return (when & MSG_BEFORE) != 0 ? r->thunk->before : r->thunk->after;
}

size_t cSubClassEx::PoolSize() {
  return kPoolSize;
}

size_t cSubClassEx::PoolFree() {
  return ThePool().free.size();
}

// From the highest index down, as the owner's Terminate walks the records.
cSubClassEx::Record* cSubClassEx::Find(HWND hWnd) {
  return const_cast<Record*>(std::as_const(*this).Find(hWnd));
}

const cSubClassEx::Record* cSubClassEx::Find(HWND hWnd) const {
  if (hWnd == nullptr) return nullptr;
  for (size_t i = records_.size(); i-- > 0;) {
    if (records_[i].hWnd == hWnd) return &records_[i];
  }
  return nullptr;
}

int cSubClassEx::FreeSlot() const {
  for (size_t i = records_.size(); i-- > 0;) {
    if (records_[i].hWnd == nullptr) return static_cast<int>(i);
  }
  return -1;
}

void cSubClassEx::Add(int32_t& count, std::vector<int32_t>& table, int32_t uMsg) {
  if (uMsg == ALL_MESSAGES) {
    count = ALL_MESSAGES;
    return;
  }
  // Every message already arrives; and 0 is the mark of a free entry.
  if (count == ALL_MESSAGES || uMsg == 0) return;
  if (std::find(table.begin(), table.end(), uMsg) != table.end()) return;
  const auto free = std::find(table.begin(), table.end(), 0);
  if (free != table.end()) {
    *free = uMsg;
    return;
  }
  table.push_back(uMsg);
  count = static_cast<int32_t>(table.size());
}

void cSubClassEx::Del(int32_t& count, std::vector<int32_t>& table, int32_t uMsg) {
  if (uMsg == ALL_MESSAGES) {
    count = 0;
    table.clear();
    return;
  }
  // The entry is freed for the next AddMsg; the table keeps its size and the
  // count with it, and a count of -1 still takes every message.
  if (uMsg == 0) return;
  std::replace(table.begin(), table.end(), uMsg, 0);
}

}  // namespace vantor::plumbing
