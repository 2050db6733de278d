#include <filesystem>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <systemd/sd-bus.h>

#include "Kit/Bus/BusQuestion.h"
#include "Kit/Bus/SessionBus.h"
#include "Tests/Support/PrivateBus.h"

namespace {

using namespace std::chrono_literals;

constexpr const char* variable = "DBUS_SESSION_BUS_ADDRESS";

bool reachesTheBus() {
  return isOnTheSessionBus("org.freedesktop.DBus", 20s);
}

TEST(SessionBus, KeepsTheOrderOfSockets) {
  EXPECT_EQ(sessionbus::socketsOf("unix:path=/b,guid=7;;unix:abstract=/a"),
            "unix:path=/b,guid=7;unix:abstract=/a");
}

TEST(SessionBus, LeavesOutWhatIsNoSocket) {
  EXPECT_EQ(sessionbus::socketsOf("tcp:host=localhost,port=1;autolaunch:;unixexec:path=/bin/true"),
            "");
  EXPECT_EQ(sessionbus::socketsOf("tcp:host=a;unix:path=/b;nonce-tcp:"), "unix:path=/b");
  EXPECT_EQ(sessionbus::socketsOf(""), "");
  EXPECT_EQ(sessionbus::socketsOf("unix"), "");
}

TEST(SessionBus, StartsNoProgramOfAnAddress) {
  const Scratch folder;
  const std::string file = (folder.folder() / "started").string();
  setenv(variable, ("unixexec:path=/usr/bin/touch,argv1=" + file).c_str(), 1);
  EXPECT_FALSE(isOnTheSessionBus("org.freedesktop.DBus", 300ms));
  EXPECT_FALSE(std::filesystem::exists(file));
  unsetenv(variable);
}

TEST(SessionBus, ReachesTheFirstAddressWithABus) {
  const PrivateBus bus;
  const std::string real = getenv(variable);
  setenv(variable, ("tcp:host=localhost,port=1;unix:path=/nowhere/bus;" + real).c_str(), 1);
  EXPECT_TRUE(reachesTheBus());
  setenv(variable, real.c_str(), 1);
}

TEST(SessionBus, LooksInTheRuntimeFolderWhenTheEnvironmentNamesNoBus) {
  const PrivateBus bus;
  const std::string real = getenv(variable);
  const std::string path =
      real.substr(real.find("path=") + 5, real.find(',') - real.find("path=") - 5);
  const Scratch folder;
  const auto odd = folder.folder() / "a b,c;d%";
  std::filesystem::create_directory(odd);
  std::filesystem::create_symlink(path, odd / "bus");
  setenv("XDG_RUNTIME_DIR", odd.c_str(), 1);
  unsetenv(variable);
  EXPECT_TRUE(reachesTheBus());
  setenv(variable, "", 1);
  EXPECT_TRUE(reachesTheBus());
  unsetenv("XDG_RUNTIME_DIR");
  setenv(variable, real.c_str(), 1);
}

TEST(SessionBus, IsNowhereWithoutASession) {
  unsetenv(variable);
  unsetenv("XDG_RUNTIME_DIR");
  EXPECT_EQ(sessionbus::address(), "");
  sd_bus* bus = nullptr;
  EXPECT_LT(sessionbus::open(bus), 0);
  EXPECT_EQ(bus, nullptr);
}

TEST(SessionBus, BrokenAddressesAreNoBus) {
  for (const char* address :
       {"unix:", "unix:path=", "unix:path=/a%2", "unix:path=/a%zz", "unix:x"}) {
    setenv(variable, address, 1);
    EXPECT_FALSE(isOnTheSessionBus("org.freedesktop.DBus", 300ms)) << address;
  }
  unsetenv(variable);
}

}  // namespace
