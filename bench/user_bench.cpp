// Message dispatch through a two-deep subclass chain (each link passes the
// message on with CallWindowProcW, as the library's message bridge does)
// beside the same work done by a chain of std::function objects and by a
// chain of virtual calls in one process. Goal: a million sent messages in
// under 200 ms.
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>

#include <benchmark/benchmark.h>

#include "platform/Desktop.h"
#include "platform/User.h"

namespace {

long g_messages = 1000000;
int64_t g_sum = 0;
WNDPROC g_old_first = nullptr;
WNDPROC g_old_second = nullptr;

LRESULT CALLBACK Original(HWND h, UINT m, WPARAM w, LPARAM l) {
  if (m == WM_USER) {
    g_sum += static_cast<int64_t>(w);
    return 1;
  }
  return DefWindowProcW(h, m, w, l);
}

LRESULT CALLBACK First(HWND h, UINT m, WPARAM w, LPARAM l) {
  return CallWindowProcW(g_old_first, h, m, w, l) + 1;
}

LRESULT CALLBACK Second(HWND h, UINT m, WPARAM w, LPARAM l) {
  return CallWindowProcW(g_old_second, h, m, w, l) + 1;
}

struct Link {
  virtual ~Link() = default;
  virtual LRESULT Handle(UINT m, WPARAM w, LPARAM l) = 0;
};
struct Base final : Link {
  LRESULT Handle(UINT m, WPARAM w, LPARAM) override {
    if (m == WM_USER) g_sum += static_cast<int64_t>(w);
    return 1;
  }
};
struct Wrap final : Link {
  explicit Wrap(Link* n) : next(n) {}
  Link* next;
  LRESULT Handle(UINT m, WPARAM w, LPARAM l) override { return next->Handle(m, w, l) + 1; }
};

double Millis(const std::function<void()>& f) {
  const auto start = std::chrono::steady_clock::now();
  f();
  const auto end = std::chrono::steady_clock::now();
  return std::chrono::duration<double, std::milli>(end - start).count();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], "--quick") == 0) g_messages = 100000;
  WNDCLASSEXW wc{};
  wc.cbSize = sizeof wc;
  wc.lpfnWndProc = Original;
  wc.lpszClassName = u"BenchWindow";
  RegisterClassExW(&wc);
  HWND hwnd = CreateWindowExW(0, u"BenchWindow", u"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr,
                              nullptr, nullptr);
  g_old_first = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&First)));
  g_old_second = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Second)));

  for (int i = 0; i < 10000; ++i) benchmark::DoNotOptimize(SendMessageW(hwnd, WM_USER, 1, 0));
  const double ours = Millis([&] {
    for (long i = 0; i < g_messages; ++i) {
      benchmark::DoNotOptimize(SendMessageW(hwnd, WM_USER, static_cast<WPARAM>(i & 7), 0));
    }
  });

  std::function<LRESULT(UINT, WPARAM, LPARAM)> base = [](UINT m, WPARAM w, LPARAM) -> LRESULT {
    if (m == WM_USER) g_sum += static_cast<int64_t>(w);
    return 1;
  };
  std::function<LRESULT(UINT, WPARAM, LPARAM)> first = [&](UINT m, WPARAM w, LPARAM l) {
    return base(m, w, l) + 1;
  };
  std::function<LRESULT(UINT, WPARAM, LPARAM)> second = [&](UINT m, WPARAM w, LPARAM l) {
    return first(m, w, l) + 1;
  };
  const double functions = Millis([&] {
    for (long i = 0; i < g_messages; ++i) {
      benchmark::DoNotOptimize(second(WM_USER, static_cast<WPARAM>(i & 7), 0));
    }
  });

  auto b = std::make_unique<Base>();
  auto w1 = std::make_unique<Wrap>(b.get());
  auto w2 = std::make_unique<Wrap>(w1.get());
  Link* top = w2.get();
  benchmark::DoNotOptimize(top);
  const double virtuals = Millis([&] {
    for (long i = 0; i < g_messages; ++i) {
      benchmark::DoNotOptimize(top->Handle(WM_USER, static_cast<WPARAM>(i & 7), 0));
    }
  });

  std::printf("%ld messages through a two-deep subclass chain\n", g_messages);
  std::printf(
      "  SendMessageW + CallWindowProcW  %8.1f ms  (%.1f ns/message; goal < 200 ms per million)\n",
      ours, ours * 1e6 / static_cast<double>(g_messages));
  std::printf("  std::function chain             %8.1f ms  ratio %.1f\n", functions,
              ours / functions);
  std::printf("  virtual call chain              %8.1f ms  ratio %.1f\n", virtuals,
              ours / virtuals);
  benchmark::DoNotOptimize(g_sum);
  vantor::platform::ResetDesktop();
  return 0;
}
