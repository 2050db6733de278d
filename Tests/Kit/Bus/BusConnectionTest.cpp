#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <systemd/sd-bus.h>
#include <systemd/sd-event.h>

#include "Kit/Bus/BusConnection.h"
#include "Kit/Bus/BusQuestion.h"
#include "Tests/Support/PrivateBus.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr const char* ownName = "com.corvex.NerinOption.Companion";
constexpr const char* ownPath = "/com/corvex/NerinOption/Companion";

class BusConnectionTest : public testing::Test {
 protected:
  struct Unref {
    void operator()(sd_event* event) const { sd_event_unref(event); }
  };

  BusConnectionTest() {
    sd_event* event = nullptr;
    sd_event_new(&event);
    m_loop.reset(event);
  }

  std::unique_ptr<BusConnection> open() {
    return BusConnection::open(m_loop.get(), BusConnection::Kind::Session, [this] { ++lost; });
  }
  bool runUntil(const std::function<bool()>& isDone, std::chrono::milliseconds limit = 20s) {
    const auto end = Clock::now() + limit;
    while (!isDone()) {
      const auto left =
          std::chrono::duration_cast<std::chrono::microseconds>(end - Clock::now()).count();
      // What is waited for need not be an event of this loop.
      constexpr std::int64_t slice = 20'000;
      if (left <= 0 ||
          sd_event_run(m_loop.get(), static_cast<std::uint64_t>(std::min(left, slice))) < 0) {
        return false;
      }
    }
    return true;
  }
  void endLoop() {
    sd_event_exit(m_loop.get(), 0);
    sd_event_loop(m_loop.get());
  }
  // Whether the name is ours, as the bus says.
  std::optional<bool> request(BusConnection& connection) {
    std::optional<bool> result;
    connection.requestName(ownName, [&](std::optional<bool> isOurs) { result = isOurs; });
    runUntil([&] { return result.has_value(); });
    return result;
  }

  int lost = 0;

 private:
  std::unique_ptr<sd_event, Unref> m_loop;
};

TEST_F(BusConnectionTest, OneNameBelongsToOneProgram) {
  const PrivateBus bus;
  const auto first = open();
  EXPECT_EQ(request(*first), true);
  EXPECT_EQ(request(*first), true);
  const auto second = open();
  EXPECT_EQ(request(*second), false);
}

TEST_F(BusConnectionTest, TheNameIsFreeAfterItsProgram) {
  const PrivateBus bus;
  EXPECT_EQ(request(*open()), true);
  const auto next = open();
  EXPECT_EQ(request(*next), true);
}

TEST_F(BusConnectionTest, PostsAreSentBeforeTheEnd) {
  PrivateBus bus;
  auto connection = open();
  // Nothing is sent before the bus has greeted.
  EXPECT_EQ(request(*connection), true);
  connection->postNotificationName("NerinDevStatus", "",
                                   LXUserInfo{{"type", 101}, {"value", false}});
  connection->postNotificationName("NerinDevStatus", "plain", std::nullopt);
  connection->postNotificationName("NerinDevStatus", "empty", LXUserInfo());
  connection.reset();
  for (const char* body : {"s: {type=i:101 value=b:0}", "s:plain", "s:empty {}"}) {
    const auto message = bus.nextNotification();
    ASSERT_TRUE(message);
    EXPECT_EQ(message->body, body);
    EXPECT_EQ(message->path, "/com/corvex/NerinOption");
    EXPECT_EQ(message->member, "NerinDevStatus");
  }
}

TEST_F(BusConnectionTest, PostsBeforeTheGreetingAreNotLost) {
  PrivateBus bus;
  const auto connection = open();
  connection->postNotificationName("NerinDevStatus", "early", std::nullopt);
  EXPECT_EQ(request(*connection), true);
  EXPECT_EQ(bus.nextNotification()->body, "s:early");
}

TEST_F(BusConnectionTest, ObserversGetNumbersOfEveryTypeAndFlags) {
  const PrivateBus bus;
  const auto connection = open();
  std::vector<std::pair<std::string, LXUserInfo>> heard;
  connection->addObserver("NerinSettingChange",
                          [&](const std::string& object, const LXUserInfo& userInfo) {
                            heard.emplace_back(object, userInfo);
                          });
  EXPECT_EQ(request(*connection), true);
  PrivateBus::broadcast("/com/corvex/NerinOption",
                        "com.corvex.NerinOption.Notification.NerinSettingChange",
                        {"'111'",
                         "{'i': <1>, 'y': <byte 2>, 'n': <int16 -3>, 'q': <uint16 4>, "
                         "'u': <uint32 5>, 'x': <int64 6>, 't': <uint64 7>, 'b': <true>, "
                         "'big': <int64 99999999999>, 's': <'text'>, 'a': <[1, 2]>, 'v': <<8>>, "
                         "'last': <9>}"});
  PrivateBus::broadcast("/com/corvex/NerinOption",
                        "com.corvex.NerinOption.Notification.NerinSettingChange", {"'121'"});
  ASSERT_TRUE(runUntil([&] { return heard.size() == 2; }));
  EXPECT_EQ(heard[0].first, "111");
  EXPECT_EQ(heard[0].second, (LXUserInfo{{"i", 1},
                                         {"y", 2},
                                         {"n", -3},
                                         {"q", 4},
                                         {"u", 5},
                                         {"x", 6},
                                         {"t", 7},
                                         {"b", true},
                                         {"last", 9}}));
  EXPECT_EQ(heard[1], (std::pair<std::string, LXUserInfo>("121", {})));
}

TEST_F(BusConnectionTest, SignalsOfOtherShapesAreLeftAlone) {
  const PrivateBus bus;
  const auto connection = open();
  std::vector<std::string> heard;
  connection->addObserver("NerinSettingChange", [&](const std::string& object, const LXUserInfo&) {
    heard.push_back(object);
  });
  EXPECT_EQ(request(*connection), true);
  const std::string path = "/com/corvex/NerinOption";
  const std::string member = "com.corvex.NerinOption.Notification.NerinSettingChange";
  PrivateBus::broadcast(path, member, {"7"});
  PrivateBus::broadcast(path, member, {"'a'", "{'type': 1}"});
  PrivateBus::broadcast(path, member, {"'a'", "{'a': <1>}", "1"});
  PrivateBus::broadcast("/com/corvex/Other", member, {"'a'"});
  PrivateBus::broadcast(path, "com.corvex.NerinOption.Notification.Other", {"'a'"});
  PrivateBus::broadcast(path, member, {"'mine'"});
  ASSERT_TRUE(runUntil([&] { return !heard.empty(); }));
  EXPECT_EQ(heard, std::vector<std::string>{"mine"});
}

TEST_F(BusConnectionTest, ACallToNobodyIsAnsweredWithNothing) {
  const PrivateBus bus;
  const auto connection = open();
  bool isAnswered = false;
  connection->call({"com.corvex.Nobody", "/x", "com.corvex.Nobody", "Ask"}, nullptr,
                   [&](sd_bus_message* answer) {
                     EXPECT_EQ(answer, nullptr);
                     isAnswered = true;
                   });
  EXPECT_TRUE(runUntil([&] { return isAnswered; }));
}

TEST_F(BusConnectionTest, OthersReadItsTexts) {
  const PrivateBus bus;
  const auto connection = open();
  std::string text = "Slot 1";
  connection->publish(ownPath, ownName, {{"Explanation", [&] { return text; }}});
  EXPECT_EQ(request(*connection), true);
  ChildProcess reader({"gdbus", "call", "--session", "--dest", ownName, "--object-path", ownPath,
                       "--method", "org.freedesktop.DBus.Properties.Get", ownName, "Explanation"});
  std::string output;
  EXPECT_TRUE(runUntil([&] {
    output += reader.read(1ms);
    return output.find('\n') != std::string::npos;
  }));
  EXPECT_EQ(output, "(<'Slot 1'>,)\n");
}

TEST_F(BusConnectionTest, OthersCallWhatItServes) {
  const PrivateBus bus;
  const auto server = open();
  const auto caller = open();
  std::vector<std::string> heard;
  server->serve("/a", "x.Y", "Tell", [&](sd_bus_message* call) {
    const char* text = nullptr;
    ASSERT_GT(sd_bus_message_read(call, "s", &text), 0);
    heard.emplace_back(text);
  });
  EXPECT_EQ(server->uniqueName(), "") << "the bus has not answered";
  ASSERT_TRUE(runUntil([&] { return !server->uniqueName().empty(); }));
  const std::string address = server->uniqueName();
  std::vector<bool> answered;
  const auto call = [&](const char* path, const char* member) {
    caller->call(
        {address.c_str(), path, "x.Y", member},
        [](sd_bus_message* message) { sd_bus_message_append(message, "s", "word"); },
        [&](sd_bus_message* answer) { answered.push_back(answer != nullptr); });
  };
  call("/a", "Tell");
  call("/a", "Other");
  call("/b", "Tell");
  ASSERT_TRUE(runUntil([&] { return answered.size() == 3; }));
  EXPECT_EQ(answered, (std::vector{true, false, false}));
  EXPECT_EQ(heard, std::vector<std::string>{"word"});
}

TEST_F(BusConnectionTest, TellsOnceThatTheBusIsGone) {
  PrivateBus bus;
  const auto connection = open();
  EXPECT_EQ(request(*connection), true);
  bus.end();
  EXPECT_TRUE(runUntil([&] { return lost > 0; }));
  runUntil([] { return false; }, 100ms);
  EXPECT_EQ(lost, 1);
}

TEST_F(BusConnectionTest, NobodyIsCalledAfterwards) {
  PrivateBus bus;
  const auto connection = open();
  bool isAnswered = false;
  connection->requestName(ownName, [&](std::optional<bool>) { isAnswered = true; });
  connection->forgetEverybody();
  bus.end();
  runUntil([] { return false; }, 300ms);
  EXPECT_FALSE(isAnswered);
  EXPECT_EQ(lost, 0);
}

TEST_F(BusConnectionTest, ANameThatTheBusRefusesDoesNotEndTheConnection) {
  PrivateBus bus;
  const auto connection = open();
  connection->postNotificationName("9lives", "never", std::nullopt);
  EXPECT_EQ(request(*connection), true);
  EXPECT_EQ(lost, 0);
}

TEST_F(BusConnectionTest, AFrozenBusDoesNotKeepTheLoopFromEnding) {
  const PrivateBus bus;
  bus.freeze();
  const auto connection = open();
  ASSERT_TRUE(connection);
  const auto begin = Clock::now();
  endLoop();
  EXPECT_LT(Clock::now() - begin, 5s);
  bus.thaw();
}

TEST_F(BusConnectionTest, AFrozenBusKeepsNobodyWaiting) {
  const PrivateBus bus;
  bus.freeze();
  const auto begin = Clock::now();
  {
    const auto connection = open();
    ASSERT_TRUE(connection);
    connection->postNotificationName("NerinDevStatus", "lost", std::nullopt);
    runUntil([] { return false; }, 50ms);
  }
  EXPECT_LT(Clock::now() - begin, 5s);
  bus.thaw();
}

TEST_F(BusConnectionTest, AQuestionToNobodyHasNoAnswer) {
  const PrivateBus bus;
  EXPECT_EQ(askSessionBus({ownName, ownPath, ownName, "Explanation"}, 20s), std::nullopt);
}

TEST_F(BusConnectionTest, AQuestionToAFrozenBusEndsAtItsLimit) {
  const PrivateBus bus;
  bus.freeze();
  const auto begin = Clock::now();
  EXPECT_EQ(askSessionBus({ownName, ownPath, ownName, "Explanation"}, 200ms), std::nullopt);
  EXPECT_LT(Clock::now() - begin, 5s);
  bus.thaw();
}

}  // namespace
