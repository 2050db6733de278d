// The pointer belongs to the kernel's driver, whatever the program does.

#include <atomic>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/input.h>
#include <poll.h>
#include <unistd.h>

#include "Tests/UsbStack/Guest.h"
#include "Tests/VirtualMouse/MouseHost.h"

namespace {

using std::chrono::milliseconds;

// Reads the motions of the pointer as a desktop does, on a thread of its own.
class Desktop {
 public:
  explicit Desktop(const std::filesystem::path& node)
      : m_node(open(node.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)),
        m_thread([this] { readAll(); }) {}
  ~Desktop() {
    m_isEnding = true;
    m_thread.join();
    close(m_node);
  }
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;

  // How far the pointer has moved to the right.
  int way() const { return m_way; }
  // Whether the kernel had to drop motions.
  bool hasLost() const { return m_hasLost; }

 private:
  void readAll() {
    pollfd entry{m_node, POLLIN, 0};
    while (!m_isEnding) {
      constexpr int pollLimit = 20;
      if (poll(&entry, 1, pollLimit) <= 0) {
        continue;
      }
      input_event event{};
      while (read(m_node, &event, sizeof event) == static_cast<ssize_t>(sizeof event)) {
        take(event);
      }
      if ((entry.revents & POLLHUP) != 0) {
        return;
      }
    }
  }
  void take(const input_event& event) {
    if (event.type == EV_REL && event.code == REL_X) {
      m_way += event.value;
    } else if (event.type == EV_SYN && event.code == SYN_DROPPED) {
      m_hasLost = true;
    }
  }

  const int m_node;
  std::atomic<bool> m_isEnding = false;
  std::atomic<int> m_way = 0;
  std::atomic<bool> m_hasLost = false;
  std::thread m_thread;
};

class UsbPointer : public UsbStackTest {
 protected:
  // The driver of the pointer and the node of its motions, which must stay what they are.
  std::string binding() const {
    return m_plugged.driver(0) + " " + m_plugged.events().string() + " " +
           m_plugged.hidraw(0).string();
  }
};

constexpr milliseconds stepTime(8);
constexpr milliseconds writingTime(80);
constexpr int macroCount = 6;

}  // namespace

TEST_F(UsbPointer, StaysBoundWhileTheProgramHasTheMouse) {
  EXPECT_EQ(m_plugged.driver(0), "usbhid");
  EXPECT_EQ(m_plugged.driver(1), "usbhid");
  const std::string before = binding();
  {
    Host host;
    ASSERT_TRUE(host.command({0xC4, 0x00}));
    ASSERT_TRUE(host.writeMacro(MouseHost::numberedReport(4, 1)));
    EXPECT_EQ(binding(), before);
  }
  EXPECT_EQ(binding(), before);
}

TEST_F(UsbPointer, KeepsMovingDuringEachWriteOf2053Bytes) {
  const std::string before = binding();
  Host host;
  const Desktop desktop(m_plugged.events());
  m_mouse.moveEvery(stepTime);
  ASSERT_TRUE(eventually([&] { return desktop.way() > 0; })) << "the pointer does not move";
  m_mouse.setAnswerTime(writingTime);
  for (int macro = 0; macro < macroCount; ++macro) {
    const Bytes report = MouseHost::numberedReport(4, macro, macro);
    ASSERT_TRUE(host.command({0xC4, 0x0B, static_cast<std::uint8_t>(macro), 1}));
    const int wayBefore = desktop.way();
    ASSERT_TRUE(host.writeReport(report)) << host.error().message();
    // Ten steps fit into the time of a write; a busy machine may be late with some.
    EXPECT_GE(desktop.way() - wayBefore, 4) << "during macro " << macro;
  }
  m_mouse.moveEvery(milliseconds(0));
  const auto steps = static_cast<int>(m_mouse.stepsReported());
  EXPECT_TRUE(eventually([&] { return desktop.way() >= steps; }, milliseconds(500)));
  EXPECT_EQ(desktop.way(), steps) << "a motion was lost or came twice";
  EXPECT_FALSE(desktop.hasLost());
  EXPECT_EQ(binding(), before);
  m_mouse.atTheMouse([](const VirtualMouse& mouse) {
    for (int macro = 0; macro < macroCount; ++macro) {
      Bytes written = MouseHost::numberedReport(4, macro, macro);
      written[0] = 0xB0;  // so the mouse marks a macro that it holds
      EXPECT_EQ(MouseHost::copyOf(mouse.macroReport(macro)), written) << macro;
    }
  });
}

TEST_F(UsbPointer, KeepsMovingWhileTheMouseDoesNotAnswer) {
  Host host;
  const Desktop desktop(m_plugged.events());
  m_mouse.moveEvery(stepTime);
  m_mouse.setAnswerTime(std::nullopt);
  int wayAtEnd = 0;
  std::thread writing([&] {
    EXPECT_FALSE(host.writeReport(MouseHost::numberedReport(5, 2)));
    wayAtEnd = desktop.way();
  });
  EXPECT_TRUE(eventually([&] { return m_mouse.pendingTransfer().has_value(); }));
  const int wayBefore = desktop.way();
  EXPECT_TRUE(eventually([&] { return desktop.way() >= wayBefore + 100; }, milliseconds(4000)));
  EXPECT_TRUE(m_mouse.pendingTransfer()) << "the transfer ended too early to show anything";
  m_mouse.unplug();
  writing.join();
  EXPECT_GE(wayAtEnd, wayBefore + 100);
}
