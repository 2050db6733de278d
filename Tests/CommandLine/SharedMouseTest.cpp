// Several commands, each in a process of its own, at one mouse.

#include <atomic>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Kit/Core/FileLock.h"
#include "Tests/CommandLine/TestHome.h"

namespace {

constexpr int turns = 24;

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
  std::atomic<bool> isDone = false;
  // Programs in step would not meet: one only writes, the other only reads.
  std::thread writer([&] {
    for (int turn = 0; turn < turns; ++turn) {
      (turn % 2 == 0 ? ben : anna)
          .home.prepare({"apply", turn % 2 == 0 ? "Ben" : "Anna", "--slot", "2"});
    }
    isDone = true;
  });
  TestHome reader;
  reader.mouseFile = anna.home.mouseFile;
  int reads = 0;
  for (; !isDone; ++reads) {
    const auto slot = reader.json({"read", "--slot", "2"});
    const Person& owner = slot["name"] == "Anna" ? anna : ben;
    EXPECT_EQ(slot["name"], owner.profile);
    EXPECT_EQ(slot["rate"], owner.hertz) << slot["name"];
  }
  writer.join();
  EXPECT_GT(reads, 2);
}

TEST(SharedMouse, AChangeOfOneSettingKeepsTheOthersChange) {
  const TestHome anna;
  TestHome ben;
  ben.mouseFile = anna.mouseFile;
  anna.prepare({"dpi", "--levels", "2", "--set", "1=100", "--set", "2=100"});
  std::thread other([&] {
    for (int turn = 0; turn < turns / 4; ++turn) {
      ben.prepare({"dpi", "--set", "2=" + std::to_string(200 + 50 * turn)});
    }
  });
  for (int turn = 0; turn < turns / 4; ++turn) {
    const int dpi = 1000 + 50 * turn;
    anna.prepare({"dpi", "--set", "1=" + std::to_string(dpi)});
    EXPECT_EQ(anna.json({"read", "--slot", "1"})["levels"][0]["x"], dpi);
  }
  other.join();
  anna.prepare({"read", "--slot", "1", "--output", (anna.files / "slot.pro").string()});
  const auto record = ProfileValue::initWithPath(anna.files / "slot.pro")->profileData();
  EXPECT_EQ(record.xSensArr[0], (1000U + 50 * (turns / 4 - 1)) / 50);
  EXPECT_EQ(record.xSensArr[1], (200U + 50 * (turns / 4 - 1)) / 50);
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
