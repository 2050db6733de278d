// Several commands, each in a process of its own, at one mouse.

#include <atomic>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Kit/Core/FileLock.h"
#include "Tests/CommandLine/TestHome.h"

namespace {

constexpr int turns = 12;

// A home of its own, so that the lock of the library does not keep the commands apart.
struct Person {
  TestHome home;
  std::string profile;
  int hertz;

  Person(std::string name, std::uint32_t rate, int inHertz)
      : profile(std::move(name)), hertz(inHertz) {
    ProfileValue value = profileNamed(profile);
    _Nerin_PROFILE record = value.profileData();
    record.poRate = rate;
    value.setProfileData(record);
    home.addProfile(value);
  }
};

}  // namespace

TEST(SharedMouse, EachSlotThatIsReadIsOfOneProgram) {
  Person anna("Anna", 0, 125);
  Person ben("Ben", 3, 1000);
  ben.home.mouseFile = anna.home.mouseFile;
  anna.home.prepare({"apply", "Anna", "--slot", "2"});
  std::atomic<int> reads = 0;
  const auto hammer = [&](const Person& person) {
    for (int turn = 0; turn < turns; ++turn) {
      person.home.prepare({"apply", person.profile, "--slot", "2"});
      const auto slot = person.home.json({"read", "--slot", "2"});
      const Person& owner = slot["name"] == "Anna" ? anna : ben;
      EXPECT_EQ(slot["name"], owner.profile);
      EXPECT_EQ(slot["rate"], owner.hertz) << slot["name"];
      ++reads;
    }
  };
  std::thread other([&] { hammer(ben); });
  hammer(anna);
  other.join();
  EXPECT_EQ(reads, 2 * turns);
}

TEST(SharedMouse, AChangeOfOneSettingKeepsTheOthersChange) {
  const TestHome anna;
  TestHome ben;
  ben.mouseFile = anna.mouseFile;
  anna.prepare({"dpi", "--levels", "2", "--set", "1=100", "--set", "2=100"});
  std::thread other([&] {
    for (int turn = 0; turn < turns / 2; ++turn) {
      ben.prepare({"dpi", "--set", "2=" + std::to_string(200 + 50 * turn)});
    }
  });
  for (int turn = 0; turn < turns / 2; ++turn) {
    anna.prepare({"dpi", "--set", "1=" + std::to_string(1000 + 50 * turn)});
  }
  other.join();
  anna.prepare({"read", "--slot", "1", "--output", (anna.files / "slot.pro").string()});
  const auto record = ProfileValue::initWithPath(anna.files / "slot.pro")->profileData();
  EXPECT_EQ(record.xSensArr[0], (1000U + 50 * (turns / 2 - 1)) / 50);
  EXPECT_EQ(record.xSensArr[1], (200U + 50 * (turns / 2 - 1)) / 50);
}

TEST(SharedMouse, ThatAnotherProgramKeepsIsSaidSo) {
  const TestHome home;
  home.prepare({"status"});
  std::filesystem::path file = home.mouseFile;
  const auto held = FileLock::acquire(file += ".lock", std::chrono::milliseconds(0));
  ASSERT_TRUE(held);
  const std::string before = home.mouseMemory();
  expectComplaint(home.runWithMouse({"rate", "500"}), 1, "another program is using the mouse");
  EXPECT_EQ(home.mouseMemory(), before);
}
