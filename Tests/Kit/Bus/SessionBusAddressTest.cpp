#include <gtest/gtest.h>
#include <stdlib.h>

#include "Kit/Bus/SessionBusAddress.h"

namespace {

std::vector<std::string> socketNames(std::string_view list) {
  std::vector<std::string> names;
  for (const SessionBusAddress& address : SessionBusAddress::parse(list)) {
    names.push_back(address.socketName);
  }
  return names;
}

using Names = std::vector<std::string>;

TEST(SessionBusAddress, ReadsAPath) {
  EXPECT_EQ(socketNames("unix:path=/run/user/1000/bus"), Names{"/run/user/1000/bus"});
  EXPECT_EQ(socketNames("unix:guid=00ff,path=/run/bus,guid=1"), Names{"/run/bus"});
}

TEST(SessionBusAddress, ReadsAnAbstractName) {
  EXPECT_EQ(socketNames("unix:abstract=/run/dbus-x"), Names{std::string("\0/run/dbus-x", 12)});
}

TEST(SessionBusAddress, UndoesEscapes) {
  EXPECT_EQ(socketNames("unix:path=/run/a%20b%2Cc"), Names{"/run/a b,c"});
}

TEST(SessionBusAddress, KeepsTheOrderAndTheTextOfAList) {
  const auto addresses = SessionBusAddress::parse("unix:path=/b,guid=7;;unix:path=/a");
  ASSERT_EQ(addresses.size(), 2U);
  EXPECT_EQ(addresses[0].text, "unix:path=/b,guid=7");
  EXPECT_EQ(addresses[1].text, "unix:path=/a");
}

TEST(SessionBusAddress, LeavesOutWhatIsNoUnixSocket) {
  EXPECT_EQ(socketNames("tcp:host=localhost,port=1;autolaunch:;unixexec:path=/bin/true"), Names{});
}

TEST(SessionBusAddress, LeavesOutBrokenAddresses) {
  EXPECT_EQ(socketNames(""), Names{});
  EXPECT_EQ(socketNames("unix"), Names{});
  EXPECT_EQ(socketNames("unix:"), Names{});
  EXPECT_EQ(socketNames("unix:path="), Names{});
  EXPECT_EQ(socketNames("unix:path=/a%2"), Names{});
  EXPECT_EQ(socketNames("unix:path=/a%zz"), Names{});
  EXPECT_EQ(socketNames("unix:path=/" + std::string(107, 'x')), Names{});
  EXPECT_EQ(socketNames("unix:path=/" + std::string(106, 'x')).size(), 1U);
}

TEST(SessionBusAddress, TakesTheRuntimeFolderWhenTheEnvironmentNamesNoBus) {
  unsetenv("DBUS_SESSION_BUS_ADDRESS");
  setenv("XDG_RUNTIME_DIR", "/run/user/a b", 1);
  const auto addresses = SessionBusAddress::ofThisSession();
  unsetenv("XDG_RUNTIME_DIR");
  ASSERT_EQ(addresses.size(), 1U);
  EXPECT_EQ(addresses[0].text, "unix:path=/run/user/a%20b/bus");
  EXPECT_EQ(addresses[0].socketName, "/run/user/a b/bus");
}

TEST(SessionBusAddress, KnowsNoBusWithoutASession) {
  unsetenv("DBUS_SESSION_BUS_ADDRESS");
  unsetenv("XDG_RUNTIME_DIR");
  EXPECT_TRUE(SessionBusAddress::ofThisSession().empty());
}

}  // namespace
