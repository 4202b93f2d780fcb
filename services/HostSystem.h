#pragma once
// What VT asks of the machine beyond files and processes: mount points (for
// the drives a Windows host asks about), the routing table (for "is there a
// connection"), the system volume's serial number and the environment read
// the way Windows reads it. The readers of the kernel's tables take their
// text, so that tests can give them any table.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/String.h"

namespace vantor::services {

class HostSystem {
 public:
  // The mount points listed in a /proc/self/mountinfo text, escapes undone.
  static std::vector<std::string> MountPoints(std::string_view mountinfo);
  // Whether the folder is "/" or has a file system mounted on it.
  static bool IsMountPoint(const std::string& path);

  // Whether a usable default route leaves by an interface other than
  // loopback, in the texts of /proc/net/route and /proc/net/ipv6_route.
  static bool HasDefaultRoute(std::string_view ipv4Routes, std::string_view ipv6Routes);
  // The same for this machine: a connection is configured. As with the
  // platform's connected-state query, nothing is sent on the network.
  static bool Online();

  // The root file system's identifier folded into 32 bits, the size of a
  // volume serial number; /etc/machine-id's first 32 bits where the file
  // system has none; nothing when neither is known.
  static std::optional<int32_t> VolumeSerial();

  // An environment variable by name without regard to case, as Windows
  // names them ("UserProfile" finds USERPROFILE); an exact match first.
  // Empty when unset or set to nothing.
  static String Environment(std::string_view name);
};

}  // namespace vantor::services
