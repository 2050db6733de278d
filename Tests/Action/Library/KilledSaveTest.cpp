#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <map>
#include <random>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Action/Library/ProfieController.h"
#include "Action/Library/SupportFolder.h"
#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXPlatform.h"
#include "Tests/Support/Scratch.h"

// Kills the program at any moment while it saves its library.

namespace fs = std::filesystem;

namespace {

using Clock = std::chrono::steady_clock;
using Profiles = std::map<std::string, std::string>;  // name -> the bytes of its file

constexpr int profileCount = 50;
constexpr int kills = 500;

// A profile of one version of the library. Half of the names stay in every version, so their files
// are replaced; the other half come and go.
std::shared_ptr<ProfileValue> profileOf(int version, int index) {
  auto profile = std::make_shared<ProfileValue>();
  profile->setProfileId(static_cast<std::uint64_t>(index) + 1);
  profile->setName(index % 2 == 0
                       ? "Stays " + std::to_string(index)
                       : "Goes " + std::to_string(version) + " " + std::to_string(index));
  _Nerin_PROFILE record{};
  for (auto& level : record.xSensArr) {
    level = static_cast<std::uint32_t>(version);
  }
  record.poRate = static_cast<std::uint32_t>(version);
  profile->setProfileData(record);
  return profile;
}

Profiles libraryOf(int version) {
  Profiles profiles;
  for (int index = 0; index < profileCount; ++index) {
    const auto profile = profileOf(version, index);
    const ConfigBytes bytes = profile->fileBytes();
    profiles[profile->name().value()] = {bytes.data(), bytes.size()};
  }
  return profiles;
}

// The library as the program finds it at its start.
Profiles loadedLibrary() {
  ProfieController::releaseShareProCon();
  Profiles profiles;
  for (const auto& profile : ProfieController::getShareProCon().profileArr()) {
    const ConfigBytes bytes = profile->fileBytes();
    profiles[profile->name().value_or("")] = {bytes.data(), bytes.size()};
  }
  return profiles;
}

class KilledSave : public testing::Test {
 protected:
  KilledSave() {
    LXPlatform platform;
    platform.homeFolder = m_home.folder();
    LXPlatform::install(std::move(platform));
  }
  ~KilledSave() override {
    ProfieController::releaseShareProCon();
    LXPlatform::install({});
  }

  // Starts a process that saves this version of the library. Returns when the process is about to
  // save.
  static pid_t beginSave(int version, bool canExchange) {
    int ready[2];
    if (::pipe(ready) != 0) {
      throw std::runtime_error("no pipe");
    }
    const pid_t child = ::fork();
    if (child == 0) {
      save(version, canExchange, ready[1]);
    }
    ::close(ready[1]);
    char byte = 0;
    EXPECT_EQ(::read(ready[0], &byte, 1), 1);
    ::close(ready[0]);
    return child;
  }

  [[noreturn]] static void save(int version, bool canExchange, int ready) {
    ProfieController& library = ProfieController::getShareProCon();
    ProfieController::Profiles profiles;
    for (int index = 0; index < profileCount; ++index) {
      profiles.push_back(profileOf(version, index));
    }
    library.setNoDefaultProArr(profiles);
    if (!canExchange) {
      durable::setFaultInjector(
          [](const char* step) { return std::string_view(step) == "exchange" ? EINVAL : 0; });
    }
    const bool isTold = ::write(ready, "x", 1) == 1;
    std::_Exit(isTold && !library.saveToSys() ? 0 : 1);
  }

  // Lets a save finish and returns its duration.
  static Clock::duration saveUndisturbed(int version, bool canExchange) {
    const pid_t child = beginSave(version, canExchange);
    const auto begin = Clock::now();
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    return Clock::now() - begin;
  }

  static void saveAndKill(int version, bool canExchange, Clock::duration after) {
    const pid_t child = beginSave(version, canExchange);
    const auto end = Clock::now() + after;
    while (Clock::now() < end) {
      // A sleep would end too late.
    }
    ::kill(child, SIGKILL);
    EXPECT_EQ(::waitpid(child, nullptr, 0), child);
  }

  // In a folder of the memory where there is one: a kill loses nothing that was written, whatever
  // it was written to, so that a disk would only make this slow.
  Scratch m_home{::access("/dev/shm", W_OK) == 0 ? fs::path("/dev/shm") : fs::path()};
};

TEST_F(KilledSave, LeavesTheOldLibraryOrTheNewOneWhole) {
  std::mt19937 random(20240611);
  int version = 1;
  Clock::duration duration = saveUndisturbed(version, true);
  Profiles before = loadedLibrary();
  ASSERT_EQ(before, libraryOf(version));
  const fs::path support = NerinAction::getSysPath();
  int old = 0;
  int interrupted = 0;
  for (int kill = 0; kill < kills; ++kill) {
    const bool canExchange = kill % 2 == 0;
    if (kill % 25 == 0) {
      // The speed of the machine may have changed.
      duration = saveUndisturbed(++version, canExchange);
      before = libraryOf(version);
      ASSERT_EQ(loadedLibrary(), before);
    }
    ++version;
    std::uniform_real_distribution<double> instant(0, 1.2);
    saveAndKill(version, canExchange,
                std::chrono::duration_cast<Clock::duration>(duration * instant(random)));
    interrupted += fs::exists(support / ".Profiles.new") || fs::exists(support / ".Profiles.old");
    const Profiles after = loadedLibrary();
    const bool isOld = after == before;
    old += isOld ? 1 : 0;
    ASSERT_TRUE(isOld || after == libraryOf(version)) << "kill " << kill;
    ASSERT_FALSE(fs::exists(support / ".Profiles.new")) << "kill " << kill;
    ASSERT_FALSE(fs::exists(support / ".Profiles.old")) << "kill " << kill;
    before = after;
  }
  RecordProperty("old", old);
  RecordProperty("interrupted", interrupted);
  // Otherwise the kills missed the save.
  EXPECT_GT(old, kills / 20);
  EXPECT_GT(kills - old, kills / 20);
  EXPECT_GT(interrupted, kills / 10);
}

}  // namespace
