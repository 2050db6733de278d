#include <filesystem>
#include <fstream>
#include <functional>
#include <vector>

#include <gtest/gtest.h>
#include <poll.h>

#include "Kit/Device/HidNodeWatch.h"
#include "Kit/Device/HidPresenceMonitor.h"
#include "Tests/Support/EmulatedMouse.h"
#include "Tests/Support/Scratch.h"

// Who tells that the mouse comes and goes: udevd, or the folder of the nodes.

namespace {

TEST(HidPresenceMonitor, HasADescriptorThatBecomesReadable) {
  EmulatedMouse mouse;
  HidPresenceMonitor monitor(mouse.udevControl());
  ASSERT_GE(monitor.descriptor(), 0);
  pollfd ready{.fd = monitor.descriptor(), .events = POLLIN, .revents = 0};
  EXPECT_EQ(poll(&ready, 1, 0), 0);
  mouse.plug();
  EXPECT_EQ(poll(&ready, 1, 5000), 1);
  EXPECT_TRUE(monitor.takeNews().isAny);
  EXPECT_EQ(poll(&ready, 1, 0), 0);
  mouse.unplug();
  EXPECT_EQ(poll(&ready, 1, 5000), 1);
}

TEST(HidPresenceMonitor, TellsOfTheNodesWithoutUdevd) {
  EmulatedMouse mouse;
  mouse.setIsSilent(true);
  HidPresenceMonitor monitor(mouse.udevControl() / "missing");
  EXPECT_TRUE(monitor.isReliable());
  pollfd ready{.fd = monitor.descriptor(), .events = POLLIN, .revents = 0};
  EXPECT_EQ(poll(&ready, 1, 0), 0);
  for (const auto& change : std::vector<std::function<void()>>{
           [&] { mouse.plug(); }, [&] { mouse.setIsAccessAllowed(false); },
           [&] { mouse.unplug(); }}) {
    change();
    EXPECT_EQ(poll(&ready, 1, 5000), 1);
    EXPECT_TRUE(monitor.takeNews().isAny);
    EXPECT_EQ(poll(&ready, 1, 0), 0);
    // Once more when all that belongs to it is done.
    EXPECT_EQ(poll(&ready, 1, 5000), 1);
    EXPECT_TRUE(monitor.takeNews().isAny);
    EXPECT_EQ(poll(&ready, 1, 400), 0);
  }
}

TEST(HidPresenceMonitor, IsNotReliableWhereNeitherUdevdNorTheNodesTell) {
  const HidPresenceMonitor monitor("/missing", "/missing");
  EXPECT_FALSE(monitor.isReliable());
  EXPECT_EQ(monitor.descriptor(), -1);
}

TEST(HidNodeWatch, TellsOfNodesOfMiceOnly) {
  const Scratch folder;
  HidNodeWatch watch(folder.folder());
  pollfd ready{.fd = watch.descriptor(), .events = POLLIN, .revents = 0};
  EXPECT_FALSE(watch.takeNews());
  std::ofstream(folder.folder() / "tty7") << "x";
  EXPECT_FALSE(watch.takeNews());
  EXPECT_EQ(poll(&ready, 1, 400), 0);
  std::ofstream(folder.folder() / "hidraw7") << "x";
  EXPECT_TRUE(watch.takeNews());
  EXPECT_FALSE(watch.takeNews());
  EXPECT_EQ(poll(&ready, 1, 5000), 1);
  EXPECT_TRUE(watch.takeNews());
  // Something else just before does not hide it.
  std::filesystem::remove(folder.folder() / "tty7");
  std::filesystem::remove(folder.folder() / "hidraw7");
  EXPECT_TRUE(watch.takeNews());
}

}  // namespace
