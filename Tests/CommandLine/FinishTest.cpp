// Applies and restores that were cut off.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Action/Edit/Drafts.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Record/EditState.h"
#include "Tests/CommandLine/TestHome.h"
#include "Tests/CommandLine/WindowLike.h"

namespace {

using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

const char* const offer = "an Apply was interrupted; finish it with: nerinctl finish 2";

// A profile "Work" that plays two macros.
void addWork(const TestHome& user) {
  user.addMacro("burst", clickMacro("burst"));
  user.addMacro("combo", clickMacro("combo"));
  ProfileValue profile = profileNamed("Work");
  _Nerin_PROFILE record = profile.profileData();
  record.liftHeight = 21;
  profile.setProfileData(record);
  setMacro(profile, 3, 1, 1);
  setMacro(profile, 12, 2, 2, 9);
  user.addProfile(profile);
}

// The slot in the mouse's bytes.
Lines slotOfMouse(const TestHome& user, int slot) {
  const VirtualMouse mouse(user.mouseFile);
  Lines reports{hex(mouse.nameReport(slot)), hex(mouse.imageReport(slot))};
  constexpr int macrosOfSlot = VirtualMouse::macroSlotCount / VirtualMouse::slotCount;
  for (int at = 0; at < macrosOfSlot; ++at) {
    reports.push_back(hex(mouse.macroReport(slot * macrosOfSlot + at)));
  }
  return reports;
}

RunResult cutOff(const TestHome& user, int transfers, const Words& command) {
  Words words{"--scenario", "unplugged-after=" + std::to_string(transfers)};
  words.insert(words.end(), command.begin(), command.end());
  return user.runWithMouse(words);
}

std::map<std::string, std::string> profilesOf(const TestHome& user) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(user.profileFolder())) {
    files[entry.path().filename()] = readFile(entry.path());
  }
  return files;
}

}  // namespace

TEST(NerinctlFinish, WritesWhatAnApplyDidNotWhereverItWasCutOff) {
  const TestHome user;
  addWork(user);
  user.prepare({"profiles", "add", "Play"});
  user.prepare({"apply", "Work", "--slot", "2"});
  const Lines whole = slotOfMouse(user, 1);
  const auto library = profilesOf(user);
  int cases = 0;
  for (int transfers = 1;; ++transfers, ++cases) {
    user.prepare({"apply", "Play", "--slot", "2"});
    const RunResult cut = cutOff(user, transfers, {"apply", "Work", "--slot", "2"});
    if (cut.exitCode == 0) {
      break;
    }
    EXPECT_EQ(cut.exitCode, 3) << cut.errors;
    EXPECT_EQ(user.json({"slots"})[1]["unfinished"], true) << transfers;
    EXPECT_EQ(user.json({"finish", "2"}), json({{"profile", "Work"}, {"slot", 2}}));
    EXPECT_EQ(slotOfMouse(user, 1), whole) << transfers;
    EXPECT_EQ(user.json({"slots"})[1]["unfinished"], false);
    EXPECT_TRUE(profilesOf(user) == library) << transfers;
  }
  RecordProperty("cases", cases);
  EXPECT_EQ(cases, 7);
}

TEST(NerinctlFinish, IsOfferedWhereverTheSlotIsShown) {
  const TestHome user;
  addWork(user);
  EXPECT_EQ(cutOff(user, 3, {"apply", "Work", "--slot", "2"}).exitCode, 3);
  EXPECT_EQ(user.json({"status"})["unfinished"], json({2}));
  EXPECT_THAT(user.lines({"status"}), Contains("slot 2          " + std::string(offer)));
  EXPECT_THAT(user.lines({"slots"})[1], testing::EndsWith(offer));
  EXPECT_EQ(user.json({"slots"})[2]["unfinished"], false);
  EXPECT_THAT(user.lines({"read", "--slot", "2"}), Contains(offer));
  EXPECT_EQ(user.json({"read", "--slot", "2"})["unfinished"], true);
  EXPECT_THAT(user.lines({"switch", "2"}), ElementsAre("slot 2 is active", offer));
  EXPECT_EQ(user.json({"switch", "2"})["unfinished"], true);
  EXPECT_THAT(user.lines({"finish", "2"}), ElementsAre("Work is in slot 2"));
  EXPECT_EQ(user.json({"status"})["unfinished"], json::array());
}

TEST(NerinctlFinish, AnswersFourWhereNothingIsToFinish) {
  const TestHome user;
  addWork(user);
  const std::string memory = user.mouseMemory();
  expectComplaint(user.runWithMouse({"finish", "2"}), 4, "no Apply to slot 2 was interrupted");
  expectComplaint(user.runWithMouse({"finish", "11"}), 4, "no such slot: 11");
  std::filesystem::create_directories(user.folders().drafts);
  writeFile(user.folders().drafts / "applying-2.xml", "<SlotDraft");
  expectComplaint(user.runWithMouse({"finish", "2"}), 4,
                  "what slot 2 was to get cannot be read; apply a profile to it");
  EXPECT_EQ(user.mouseMemory(), memory);
}

TEST(NerinctlFinish, ThatIsCutOffTooCanBeRepeated) {
  const TestHome user;
  addWork(user);
  user.prepare({"apply", "Work", "--slot", "2"});
  const Lines whole = slotOfMouse(user, 1);
  VirtualMouse(user.mouseFile).clearSlot(1);
  EXPECT_EQ(cutOff(user, 4, {"apply", "Work", "--slot", "2"}).exitCode, 3);
  for (int transfers = 1; transfers < 8; ++transfers) {
    EXPECT_EQ(cutOff(user, transfers, {"finish", "2"}).exitCode, 3) << transfers;
  }
  user.prepare({"finish", "2"});
  EXPECT_EQ(slotOfMouse(user, 1), whole);
  EXPECT_EQ(user.json({"profiles", "list"}).size(), 1U);
}

// The window was killed in the middle of the first Apply of a new profile.
TEST(NerinctlFinish, PutsAProfileThatIsNewIntoTheLibrary) {
  const TestHome user;
  {
    WindowLike window(user);
    ASSERT_TRUE(NerinAction::loadSlot(1).value);
    ASSERT_TRUE(NerinAction::beginProfile("Fresh").isDone());
    editState->edit().liftHeight = 13;
    NerinAction::beginApply(NerinAction::currentDraft(1));
  }
  user.prepare({"finish", "2"});
  EXPECT_EQ(user.json({"read", "--slot", "2"})["name"], "Fresh");
  EXPECT_EQ(user.json({"show", "Fresh"})["lift"], 13);
  EXPECT_EQ(user.json({"read", "--slot", "2"})["lift"], 13);
  EXPECT_EQ(user.json({"profiles", "list"}).size(), 1U);
}

// The library was saved although the mouse took nothing.
TEST(NerinctlFinish, UsesTheProfileThatTheLibraryGotMeanwhile) {
  const TestHome user;
  {
    WindowLike window(user);
    ASSERT_TRUE(NerinAction::loadSlot(1).value);
    ASSERT_TRUE(NerinAction::beginProfile("Fresh").isDone());
    window.mouse().setScenario({.kind = MouseScenario::Kind::UnpluggedAfter, .transfers = 2});
    EXPECT_FALSE(NerinAction::applySlot().isDone());
  }
  EXPECT_EQ(user.json({"finish", "2"})["profile"], "Fresh");
  EXPECT_EQ(user.json({"profiles", "list"}).size(), 1U);
  EXPECT_THAT(std::filesystem::directory_iterator(user.folders().drafts),
              testing::Eq(std::filesystem::directory_iterator()))
      << "what was finished is no edit any more";
}

TEST(NerinctlFinish, LeavesWhatWasEditedSince) {
  const TestHome user;
  addWork(user);
  {
    WindowLike window(user);
    ASSERT_TRUE(NerinAction::loadSlot(1).value);
    editState->edit().liftHeight = 13;
    window.mouse().setScenario({.kind = MouseScenario::Kind::UnpluggedAfter, .transfers = 2});
    EXPECT_FALSE(NerinAction::applySlot().isDone());
    editState->edit().liftHeight = 14;
    NerinAction::keepDraft();
  }
  user.prepare({"finish", "2"});
  WindowLike window(user);
  EXPECT_TRUE(NerinAction::hasDraft(1));
  EXPECT_TRUE(NerinAction::loadSlot(1).value);
  EXPECT_EQ(editState->base()->liftHeight, 13U);
  EXPECT_EQ(editState->selProfile().liftHeight, 14U);
}

// What was edited in the window belongs to its user, whatever nerinctl does to the slot.
TEST(NerinctlFinish, AnApplyLeavesTheEditOfTheWindow) {
  const TestHome user;
  addWork(user);
  for (const bool isCutOff : {false, true}) {
    {
      WindowLike window(user);
      ASSERT_TRUE(NerinAction::loadSlot(1).value);
      editState->edit().liftHeight = 14;
      NerinAction::keepDraft();
    }
    const Words command{"apply", "Work", "--slot", "2"};
    EXPECT_EQ((isCutOff ? cutOff(user, 2, command) : user.runWithMouse(command)).exitCode,
              isCutOff ? 3 : 0);
    WindowLike window(user);
    EXPECT_TRUE(NerinAction::hasDraft(1)) << isCutOff;
    EXPECT_TRUE(NerinAction::loadSlot(1).value);
    EXPECT_EQ(editState->selProfile().liftHeight, 14U) << isCutOff;
  }
}

TEST(NerinctlFinish, BringsARestoreToItsEndWhereverItWasCutOff) {
  const TestHome user;
  addWork(user);
  user.prepare({"profiles", "add", "Play"});
  user.prepare({"apply", "Work", "--slot", "2"});
  const Lines whole = slotOfMouse(user, 1);
  user.prepare({"backup", "kept"});
  // Only slot 2, so that each transfer is one of its own.
  for (int slot = 1; slot <= 10; ++slot) {
    const std::string name = slot < 10 ? "slot-0" + std::to_string(slot) : "slot-10";
    for (const char* extension : {".raw", ".pro"}) {
      if (slot != 2) {
        std::filesystem::remove(user.files / "kept" / (name + extension));
      }
    }
  }
  int cases = 0;
  for (int transfers = 1;; ++transfers, ++cases) {
    user.prepare({"apply", "Play", "--slot", "2"});
    const auto library = profilesOf(user);
    const RunResult cut = cutOff(user, transfers, {"restore", "kept"});
    if (cut.exitCode == 0) {
      break;
    }
    EXPECT_EQ(cut.exitCode, 3) << cut.errors;
    {
      WindowLike window(user);
      EXPECT_TRUE(NerinAction::loadSlot(1).value);
      EXPECT_FALSE(WindowLike::library().saveToSys());
    }
    EXPECT_TRUE(profilesOf(user) == library) << "a mixture came into the library: " << transfers;
    EXPECT_EQ(user.json({"status"})["unfinished"], json({2}));
    user.prepare({"finish", "2"});
    EXPECT_EQ(slotOfMouse(user, 1), whole) << transfers;
    EXPECT_TRUE(profilesOf(user) == library) << transfers;
  }
  RecordProperty("cases", cases);
  // The eight of the write, and those that read the slot again.
  EXPECT_GE(cases, 15);
  EXPECT_EQ(user.json({"status"})["unfinished"], json::array());
}
