#include <chrono>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <set>
#include <sstream>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Action/Device/SlotReportTransfer.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Library/ProfieController.h"
#include "Action/NerinAction.h"
#include "Action/Record/EditState.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Core/ObservedDeviceRequester.h"
#include "Kit/Core/ProcessWide.h"
#include "Tests/CommandLine/TestHome.h"
#include "VirtualMouse/VirtualDeviceRequester.h"

// The command line and a program like the window use one mouse and one library at once.

namespace {

using Clock = std::chrono::steady_clock;
using Bytes = std::vector<std::uint8_t>;

constexpr int slotOfWindow = 1;
constexpr int slotOfCommands = 5;
constexpr std::size_t mostProfiles = 12;

// A minute by hand: NERIN_HAMMER_SECONDS=60.
std::chrono::seconds hammeringTime() {
  const char* const seconds = std::getenv("NERIN_HAMMER_SECONDS");
  return std::chrono::seconds(seconds != nullptr ? std::atoi(seconds) : 4);
}

// Follows the transfers of one program: each read must answer what that program announced.
class PairCounter {
 public:
  void sent(std::span<const std::uint8_t> command) {
    if (command[0] == 0xDF || (command[0] == 0xC4 && (command[1] == 0x0C || command[1] == 0x0B))) {
      m_announced = Bytes(command.begin(), command.end());
    }
  }
  // An answer of 8 bytes is of a byte of the memory, a longer one of what has that slot.
  void answered(std::span<const std::uint8_t> answer, bool isDone) {
    ++pairs;
    const bool isByte = answer.size() == 8;
    const bool isRight =
        m_announced && isDone &&
        (isByte ? std::equal(answer.begin(), answer.begin() + 3, m_announced->begin())
                : answer[2] == (*m_announced)[2]);
    mixed += isRight ? 0 : 1;
  }

  int pairs = 0;
  int mixed = 0;

 private:
  std::optional<Bytes> m_announced;
};

// The lines of a trace.
void follow(const Lines& trace, PairCounter& counter) {
  for (const std::string& line : trace) {
    std::istringstream words(line);
    std::string kind;
    std::string value;
    std::string index;
    std::string digits;
    std::string failed;
    words >> kind >> value >> index >> digits >> failed;
    Bytes bytes;
    for (std::size_t at = 0; at + 1 < digits.size(); at += 2) {
      bytes.push_back(static_cast<std::uint8_t>(std::stoi(digits.substr(at, 2), nullptr, 16)));
    }
    if (kind == "GET") {
      counter.answered(bytes, failed.empty());
    } else if (kind == "SET" && value == "0300") {
      counter.sent(bytes);
    }
  }
}

struct Count {
  int deeds = 0;
  int busy = 0;
  int failed = 0;
  int torn = 0;  // slots that were half of one profile and half of another
  PairCounter pairs;
};

// nerinctl, again and again.
class Commands {
 public:
  Commands(const TestHome& user, Count& count) : m_user(user), m_count(count) {}

  void hammer(Clock::time_point end) {
    for (int n = 0; Clock::now() < end; ++n) {
      run({"apply", n % 2 == 0 ? "Even" : "Odd", "--slot", "6"});
      run({"read", "--slot", "2"});
      if (const std::string name = "C" + std::to_string(n); run({"profiles", "add", name})) {
        names.insert(name);
      }
      const std::string lift = std::to_string(n % 32);
      if (run({"lift", lift}) && run({"read", "--slot", "1"}) &&
          m_output.find("\"lift\": " + lift + ",") == std::string::npos) {
        ++m_count.torn;
      }
      if (names.size() > mostProfiles && run({"profiles", "delete", *names.begin()})) {
        names.erase(names.begin());
      }
    }
  }

  std::set<std::string> names;

 private:
  bool run(const Words& words) {
    const std::filesystem::path trace = m_user.files / "trace";
    Words all{"--json", "--trace", trace.string()};
    all.insert(all.end(), words.begin(), words.end());
    const RunResult result = m_user.runWithMouse(all);
    m_output = result.output;
    follow(linesOf(readFile(trace)), m_count.pairs);
    ++m_count.deeds;
    const bool isBusy = result.errors.find("another program") != std::string::npos;
    m_count.busy += isBusy ? 1 : 0;
    if (result.exitCode != 0 && !isBusy) {
      ++m_count.failed;
      std::cout << words[0] << ": " << result.errors;
    }
    return result.exitCode == 0;
  }

  const TestHome& m_user;
  Count& m_count;
  std::string m_output;
};

// A program like the window.
class Window {
 public:
  Window(const TestHome& user, Count& count) : m_count(count) {
    LXPlatform platform;
    platform.homeFolder = user.home;
    platform.userFolders = user.folders();
    platform.resourceFolder = NERIN_RESOURCES;
    platform.mouseWait = std::chrono::milliseconds(200);
    // Much shorter than the mouse's pauses, so that the programs meet more often.
    platform.sleep = [](std::chrono::microseconds time) { std::this_thread::sleep_for(time / 10); };
    ObservedDeviceRequester::Observer observer;
    observer.didSend = [this](const LXDeviceRequest& request, bool isDone) {
      if ((request.bmRequestType & 0x80U) != 0) {
        m_count.pairs.answered(request.data, isDone);
      } else if (request.wIndex == 0) {
        m_count.pairs.sent(request.data);
      }
    };
    platform.deviceRequester = std::make_shared<ObservedDeviceRequester>(
        std::make_shared<VirtualDeviceRequester>(std::make_shared<VirtualMouse>(user.mouseFile)),
        std::move(observer));
    LXPlatform::install(std::move(platform));
    ProcessWideBase::resetAll();
    NerinAction::initMenuList();
    NerinAction::refreshMenuList();
    NerinAction::startListenDev();
  }
  ~Window() {
    ProcessWideBase::resetAll();
    LXPlatform::install({});
  }
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  static ProfieController& library() { return ProfieController::getShareProCon(); }

  void hammer(Clock::time_point end) {
    repeat([] { return NerinAction::loadSlot(slotOfWindow).outcome; });
    repeat([] { return NerinAction::beginProfile("W0"); });
    for (int n = 1; Clock::now() < end; ++n) {
      lift = static_cast<std::uint32_t>(n % 32);
      editState->edit().liftHeight = lift;
      repeat([] { return NerinAction::applySlot(); });
      if (n % 3 == 1) {
        repeat([n] { return NerinAction::renameSlot("W" + std::to_string(n)); });
      }
      readSlotOfCommands();
      static_cast<void>(library().takeInFromDisk());
      repeat([] { return NerinAction::loadSlot(slotOfWindow).outcome; });
    }
    name = library().currFWProfileName().value_or("");
  }

  std::string name;
  std::uint32_t lift = 0;

 private:
  // As the user does it who is told that another program is at work.
  template <typename Act>
  void repeat(const Act& act) {
    for (;;) {
      const Outcome outcome = act();
      ++m_count.deeds;
      if (outcome.isDone()) {
        return;
      }
      if (outcome.failure()->error != std::errc::device_or_resource_busy) {
        ++m_count.failed;
        return;
      }
      ++m_count.busy;
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  }

  void readSlotOfCommands() {
    const auto read = NerinAction::readSlotReports(slotOfCommands);
    ++m_count.deeds;
    if (!read.outcome.isDone()) {
      const bool isBusy = read.outcome.failure()->error == std::errc::device_or_resource_busy;
      ++(isBusy ? m_count.busy : m_count.failed);
      return;
    }
    _Nerin_PROFILE record{};
    static_cast<void>(
        NerinAction::decodeProfileImage(read.value.image, record, NerinAction::singleFunctionIdOf));
    const std::string held = NerinAction::decodeNameReport(read.value.name).value_or("");
    if ((held == "Even" && record.liftHeight != 2) || (held == "Odd" && record.liftHeight != 1)) {
      ++m_count.torn;
    }
  }

  Count& m_count;
};

void addProfile(const TestHome& user, const std::string& name, std::uint32_t lift) {
  ProfileValue profile = profileNamed(name);
  _Nerin_PROFILE record = profile.profileData();
  record.liftHeight = lift;
  profile.setProfileData(record);
  user.addProfile(profile);
}

void tell(const char* who, const Count& count) {
  std::cout << who << ": " << count.deeds << " deeds (" << count.busy << " busy, " << count.failed
            << " failed), " << count.pairs.pairs << " pairs, " << count.pairs.mixed << " mixed, "
            << count.torn << " torn\n";
}

}  // namespace

TEST(HammeredMouse, MixesNoPairAndLosesNoProfile) {
  const TestHome user;
  addProfile(user, "Even", 2);
  addProfile(user, "Odd", 1);
  const std::string even = readFile(user.profileFolder() / "Even.pro");
  const std::string odd = readFile(user.profileFolder() / "Odd.pro");
  Count ofCommands;
  Count ofWindow;
  std::set<std::string> expected{"Even", "Odd"};
  std::uint32_t lift = 0;
  std::string name;
  {
    const auto end = Clock::now() + hammeringTime();
    Commands commands(user, ofCommands);
    std::thread other([&] { commands.hammer(end); });
    Window window(user, ofWindow);
    window.hammer(end);
    other.join();
    expected.insert(commands.names.begin(), commands.names.end());
    expected.insert(name = window.name);
    lift = window.lift;
  }
  std::set<std::string> found;
  for (const auto& profile : user.json({"profiles", "list"})) {
    found.insert(profile["name"].get<std::string>());
  }
  tell("commands", ofCommands);
  tell("window", ofWindow);
  std::cout << "profiles: " << found.size() << ", expected: " << expected.size() << '\n';
  RecordProperty("pairs", ofCommands.pairs.pairs + ofWindow.pairs.pairs);
  EXPECT_EQ(found, expected);
  EXPECT_EQ(user.json({"show", name})["lift"], lift);
  EXPECT_EQ(user.json({"read", "--slot", "2"})["lift"], lift);
  EXPECT_TRUE(readFile(user.profileFolder() / "Even.pro") == even);
  EXPECT_TRUE(readFile(user.profileFolder() / "Odd.pro") == odd);
  for (const Count* count : {&ofCommands, &ofWindow}) {
    EXPECT_EQ(count->pairs.mixed, 0);
    EXPECT_EQ(count->torn, 0);
    EXPECT_EQ(count->failed, 0);
    EXPECT_GT(count->deeds, 4);
    EXPECT_GT(count->pairs.pairs, 4);
  }
  EXPECT_FALSE(std::filesystem::exists(user.supportFolder() / "Set aside"));
}
