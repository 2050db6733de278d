#include <cstring>
#include <stdexcept>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "Kit/Bus/SessionBusNotificationCenter.h"
#include "Tests/Support/PrivateBus.h"

// Session buses that are missing, silent, frozen or gone.

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

template <typename Action>
milliseconds timeOf(Action action) {
  const auto start = steady_clock::now();
  action();
  return std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
}

// A socket that is announced as the session bus and accepts connections, but says nothing.
class SilentBus {
 public:
  explicit SilentBus(int backlog) {
    m_socket = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const std::string path = (m_folder.folder() / "bus").string();
    m_address.sun_family = AF_UNIX;
    std::memcpy(m_address.sun_path, path.c_str(), path.size() + 1);
    if (bind(m_socket, address(), sizeof(m_address)) != 0 || listen(m_socket, backlog) != 0) {
      throw std::runtime_error("no socket");
    }
    setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + path).c_str(), 1);
  }
  ~SilentBus() {
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    // Wakes a thread that is still accepting.
    shutdown(m_socket, SHUT_RDWR);
    if (m_thread.joinable()) {
      m_thread.join();
    }
    for (const int guest : m_guests) {
      close(guest);
    }
    close(m_socket);
  }
  SilentBus(const SilentBus&) = delete;
  SilentBus& operator=(const SilentBus&) = delete;

  // Fills the queue of waiting connections.
  void fill() {
    for (;;) {
      const int guest = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
      m_guests.push_back(guest);
      if (connect(guest, address(), sizeof(m_address)) != 0) {
        return;
      }
    }
  }

  // Answers the first line of every conversation like a bus, and nothing more.
  void answerGreetings() {
    m_thread = std::thread([this] {
      for (int guest = accept(m_socket, nullptr, nullptr); guest >= 0;
           guest = accept(m_socket, nullptr, nullptr)) {
        char line[256];
        if (recv(guest, line, sizeof(line), 0) > 0) {
          const std::string answer = "OK 0123456789abcdef0123456789abcdef\r\n";
          send(guest, answer.data(), answer.size(), MSG_NOSIGNAL);
        }
        m_guests.push_back(guest);
      }
    });
  }

 private:
  Scratch m_folder;
  int m_socket = -1;
  sockaddr_un m_address{};
  std::vector<int> m_guests;
  std::thread m_thread;

  const sockaddr* address() const { return reinterpret_cast<const sockaddr*>(&m_address); }
};

void expectNoCallBlocks() {
  auto center = std::make_unique<SessionBusNotificationCenter>();
  EXPECT_LT(timeOf([&] {
              center->addObserver("NerinDevStatus", [](const auto&, const auto&) {});
              center->postNotificationName("NerinSettingChange", "101", std::nullopt);
            }),
            milliseconds(500));
  bool isFlushed = true;
  const milliseconds flushed = timeOf([&] { isFlushed = center->flush(milliseconds(100)); });
  EXPECT_FALSE(isFlushed);
  EXPECT_GE(flushed, milliseconds(100));
  EXPECT_LT(flushed, milliseconds(800));
  EXPECT_LT(timeOf([&] { center.reset(); }), milliseconds(2500));

  ChildProcess program({POST_AND_QUIT});
  EXPECT_EQ(program.exitCode(seconds(10)), 0);
  EXPECT_EQ(program.read(milliseconds(0)), "");
}

void expectLostAtOnce() {
  EXPECT_LT(timeOf([] {
              SessionBusNotificationCenter center;
              center.postNotificationName("NerinSettingChange", "101", std::nullopt);
              EXPECT_FALSE(center.flush(seconds(20)));
              center.postNotificationName("NerinSettingChange", "101", LXUserInfo());
              EXPECT_FALSE(center.flush(seconds(20)));
            }),
            seconds(5));
  ChildProcess program({POST_AND_QUIT});
  EXPECT_EQ(program.exitCode(seconds(10)), 0);
  EXPECT_EQ(program.read(milliseconds(0)), "");
}

TEST(SessionBusTrouble, NoBusLosesPostsSilently) {
  unsetenv("DBUS_SESSION_BUS_ADDRESS");
  unsetenv("XDG_RUNTIME_DIR");
  expectLostAtOnce();
}

TEST(SessionBusTrouble, ABusThatIsNotThereLosesPostsSilently) {
  const Scratch folder;
  const std::string path = (folder.folder() / "nobody").string();
  setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + path).c_str(), 1);
  expectLostAtOnce();
  setenv("DBUS_SESSION_BUS_ADDRESS", "nonsense", 1);
  expectLostAtOnce();
  unsetenv("DBUS_SESSION_BUS_ADDRESS");
}

TEST(SessionBusTrouble, NothingToDoEndsAtOnceWithoutABus) {
  unsetenv("DBUS_SESSION_BUS_ADDRESS");
  unsetenv("XDG_RUNTIME_DIR");
  SessionBusNotificationCenter center;
  EXPECT_TRUE(center.flush());
}

TEST(SessionBusTrouble, ASilentBusHoldsNobody) {
  const SilentBus bus(16);
  expectNoCallBlocks();
}

TEST(SessionBusTrouble, ASilentBusWithAFullQueueHoldsNobody) {
  SilentBus bus(1);
  bus.fill();
  expectNoCallBlocks();
}

TEST(SessionBusTrouble, ABusThatOnlyAnswersTheGreetingHoldsNobody) {
  SilentBus bus(16);
  bus.answerGreetings();
  expectNoCallBlocks();
}

TEST(SessionBusTrouble, ABusThatIsSilentForAWhileGetsEverythingPosted) {
  PrivateBus bus;
  bus.freeze();
  SessionBusNotificationCenter center;
  center.postNotificationName("Early", "1", std::nullopt);
  EXPECT_FALSE(center.flush(milliseconds(100)));
  center.postNotificationName("Early", "2", LXUserInfo());
  bus.thaw();
  EXPECT_TRUE(center.flush(seconds(20)));
  EXPECT_EQ(bus.nextNotification().value_or(BusMessage()).body, "s:1");
  EXPECT_EQ(bus.nextNotification().value_or(BusMessage()).body, "s:2 {}");
}

TEST(SessionBusTrouble, ABusThatFreezesLaterHoldsNobody) {
  const PrivateBus bus;
  auto center = std::make_unique<SessionBusNotificationCenter>();
  center->postNotificationName("First", "1", std::nullopt);
  ASSERT_TRUE(center->flush(seconds(20)));
  bus.freeze();
  center->postNotificationName("Second", "2", std::nullopt);
  EXPECT_FALSE(center->flush(milliseconds(50)));
  EXPECT_LT(timeOf([&] { center.reset(); }), milliseconds(2500));
  bus.thaw();
}

TEST(SessionBusTrouble, ABusThatEndsLosesLaterPostsSilently) {
  PrivateBus bus;
  SessionBusNotificationCenter center;
  center.addObserver("NerinDevStatus", [](const auto&, const auto&) {});
  center.postNotificationName("First", "1", std::nullopt);
  ASSERT_TRUE(center.flush(seconds(20)));
  bus.end();
  center.postNotificationName("Second", "2", std::nullopt);
  EXPECT_FALSE(center.flush(seconds(20)));
  center.postNotificationName("Third", "3", std::nullopt);
  EXPECT_LT(timeOf([&] { EXPECT_FALSE(center.flush(seconds(20))); }), seconds(5));
}

}  // namespace
