#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <stdlib.h>
#include <systemd/sd-event.h>

#include "Kit/Bus/BusConnection.h"
#include "Kit/Bus/BusNameWatch.h"
#include "Tests/Support/PrivateBus.h"

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using Clock = std::chrono::steady_clock;

constexpr const char* watched = "com.corvex.NerinOption.Companion";

// Another program on the bus. Its end is that of a program that is killed: the bus sees only that
// the connection is closed.
class Owner {
 public:
  explicit Owner(const char* name) {
    sd_event_new(&m_loop);
    m_connection = BusConnection::open(m_loop, BusConnection::Kind::Session, [] {});
    std::optional<bool> isOurs;
    m_connection->requestName(name, [&](std::optional<bool> answer) { isOurs = answer; });
    while (!isOurs && sd_event_run(m_loop, 20'000'000) > 0) {
    }
    EXPECT_EQ(isOurs, true);
  }
  ~Owner() {
    m_connection.reset();
    sd_event_unref(m_loop);
  }
  Owner(const Owner&) = delete;
  Owner& operator=(const Owner&) = delete;

 private:
  sd_event* m_loop = nullptr;
  std::unique_ptr<BusConnection> m_connection;
};

class BusNameWatchTest : public testing::Test {
 protected:
  // Waits for the descriptor as the loop of a program does. False if nothing came to do.
  bool workOnce(std::chrono::milliseconds limit) {
    pollfd one{.fd = watch->descriptor(), .events = POLLIN, .revents = 0};
    if (poll(&one, 1, static_cast<int>(limit.count())) <= 0) {
      return false;
    }
    watch->work();
    return true;
  }
  void workUntil(std::size_t changes) {
    const auto end = Clock::now() + 20s;
    while (told.size() < changes && Clock::now() < end) {
      workOnce(20s);
    }
  }
  void start() {
    watch = std::make_unique<BusNameWatch>(watched,
                                           [this](bool hasOwner) { told.push_back(hasOwner); });
    watch->work();
    // Until the bus has greeted and knows what is watched.
    while (workOnce(200ms)) {
    }
  }

  std::vector<bool> told;
  std::unique_ptr<BusNameWatch> watch;
};

TEST_F(BusNameWatchTest, TellsThatAnOwnerCameAndWent) {
  const PrivateBus bus;
  start();
  EXPECT_THAT(told, ElementsAre());
  {
    const Owner owner(watched);
    workUntil(1);
    EXPECT_THAT(told, ElementsAre(true));
  }
  workUntil(2);
  EXPECT_THAT(told, ElementsAre(true, false));
}

TEST_F(BusNameWatchTest, TellsTheEndOfAnOwnerThatWasThereBefore) {
  const PrivateBus bus;
  auto owner = std::make_unique<Owner>(watched);
  start();
  EXPECT_THAT(told, ElementsAre());
  owner.reset();
  workUntil(1);
  EXPECT_THAT(told, ElementsAre(false));
}

TEST_F(BusNameWatchTest, IsNotWokenByOthers) {
  const PrivateBus bus;
  start();
  const Owner other("com.corvex.NerinOption");
  PrivateBus::broadcast("/com/corvex/NerinOption",
                        "com.corvex.NerinOption.Notification.NerinDevStatus", {"''"});
  EXPECT_FALSE(workOnce(500ms));
}

TEST_F(BusNameWatchTest, TheEndOfTheBusIsTheEndOfTheOwner) {
  PrivateBus bus;
  const auto owner = std::make_unique<Owner>(watched);
  start();
  bus.end();
  workUntil(1);
  EXPECT_EQ(told.back(), false);
  // Nothing is left that would wake the program again and again.
  EXPECT_FALSE(workOnce(200ms));
}

TEST_F(BusNameWatchTest, ABusThatDoesNotAnswerHoldsNobodyUp) {
  const PrivateBus bus;
  bus.freeze();
  const auto begin = Clock::now();
  watch = std::make_unique<BusNameWatch>(watched, [](bool) {});
  watch->work();
  watch.reset();
  EXPECT_LT(Clock::now() - begin, 2s);
  bus.thaw();
}

TEST_F(BusNameWatchTest, WithoutABusThereIsNothingToWaitFor) {
  { const PrivateBus gone; }
  setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere", 1);
  watch = std::make_unique<BusNameWatch>(watched, [](bool) {});
  EXPECT_EQ(watch->descriptor(), -1);
  watch->work();
  unsetenv("DBUS_SESSION_BUS_ADDRESS");
}

}  // namespace
