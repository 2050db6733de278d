#include <QCoreApplication>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "Kit/Bus/SessionBusNotificationCenter.h"
#include "Tests/Support/PrivateBus.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

const std::string path = "/com/corvex/NerinOption";
const std::string interface = "com.corvex.NerinOption.Notification";

// The calls that an observer received.
class Heard {
 public:
  using Call = std::pair<std::string, LXUserInfo>;

  LXNotificationCenter::Observer observer() {
    return [this](const std::string& object, const LXUserInfo& userInfo) {
      const std::lock_guard lock(m_mutex);
      m_calls.emplace_back(object, userInfo);
      m_changed.notify_all();
    };
  }

  std::optional<Call> next(milliseconds limit = seconds(20)) {
    std::unique_lock lock(m_mutex);
    if (!m_changed.wait_for(lock, limit, [this] { return !m_calls.empty(); })) {
      return std::nullopt;
    }
    Call call = m_calls.front();
    m_calls.pop_front();
    return call;
  }

 private:
  std::mutex m_mutex;
  std::condition_variable m_changed;
  std::deque<Call> m_calls;
};

TEST(SessionBusNotificationCenter, PostsTheObjectAloneWithoutUserInfo) {
  PrivateBus bus;
  SessionBusNotificationCenter center;
  center.postNotificationName("NerinSettingChange", "101", std::nullopt);
  EXPECT_TRUE(center.flush(seconds(20)));
  const auto message = bus.nextNotification();
  ASSERT_TRUE(message);
  EXPECT_EQ(message->path, path);
  EXPECT_EQ(message->interface, interface);
  EXPECT_EQ(message->member, "NerinSettingChange");
  EXPECT_EQ(message->signature, "s");
  EXPECT_EQ(message->body, "s:101");
}

TEST(SessionBusNotificationCenter, PostsNumbersAndFlagsAsWhatTheyAre) {
  PrivateBus bus;
  SessionBusNotificationCenter center;
  center.postNotificationName("NerinSettingChange", "111",
                              LXUserInfo{{"value1", 3},
                                         {"value2", -2147483647 - 1},
                                         {"value3", 1},
                                         {"value4", true},
                                         {"value5", false}});
  EXPECT_TRUE(center.flush(seconds(20)));
  const auto message = bus.nextNotification();
  ASSERT_TRUE(message);
  EXPECT_EQ(message->signature, "sa{sv}");
  EXPECT_EQ(message->body,
            "s:111 {value1=i:3 value2=i:-2147483648 value3=i:1 value4=b:1 value5=b:0}");
}

TEST(SessionBusNotificationCenter, PostsAnEmptyDictionaryAsOne) {
  PrivateBus bus;
  SessionBusNotificationCenter center;
  center.postNotificationName("NerinSettingChange", "121", LXUserInfo());
  const auto message = bus.nextNotification();
  ASSERT_TRUE(message);
  EXPECT_EQ(message->signature, "sa{sv}");
  EXPECT_EQ(message->body, "s:121 {}");
}

TEST(SessionBusNotificationCenter, KeepsTheOrderOfPosts) {
  PrivateBus bus;
  SessionBusNotificationCenter center;
  for (int count = 0; count < 200; ++count) {
    center.postNotificationName("Count", std::to_string(count), std::nullopt);
  }
  for (int count = 0; count < 200; ++count) {
    const auto message = bus.nextNotification();
    ASSERT_TRUE(message);
    EXPECT_EQ(message->body, "s:" + std::to_string(count));
  }
}

TEST(SessionBusNotificationCenter, DropsAPostThatNoSignalCanBeNamedAfter) {
  PrivateBus bus;
  SessionBusNotificationCenter center;
  for (const std::string& name :
       {std::string(), std::string("9lives"), std::string("a b"), std::string("a.b"),
        std::string("\xC3\xA4"), std::string(256, 'x')}) {
    center.postNotificationName(name, "never", std::nullopt);
  }
  center.postNotificationName(std::string(255, 'x'), "fits", std::nullopt);
  EXPECT_TRUE(center.flush(seconds(20)));
  const auto message = bus.nextNotification();
  ASSERT_TRUE(message);
  EXPECT_EQ(message->body, "s:fits");
}

TEST(SessionBusNotificationCenter, SendsTheLastMessageBeforeItEnds) {
  PrivateBus bus;
  for (int round = 0; round < 20; ++round) {
    const std::string object = std::to_string(round);
    SessionBusNotificationCenter().postNotificationName("Last", object, std::nullopt);
    const auto message = bus.nextNotification();
    ASSERT_TRUE(message);
    EXPECT_EQ(message->body, "s:" + object);
  }
}

TEST(SessionBusNotificationCenter, SendsTheLastMessageBeforeTheProgramEnds) {
  PrivateBus bus;
  ChildProcess program({POST_AND_QUIT});
  EXPECT_EQ(program.exitCode(seconds(20)), 0);
  EXPECT_EQ(program.read(milliseconds(0)), "");
  const auto message = bus.nextNotification();
  ASSERT_TRUE(message);
  EXPECT_EQ(message->member, "NerinSettingChange");
  EXPECT_EQ(message->body, "s:121");
}

TEST(SessionBusNotificationCenter, HearsSignalsOfOthersWithEveryIntegerType) {
  const PrivateBus bus;
  Heard heard;
  SessionBusNotificationCenter center;
  center.addObserver("NerinDevStatus", heard.observer());
  ASSERT_TRUE(center.flush(seconds(20)));
  PrivateBus::broadcast(path, interface + ".NerinDevStatus",
                        {"'status'",
                         "{'y': <byte 0x65>, 'n': <int16 -3>, 'q': <uint16 65535>, 'i': <-7>,"
                         " 'u': <uint32 2147483647>, 'x': <int64 -8>, 't': <uint64 9>,"
                         " 'on': <true>, 'off': <false>}"});
  const auto call = heard.next();
  ASSERT_TRUE(call);
  EXPECT_EQ(call->first, "status");
  EXPECT_EQ(call->second, (LXUserInfo{{"y", 0x65},
                                      {"n", -3},
                                      {"q", 65535},
                                      {"i", -7},
                                      {"u", 2147483647},
                                      {"x", -8},
                                      {"t", 9},
                                      {"on", true},
                                      {"off", false}}));
}

TEST(SessionBusNotificationCenter, LeavesOutEntriesThatAreNoNumbersOrDoNotFit) {
  const PrivateBus bus;
  Heard heard;
  SessionBusNotificationCenter center;
  center.addObserver("NerinDevStatus", heard.observer());
  ASSERT_TRUE(center.flush(seconds(20)));
  PrivateBus::broadcast(path, interface + ".NerinDevStatus",
                        {"''",
                         "{'type': <101>, 'text': <'1'>, 'real': <1.5>, 'list': <[1, 2]>,"
                         " 'nested': <<1>>, 'u': <uint32 2147483648>, 'x': <int64 -2147483649>,"
                         " 't': <uint64 18446744073709551615>}"});
  const auto call = heard.next();
  ASSERT_TRUE(call);
  EXPECT_EQ(call->second, (LXUserInfo{{"type", 101}}));
}

TEST(SessionBusNotificationCenter, HearsASignalWithoutUserInfo) {
  const PrivateBus bus;
  Heard heard;
  SessionBusNotificationCenter center;
  center.addObserver("NerinDevStatus", heard.observer());
  ASSERT_TRUE(center.flush(seconds(20)));
  PrivateBus::broadcast(path, interface + ".NerinDevStatus", {"'gr\xC3\xBC\xC3\x9F'"});
  const auto call = heard.next();
  ASSERT_TRUE(call);
  EXPECT_EQ(call->first, "gr\xC3\xBC\xC3\x9F");
  EXPECT_TRUE(call->second.empty());
}

TEST(SessionBusNotificationCenter, IsDeafToEverythingElse) {
  const PrivateBus bus;
  Heard heard;
  SessionBusNotificationCenter center;
  center.addObserver("NerinDevStatus", heard.observer());
  ASSERT_TRUE(center.flush(seconds(20)));
  PrivateBus::broadcast(path, interface + ".SomethingElse", {"'other name'"});
  PrivateBus::broadcast(path, "com.corvex.Other.NerinDevStatus", {"'other interface'"});
  PrivateBus::broadcast("/com/corvex/Other", interface + ".NerinDevStatus", {"'other path'"});
  PrivateBus::broadcast(path, interface + ".NerinDevStatus", {"7"});
  PrivateBus::broadcast(path, interface + ".NerinDevStatus", {"'other dictionary'", "{'type': 1}"});
  PrivateBus::broadcast(path, interface + ".NerinDevStatus", {"'one too many'", "{'a': <1>}", "1"});
  PrivateBus::broadcast(path, interface + ".NerinDevStatus", {"'mine'"});
  const auto call = heard.next();
  ASSERT_TRUE(call);
  EXPECT_EQ(call->first, "mine");
}

TEST(SessionBusNotificationCenter, CallsTheObserverOfTheName) {
  const PrivateBus bus;
  Heard first;
  Heard second;
  SessionBusNotificationCenter center;
  center.addObserver("First", first.observer());
  center.addObserver("Second", second.observer());
  ASSERT_TRUE(center.flush(seconds(20)));
  PrivateBus::broadcast(path, interface + ".Second", {"'2'"});
  PrivateBus::broadcast(path, interface + ".First", {"'1'"});
  ASSERT_EQ(first.next().value_or(Heard::Call()).first, "1");
  ASSERT_EQ(second.next().value_or(Heard::Call()).first, "2");
}

TEST(SessionBusNotificationCenter, ForgetsARemovedObserver) {
  const PrivateBus bus;
  Heard removed;
  Heard kept;
  SessionBusNotificationCenter center;
  center.addObserver("Removed", removed.observer());
  center.addObserver("Kept", kept.observer());
  center.removeObserver("Removed");
  center.removeObserver("NeverAdded");
  ASSERT_TRUE(center.flush(seconds(20)));
  PrivateBus::broadcast(path, interface + ".Removed", {"''"});
  PrivateBus::broadcast(path, interface + ".Kept", {"''"});
  EXPECT_TRUE(kept.next());
  EXPECT_FALSE(removed.next(milliseconds(0)));
}

TEST(SessionBusNotificationCenter, LetsAnObserverRemoveItself) {
  const PrivateBus bus;
  Heard heard;
  SessionBusNotificationCenter center;
  center.addObserver("Once", [&](const std::string& object, const LXUserInfo& userInfo) {
    center.removeObserver("Once");
    heard.observer()(object, userInfo);
  });
  center.addObserver("Kept", heard.observer());
  ASSERT_TRUE(center.flush(seconds(20)));
  PrivateBus::broadcast(path, interface + ".Once", {"'1'"});
  PrivateBus::broadcast(path, interface + ".Once", {"'2'"});
  PrivateBus::broadcast(path, interface + ".Kept", {"'3'"});
  EXPECT_EQ(heard.next().value_or(Heard::Call()).first, "1");
  EXPECT_EQ(heard.next().value_or(Heard::Call()).first, "3");
}

TEST(SessionBusNotificationCenter, PostsFromAnObserver) {
  PrivateBus bus;
  SessionBusNotificationCenter center;
  center.addObserver("Question", [&](const std::string& object, const LXUserInfo&) {
    center.postNotificationName("Answer", object, std::nullopt);
  });
  ASSERT_TRUE(center.flush(seconds(20)));
  PrivateBus::broadcast(path, interface + ".Question", {"'x'"});
  EXPECT_EQ(bus.nextNotification().value_or(BusMessage()).member, "Question");
  EXPECT_EQ(bus.nextNotification().value_or(BusMessage()).member, "Answer");
}

TEST(SessionBusNotificationCenter, WorksBesideAnApplicationWhoseLoopDoesNotRun) {
  PrivateBus bus;
  int argumentCount = 1;
  std::string name = "test";
  char* arguments[] = {name.data(), nullptr};
  const QCoreApplication application(argumentCount, arguments);
  Heard heard;
  SessionBusNotificationCenter center;
  center.addObserver("NerinDevStatus", heard.observer());
  center.postNotificationName("NerinSettingChange", "101", std::nullopt);
  ASSERT_TRUE(center.flush(seconds(20)));
  EXPECT_EQ(bus.nextNotification().value_or(BusMessage()).body, "s:101");
  PrivateBus::broadcast(path, interface + ".NerinDevStatus", {"'x'"});
  EXPECT_TRUE(heard.next());
}

TEST(SessionBusNotificationCenter, TakesPostsFromManyThreads) {
  PrivateBus bus;
  SessionBusNotificationCenter center;
  {
    constexpr int threadCount = 4;
    std::vector<std::jthread> threads;
    threads.reserve(threadCount);
    for (int thread = 0; thread < threadCount; ++thread) {
      threads.emplace_back([&] {
        for (int count = 0; count < 50; ++count) {
          center.postNotificationName("Count", "", LXUserInfo{{"value1", count}});
        }
      });
    }
  }
  EXPECT_TRUE(center.flush(seconds(20)));
  for (int count = 0; count < 200; ++count) {
    ASSERT_TRUE(bus.nextNotification());
  }
}

}  // namespace
