#include "services/HostSystem.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <memory>

extern char** environ;

namespace vantor::services {
namespace {

std::string ReadText(const char* path) {
  std::string out;
  const int fd = ::open(path, O_RDONLY | O_CLOEXEC);
  if (fd < 0) return out;
  char buffer[8192];
  // The kernel's tables are small; the cap only guards against a strange
  // file put in their place.
  while (out.size() < (16u << 20)) {
    const ssize_t n = ::read(fd, buffer, sizeof buffer);
    if (n > 0) {
      out.append(buffer, static_cast<size_t>(n));
    } else if (n < 0 && errno == EINTR) {
      continue;
    } else {
      break;
    }
  }
  ::close(fd);
  return out;
}

std::vector<std::string_view> Lines(std::string_view text) {
  std::vector<std::string_view> out;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string_view::npos) end = text.size();
    out.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return out;
}

std::vector<std::string_view> Fields(std::string_view line) {
  std::vector<std::string_view> out;
  size_t i = 0;
  while (i < line.size()) {
    while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
    const size_t start = i;
    while (i < line.size() && line[i] != ' ' && line[i] != '\t') ++i;
    if (i > start) out.push_back(line.substr(start, i - start));
  }
  return out;
}

bool ParseHex(std::string_view s, unsigned long& out) {
  if (s.empty() || s.size() > 16) return false;
  out = 0;
  for (char c : s) {
    int d;
    if (c >= '0' && c <= '9') {
      d = c - '0';
    } else if (c >= 'a' && c <= 'f') {
      d = c - 'a' + 10;
    } else if (c >= 'A' && c <= 'F') {
      d = c - 'A' + 10;
    } else {
      return false;
    }
    out = out * 16 + static_cast<unsigned long>(d);
  }
  return true;
}

bool AllZero(std::string_view s) {
  return !s.empty() && std::all_of(s.begin(), s.end(), [](char c) { return c == '0'; });
}

constexpr unsigned long kRouteUp = 0x0001;
constexpr unsigned long kRouteReject = 0x0200;

// The kernel writes blanks, tabs, newlines and backslashes in a mount point
// as three octal digits after a backslash.
std::string Unescape(std::string_view s) {
  std::string out;
  for (size_t i = 0; i < s.size(); ++i) {
    if (s[i] == '\\' && i + 3 < s.size()) {
      const std::string_view oct = s.substr(i + 1, 3);
      if (std::all_of(oct.begin(), oct.end(), [](char c) { return c >= '0' && c <= '7'; })) {
        out.push_back(
            static_cast<char>(((oct[0] - '0') << 6) | ((oct[1] - '0') << 3) | (oct[2] - '0')));
        i += 3;
        continue;
      }
    }
    out.push_back(s[i]);
  }
  return out;
}

bool SameAsciiNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    char x = a[i];
    char y = b[i];
    if (x >= 'A' && x <= 'Z') x = static_cast<char>(x - 'A' + 'a');
    if (y >= 'A' && y <= 'Z') y = static_cast<char>(y - 'A' + 'a');
    if (x != y) return false;
  }
  return true;
}

}  // namespace

std::vector<std::string> HostSystem::MountPoints(std::string_view mountinfo) {
  std::vector<std::string> out;
  for (std::string_view line : Lines(mountinfo)) {
    const std::vector<std::string_view> f = Fields(line);
    if (f.size() >= 5 && !f[4].empty() && f[4].front() == '/') out.push_back(Unescape(f[4]));
  }
  return out;
}

bool HostSystem::IsMountPoint(const std::string& path) {
  if (path.empty() || path.find('\0') != std::string::npos) return false;
  std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
  if (!real) return false;
  const std::string canonical(real.get());
  struct stat st {};
  if (::stat(canonical.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) return false;
  if (canonical == "/") return true;
  const std::string table = ReadText("/proc/self/mountinfo");
  if (!table.empty()) {
    const std::vector<std::string> points = MountPoints(table);
    return std::find(points.begin(), points.end(), canonical) != points.end();
  }
  // Without /proc: a folder on another device than its parent's is where
  // that device is mounted.
  struct stat parent {};
  const std::string up = canonical.substr(0, std::max<size_t>(canonical.rfind('/'), 1));
  return ::stat(up.c_str(), &parent) == 0 && parent.st_dev != st.st_dev;
}

bool HostSystem::HasDefaultRoute(std::string_view ipv4Routes, std::string_view ipv6Routes) {
  bool header = true;
  for (std::string_view line : Lines(ipv4Routes)) {
    if (header) {
      header = false;
      continue;
    }
    // Iface Destination Gateway Flags RefCnt Use Metric Mask ...
    const std::vector<std::string_view> f = Fields(line);
    unsigned long flags = 0;
    if (f.size() < 8 || f[0] == "lo" || !ParseHex(f[3], flags)) continue;
    if (AllZero(f[1]) && AllZero(f[7]) && (flags & kRouteUp) != 0 && (flags & kRouteReject) == 0) {
      return true;
    }
  }
  for (std::string_view line : Lines(ipv6Routes)) {
    // Destination PrefixLength Source SourcePrefix NextHop Metric RefCnt Use Flags Iface
    const std::vector<std::string_view> f = Fields(line);
    unsigned long flags = 0;
    if (f.size() < 10 || f[9] == "lo" || !ParseHex(f[8], flags)) continue;
    if (AllZero(f[0]) && AllZero(f[1]) && (flags & kRouteUp) != 0 && (flags & kRouteReject) == 0) {
      return true;
    }
  }
  return false;
}

bool HostSystem::Online() {
  return HasDefaultRoute(ReadText("/proc/net/route"), ReadText("/proc/net/ipv6_route"));
}

std::optional<int32_t> HostSystem::VolumeSerial() {
  struct statvfs vfs {};
  if (::statvfs("/", &vfs) == 0) {
    const auto id = static_cast<uint64_t>(vfs.f_fsid);
    const auto folded = static_cast<uint32_t>(id ^ (id >> 32));
    if (folded != 0) return static_cast<int32_t>(folded);
  }
  for (const char* file : {"/etc/machine-id", "/var/lib/dbus/machine-id"}) {
    const std::string id = ReadText(file);
    unsigned long value = 0;
    if (id.size() >= 8 && ParseHex(std::string_view(id).substr(0, 8), value) && value != 0) {
      return static_cast<int32_t>(static_cast<uint32_t>(value));
    }
  }
  return std::nullopt;
}

String HostSystem::Environment(std::string_view name) {
  if (name.empty() || name.find('=') != std::string_view::npos ||
      name.find('\0') != std::string_view::npos) {
    return {};
  }
  const std::string exact(name);
  if (const char* v = std::getenv(exact.c_str()); v != nullptr) return FromUtf8(v);
  for (char** e = environ; e != nullptr && *e != nullptr; ++e) {
    const std::string_view entry(*e);
    const size_t eq = entry.find('=');
    if (eq != std::string_view::npos && SameAsciiNoCase(entry.substr(0, eq), name)) {
      return FromUtf8(entry.substr(eq + 1));
    }
  }
  return {};
}

}  // namespace vantor::services
