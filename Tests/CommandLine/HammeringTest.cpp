#include <chrono>
#include <cstdlib>
#include <iostream>
#include <set>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Action/Library/ProfieController.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Core/ProcessWide.h"
#include "Tests/CommandLine/TestHome.h"

// The command line and a program like the window change one library at once.

namespace {

using Clock = std::chrono::steady_clock;
using Names = std::set<std::string>;

// A minute by hand: NERIN_HAMMER_SECONDS=60.
std::chrono::seconds duration() {
  const char* const seconds = std::getenv("NERIN_HAMMER_SECONDS");
  return std::chrono::seconds(seconds != nullptr ? std::atoi(seconds) : 4);
}

// Each program has at most that many profiles, so that both together stay below the limit.
constexpr std::size_t mostProfiles = 12;

struct Count {
  int deeds = 0;
  int busy = 0;
  int failed = 0;
};

// nerinctl, again and again: the profiles that must be there at the end.
Names hammerWithCommands(const TestHome& user, Clock::time_point end, Count& count) {
  Names names;
  const auto run = [&](const Words& words) {
    const RunResult result = user.run(words);
    ++count.deeds;
    const bool isBusy = result.errors.find("in use by another program") != std::string::npos;
    count.busy += isBusy ? 1 : 0;
    count.failed += result.exitCode != 0 && !isBusy ? 1 : 0;
    return result.exitCode == 0;
  };
  for (int n = 0; Clock::now() < end; ++n) {
    const std::string name = "C" + std::to_string(n);
    if (run({"profiles", "add", name})) {
      names.insert(name);
    }
    if (n % 3 == 1 && names.contains(name) && run({"profiles", "rename", name, name + "-new"})) {
      names.erase(name);
      names.insert(name + "-new");
    }
    if (names.size() > mostProfiles && run({"profiles", "delete", *names.begin()})) {
      names.erase(names.begin());
    }
  }
  return names;
}

// Repeats a save that found the library in use, as the user does.
void save(ProfieController& library, Count& count) {
  for (;;) {
    ++count.deeds;
    const auto error = library.saveToSys();
    if (!error) {
      return;
    }
    if (error != std::errc::device_or_resource_busy) {
      ++count.failed;
      return;
    }
    ++count.busy;
  }
}

Names hammerLikeTheWindow(Clock::time_point end, Count& count) {
  ProfieController& library = ProfieController::getShareProCon();
  Names names;
  for (int n = 0; Clock::now() < end; ++n) {
    const std::string name = "W" + std::to_string(n);
    library.addProfileByName(name, nullptr);
    names.insert(name);
    save(library, count);
    static_cast<void>(library.takeInFromDisk());
    if (n % 3 == 1) {
      library.getProfileByName(name)->setName(name + "-new");
      names.erase(name);
      names.insert(name + "-new");
      save(library, count);
    }
    if (names.size() > mostProfiles) {
      library.delProByName(*names.begin());
      names.erase(names.begin());
      save(library, count);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return names;
}

TEST(Hammering, LosesNoProfileAndBringsNoneBack) {
  const TestHome user;
  user.prepare({"profiles", "list"});
  LXPlatform platform;
  platform.homeFolder = user.home;
  platform.userFolders = user.folders();
  platform.resourceFolder = NERIN_RESOURCES;
  LXPlatform::install(std::move(platform));
  ProcessWideBase::resetAll();
  Count commands;
  Count window;
  Names expected;
  Names ofTheWindow;
  {
    const auto end = Clock::now() + duration();
    std::thread other([&] { expected = hammerWithCommands(user, end, commands); });
    ofTheWindow = hammerLikeTheWindow(end, window);
    other.join();
  }
  expected.insert(ofTheWindow.begin(), ofTheWindow.end());
  save(ProfieController::getShareProCon(), window);
  ProcessWideBase::resetAll();
  LXPlatform::install({});
  Names found;
  for (const auto& profile : user.json({"profiles", "list"})) {
    found.insert(profile["name"].get<std::string>());
  }
  int lost = 0;
  int returned = 0;
  for (const std::string& name : expected) {
    lost += found.contains(name) ? 0 : 1;
  }
  for (const std::string& name : found) {
    returned += expected.contains(name) ? 0 : 1;
  }
  std::cout << "commands: " << commands.deeds << " (" << commands.busy << " busy, "
            << commands.failed << " failed), saves like the window: " << window.deeds << " ("
            << window.busy << " busy, " << window.failed
            << " failed), profiles at the end: " << found.size() << ", lost: " << lost
            << ", came back: " << returned << '\n';
  EXPECT_EQ(lost, 0);
  EXPECT_EQ(returned, 0);
  EXPECT_EQ(commands.failed, 0);
  EXPECT_EQ(window.failed, 0);
  EXPECT_GT(commands.deeds, 3);
  EXPECT_GT(window.deeds, 3);
  EXPECT_FALSE(std::filesystem::exists(user.supportFolder() / "Set aside"));
}

}  // namespace
