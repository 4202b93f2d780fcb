#include "services/HostSystem.h"

#include <gtest/gtest.h>
#include <sys/statvfs.h>

#include "SystemTestSupport.h"

namespace vantor::services {
namespace {

using test::EnvVar;
using test::TempFolder;

TEST(HostSystem, ReadsMountPointsWithTheirEscapes) {
  const std::string table =
      "22 27 0:21 / /proc rw,relatime - proc proc rw\n"
      "27 1 254:0 / / rw,relatime - ext4 /dev/vda rw\n"
      "40 27 0:40 / /mnt/meu\\040disco rw - vfat /dev/sdb1 rw\n"
      "41 27 0:41 / /mnt/barra\\134e\\011tab rw - tmpfs tmpfs rw\n"
      "42 27 0:42 / /mnt/quase\\04 rw - tmpfs tmpfs rw\n"
      "43 27 0:43 / /mnt/fim\\ rw - tmpfs tmpfs rw\n"
      "lixo\n"
      "\n"
      "44 27 0:44 / relativo rw - tmpfs tmpfs rw";
  const std::vector<std::string> want{
      "/proc", "/", "/mnt/meu disco", "/mnt/barra\\e\ttab", "/mnt/quase\\04", "/mnt/fim\\"};
  EXPECT_EQ(HostSystem::MountPoints(table), want);
  EXPECT_TRUE(HostSystem::MountPoints("").empty());
}

TEST(HostSystem, KnowsItsMountPoints) {
  TempFolder dir;
  EXPECT_TRUE(HostSystem::IsMountPoint("/"));
  EXPECT_TRUE(HostSystem::IsMountPoint("//"));
  EXPECT_TRUE(HostSystem::IsMountPoint("/proc/.."));
  if (HostSystem::IsMountPoint("/proc")) {
    EXPECT_TRUE(HostSystem::IsMountPoint("/proc/"));
  }
  // Whatever is mounted here, its table's entries answer.
  const std::string table = test::ReadFile("/proc/self/mountinfo");
  for (const std::string& point : HostSystem::MountPoints(table)) {
    struct stat st {};
    if (::stat(point.c_str(), &st) == 0 && S_ISDIR(st.st_mode) &&
        ::access(point.c_str(), X_OK) == 0) {
      EXPECT_TRUE(HostSystem::IsMountPoint(point)) << point;
    }
  }
  ::mkdir(dir.Join("sub").c_str(), 0755);
  dir.Write("arquivo", "x");
  EXPECT_FALSE(HostSystem::IsMountPoint(dir.Join("sub")));
  EXPECT_FALSE(HostSystem::IsMountPoint(dir.Join("arquivo")));
  EXPECT_FALSE(HostSystem::IsMountPoint(dir.Join("nada")));
  EXPECT_FALSE(HostSystem::IsMountPoint(""));
  EXPECT_FALSE(HostSystem::IsMountPoint("C:"));
  EXPECT_FALSE(HostSystem::IsMountPoint(std::string("/\0proc", 6)));
  EXPECT_FALSE(HostSystem::IsMountPoint("/" + std::string(5000, 'x')));
}

struct RouteCase {
  const char* label;
  const char* v4;
  const char* v6;
  bool want;
};

void PrintTo(const RouteCase& c, std::ostream* out) {
  *out << c.label;
}

constexpr char kHeader[] =
    "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";

class DefaultRoute : public ::testing::TestWithParam<RouteCase> {};

TEST_P(DefaultRoute, TellsAConnection) {
  const RouteCase& c = GetParam();
  EXPECT_EQ(HostSystem::HasDefaultRoute(c.v4, c.v6), c.want) << c.label;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, DefaultRoute,
    ::testing::Values(
        RouteCase{"ipv4 default", "h\neth0\t00000000\t010200C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n",
                  "", true},
        RouteCase{"ipv4 local only",
                  "h\neth0\t000200C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n", "", false},
        RouteCase{"ipv4 default down",
                  "h\neth0\t00000000\t010200C0\t0002\t0\t0\t0\t00000000\t0\t0\t0\n", "", false},
        RouteCase{"ipv4 default on loopback",
                  "h\nlo\t00000000\t00000000\t0001\t0\t0\t0\t00000000\t0\t0\t0\n", "", false},
        RouteCase{"ipv4 rejecting default",
                  "h\neth0\t00000000\t00000000\t0201\t0\t0\t0\t00000000\t0\t0\t0\n", "", false},
        RouteCase{"header alone", "eth0\t00000000\t010200C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n",
                  "", false},
        RouteCase{"ipv4 bad flags", "h\neth0\t00000000\t010200C0\tzz\t0\t0\t0\t00000000\n", "",
                  false},
        RouteCase{"ipv4 short line", "h\neth0\t00000000\n", "", false},
        RouteCase{"ipv6 default", "",
                  "00000000000000000000000000000000 00 00000000000000000000000000000000 00 "
                  "fd000000000000000000000000000001 00000400 00000002 00000000 00000003     eth0\n",
                  true},
        RouteCase{"ipv6 unreachable default on loopback", "",
                  "00000000000000000000000000000000 00 00000000000000000000000000000000 00 "
                  "00000000000000000000000000000000 ffffffff 00000001 00000000 00200200       lo\n",
                  false},
        RouteCase{"ipv6 link local only", "",
                  "fe800000000000000000000000000000 40 00000000000000000000000000000000 00 "
                  "00000000000000000000000000000000 00000100 00000002 00000000 00000001     eth0\n",
                  false},
        RouteCase{"nothing", "", "", false},
        RouteCase{"garbage", "\x01\x02\n\n\t\t\n", "zz zz\n", false}));

TEST(HostSystem, OnlineAgreesWithTheKernelsTables) {
  const std::string v4 = test::ReadFile("/proc/net/route");
  const std::string v6 = test::ReadFile("/proc/net/ipv6_route");
  EXPECT_EQ(HostSystem::Online(), HostSystem::HasDefaultRoute(v4, v6));
}

TEST(HostSystem, SerialIsTheRootFileSystemsId) {
  struct statvfs vfs {};
  ASSERT_EQ(::statvfs("/", &vfs), 0);
  const auto id = static_cast<uint64_t>(vfs.f_fsid);
  const auto folded = static_cast<int32_t>(static_cast<uint32_t>(id ^ (id >> 32)));
  const auto serial = HostSystem::VolumeSerial();
  if (folded != 0) {
    ASSERT_TRUE(serial.has_value());
    EXPECT_EQ(*serial, folded);
  }
  EXPECT_EQ(HostSystem::VolumeSerial(), serial);  // the same on every call
}

TEST(HostSystem, ReadsTheEnvironmentAsWindowsDoes) {
  EnvVar mixed("VtTeste_Mixed");
  EnvVar upper("VTTESTE_UPPER");
  EnvVar empty("VTTESTE_EMPTY");
  mixed.Set("misto");
  upper.Set("/caminho/com ç");
  empty.Set("");
  EXPECT_EQ(HostSystem::Environment("VtTeste_Mixed"), u"misto");
  EXPECT_EQ(HostSystem::Environment("VTTESTE_MIXED"), u"misto");
  EXPECT_EQ(HostSystem::Environment("vtteste_upper"), u"/caminho/com ç");
  EXPECT_EQ(HostSystem::Environment("VTTESTE_EMPTY"), u"");
  EXPECT_EQ(HostSystem::Environment("VTTESTE_NADA"), u"");
  EXPECT_EQ(HostSystem::Environment(""), u"");
  EXPECT_EQ(HostSystem::Environment("VTTESTE_UPPER=x"), u"");
  EXPECT_EQ(HostSystem::Environment(std::string_view("VTTESTE_UPPER\0", 14)), u"");
  // An exact match wins over one that differs in case.
  EnvVar exact("VtTeste_Upper");
  exact.Set("exato");
  EXPECT_EQ(HostSystem::Environment("VtTeste_Upper"), u"exato");
  EXPECT_EQ(HostSystem::Environment("VTTESTE_UPPER"), u"/caminho/com ç");
}

}  // namespace
}  // namespace vantor::services
