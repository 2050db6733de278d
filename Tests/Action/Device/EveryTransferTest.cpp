// A mouse that fails at each single transfer of every series, in every way that a mouse can fail.

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <map>
#include <vector>

#include <gmock/gmock.h>
#include <unistd.h>

#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Device/DeviceLink.h"
#include "Action/Device/DeviceSettings.h"
#include "Action/Device/SlotReportTransfer.h"
#include "Action/Device/SlotTransfer.h"
#include "Action/Edit/Drafts.h"
#include "Action/Edit/FinishApply.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Record/EditState.h"
#include "Kit/Core/LXPlatform.h"
#include "Tests/Support/ActionTest.h"
#include "Tests/Support/FaultyRequester.h"
#include "Tests/Support/SlotAsRead.h"

namespace {

namespace fs = std::filesystem;

using testing::AnyOf;
using testing::IsEmpty;
using Files = std::map<std::string, std::string>;

constexpr int slotOfWork = 1;
constexpr std::uint32_t editedHeight = 7;
constexpr int everyTransfer = 1'000'000;

// Real syncs only make this slow.
const bool isInMemory = ::access("/dev/shm", W_OK) == 0 && ::setenv("TMPDIR", "/dev/shm", 1) == 0;

ProfieController& library() {
  return ProfieController::getShareProCon();
}

// Whether a failure that comes once is made up for by trying again.
enum class TriesAgain : std::uint8_t { Never, Partly, Always };

struct Deed {
  const char* name;
  Outcome (*act)();
  // The edit of the slot is one that must not be lost.
  bool isEdit = false;
  TriesAgain triesAgain = TriesAgain::Never;
  // Before the deed.
  void (*prepare)() = [] {};
};

void edit() {
  editState->edit().liftHeight = editedHeight;
}

// What the window does when the user tries a setting.
void trySettings() {
  editState->currSetProfile() = editState->selProfile();
}

_BTN_INFO macroButton() {
  return editState->selProfile().btnInfo[4];
}

Outcome backUp() {
  Outcome outcome;
  for (std::uint8_t slot = 0; slot < ProfieController::slotCount; ++slot) {
    outcome += NerinAction::readSlotReports(slot).outcome;
  }
  return outcome;
}

NerinAction::SlotReports kept;

// As nerinctl does it.
Outcome restore() {
  SlotDraft intent = NerinAction::currentDraft(slotOfWork);
  intent.isMouseOnly = true;
  NerinAction::beginApply(intent);
  Outcome outcome = NerinAction::writeSlotReports(slotOfWork, kept);
  if (outcome.isDone()) {
    outcome += NerinAction::readSlotReports(slotOfWork).outcome;
  }
  if (outcome.isDone()) {
    NerinAction::forgetApply(slotOfWork);
  }
  return outcome;
}

// What the window does when the user selects a slot.
Outcome changeSlot() {
  return NerinAction::changeSlot(slotOfWork, [] {
    Outcome outcome = NerinAction::loadSlot(slotOfWork).outcome;
    trySettings();
    outcome += NerinAction::setModelToDevice();
    return outcome;
  });
}

// The library takes it over with the next read.
void changeAsAnotherProgram() {
  constexpr std::uint16_t addressOfHeight = (slotOfWork + 1) * 256 + 1;
  EXPECT_TRUE(NerinAction::setAdrrData(9, addressOfHeight).isDone());
}

const Deed reads[] = {
    {.name = "read",
     .act = [] { return NerinAction::loadSlot(slotOfWork).outcome; },
     .triesAgain = TriesAgain::Always,
     .prepare = changeAsAnotherProgram},
    {.name = "slot change", .act = changeSlot, .triesAgain = TriesAgain::Partly},
};

const Deed backups[] = {
    {.name = "backup", .act = backUp, .triesAgain = TriesAgain::Always},
};

const Deed applies[] = {
    {.name = "apply",
     .act = [] { return NerinAction::applySlot(); },
     .isEdit = true,
     .prepare = edit},
    {.name = "apply under a new name",
     .act = [] { return NerinAction::applySlot(); },
     .isEdit = true,
     .prepare =
         [] {
           edit();
           library().setCurrFWProfileName("Desk");
         }},
    {.name = "apply a new profile",
     .act = [] { return NerinAction::applySlot(); },
     .isEdit = true,
     .prepare =
         [] {
           static_cast<void>(NerinAction::beginProfile("Fresh"));
           edit();
         }},
    {.name = "apply another profile",
     .act = [] { return NerinAction::applySlot(); },
     .isEdit = true,
     .prepare =
         [] {
           NerinAction::bindSlot(library().getProfileByName("Rest")->profileId());
           edit();
         }},
    {.name = "reset", .act = [] { return NerinAction::resetSlot(); }},
    {.name = "rename", .act = [] { return NerinAction::renameSlot("Desk"); }},
    {.name = "restore", .act = restore, .triesAgain = TriesAgain::Partly},
};

const Deed settings[] = {
    {.name = "mode", .act = [] { return NerinAction::setModelToDevice(); }, .prepare = trySettings},
    {.name = "rate", .act = [] { return NerinAction::setRateToDevice(1); }, .prepare = trySettings},
    {.name = "DPI",
     .act = [] { return NerinAction::setSettingToDevice(); },
     .prepare = trySettings},
    {.name = "colors",
     .act = [] { return NerinAction::setColorToDevice(); },
     .prepare = trySettings},
    {.name = "colors at once",
     .act = [] { return NerinAction::setColorToDevice2(); },
     .prepare = trySettings},
    {.name = "one button with a macro",
     .act = [] { return NerinAction::setBtnInfoToDevicePro(5, macroButton()); },
     .prepare = trySettings},
    {.name = "reset of the mouse", .act = [] { return NerinAction::resetDevPro(); }},
};

struct NamedFault {
  const char* name;
  TransferFault fault;
  bool lasts;
};

const NamedFault faults[] = {
    {"unplugged", TransferFault::Unplugged, true},
    {"hung", TransferFault::Hung, true},
    {"hung once", TransferFault::HungOnce, true},
    {"short", TransferFault::Short, true},
    {"short once", TransferFault::ShortOnce, false},
    {"stalled", TransferFault::Stalled, true},
    {"stalled once", TransferFault::StalledOnce, false},
    {"answer lost", TransferFault::AnswerLost, false},
};

class EveryTransfer : public ActionTest, public testing::WithParamInterface<Deed> {
 protected:
  EveryTransfer() : EveryTransfer(std::make_shared<VirtualMouse>()) {}

  // The library "Work", "Play" and "Rest", as slots hold them, and a mouse in a file; both lie
  // aside so that each case begins with them.
  void SetUp() override {
    beginAgain();
    for (int index = 0; index < static_cast<int>(buttonCount); ++index) {
      addMacro(index + 1, "Macro" + std::to_string(index), {{15, 0, 10}, {15, 1, 0}});
    }
    NerinAction::refreshMenuList();
    ASSERT_TRUE(NerinAction::saveMenuList());
    int slot = slotOfWork;
    for (const char* name : {"Work", "Play", "Rest"}) {
      ASSERT_TRUE(NerinAction::loadSlot(slot).value);
      NerinAction::bindSlot(library().addProfileByName(name, nullptr)->profileId());
      giveMacros(slot == slotOfWork ? buttonCount : 2);
      ASSERT_TRUE(NerinAction::applySlot().isDone());
      ASSERT_TRUE(NerinAction::loadSlot(slot).value);
      ASSERT_FALSE(library().saveToSys());
      ++slot;
    }
    kept = NerinAction::readSlotReports(3).value;
    kept.name[2] = kept.image[2] = slotOfWork;
    endProgram();
    fs::copy(home(), m_template / "home", fs::copy_options::recursive);
    fs::copy(m_mouseFile, m_template / "mouse");
  }

  static void giveMacros(std::size_t count) {
    for (std::size_t index = 0; index < count; ++index) {
      editState->edit().btnInfo[index] = macroButton(index);
    }
  }
  static _BTN_INFO macroButton(std::size_t index) {
    const auto macro = NerinAction::getMacroByName("Macro" + std::to_string(index));
    return ActionTest::macroButton(static_cast<std::uint32_t>(macro->macroId()));
  }

  // A new program with the mouse as it is, healthy.
  void beginAgain() {
    endProgram();
    m_requester->plugIn(std::make_shared<VirtualMouse>(m_mouseFile));
    beginProgram();
  }

  void beginCase(const Deed& deed) {
    endProgram();
    fs::remove_all(home() / "Library");
    fs::copy(m_template / "home", home(), fs::copy_options::recursive);
    fs::copy_file(m_template / "mouse", m_mouseFile, fs::copy_options::overwrite_existing);
    beginAgain();
    ASSERT_TRUE(NerinAction::loadSlot(slotOfWork).value);
    deed.prepare();
  }

  Files profiles() const {
    Files files;
    for (const std::string& name : namesIn(libraryFolder())) {
      files[name] = textOfFile(libraryFolder() / name);
    }
    return files;
  }
  std::vector<std::string> namesOfDrafts() const {
    const fs::path folder = supportFolder() / "Drafts";
    return fs::exists(folder) ? namesIn(folder) : std::vector<std::string>();
  }
  // The slot in the mouse's bytes.
  std::string slotOfMouse() const {
    const VirtualMouse mouse(m_mouseFile);
    return hexOf(mouse.nameReport(slotOfWork)) + hexOf(mouse.imageReport(slotOfWork));
  }

  // What a deed does with a healthy mouse.
  struct Healthy {
    int transfers = 0;
    Files before;
    Files after;
    Files afterRead;
    std::string slot;
  };
  Healthy doHealthy(const Deed& deed) {
    Healthy healthy;
    beginCase(deed);
    healthy.before = profiles();
    m_requester->failAfter(everyTransfer, TransferFault::None);
    EXPECT_TRUE(deed.act().isDone()) << deed.name;
    healthy.transfers = m_requester->transfers();
    healthy.after = profiles();
    healthy.slot = slotOfMouse();
    beginAgain();
    EXPECT_TRUE(NerinAction::loadSlot(slotOfWork).value) << deed.name;
    EXPECT_FALSE(library().saveToSys());
    healthy.afterRead = profiles();
    EXPECT_FALSE(deed.isEdit && healthy.before == healthy.after) << "nothing would show a loss";
    return healthy;
  }

  void expectAllowed(const Healthy& healthy, const std::string& where) const {
    const Files now = profiles();
    EXPECT_TRUE(now == healthy.before || now == healthy.after || now == healthy.afterRead)
        << where << ": " << testing::PrintToString(namesIn(libraryFolder()));
  }

  void failOnce(const Deed& deed, const Healthy& healthy, const NamedFault& fault, int transfer) {
    const std::string where = std::string(deed.name) + ", " + fault.name + " at transfer " +
                              std::to_string(transfer + 1) + " of " +
                              std::to_string(healthy.transfers);
    beginCase(deed);
    const std::string name = library().currFWProfileName().value_or("");
    m_requester->failAfter(transfer, fault.fault);
    const bool isDone = deed.act().isDone();
    if (fault.lasts || deed.triesAgain == TriesAgain::Never) {
      EXPECT_FALSE(isDone) << where;
    } else if (deed.triesAgain == TriesAgain::Always) {
      EXPECT_TRUE(isDone) << where;
    }
    expectAllowed(healthy, where);
    const bool isUnfinished = NerinAction::isApplyUnfinished(slotOfWork);
    const Files saved = profiles();
    restartAndCheck(deed, healthy, where, isDone ? "" : name);
    if (isUnfinished) {
      EXPECT_TRUE(profiles() == saved) << where << ": a profile changed by the read";
    }
    applyAnew(deed, healthy, where);
  }

  void restartAndCheck(const Deed& deed, const Healthy& healthy, const std::string& where,
                       const std::string& name) {
    beginAgain();
    EXPECT_TRUE(NerinAction::loadSlot(slotOfWork).value) << where;
    EXPECT_FALSE(library().saveToSys()) << where;
    expectAllowed(healthy, where + ", after a restart");
    if (deed.isEdit) {
      EXPECT_EQ(editState->selProfile().liftHeight, editedHeight) << where << ": the edit is lost";
      EXPECT_EQ(library().currFWProfileName(), name) << where;
      EXPECT_TRUE(editState->isNeedSave()) << where;
    }
  }

  void applyAnew(const Deed& deed, const Healthy& healthy, const std::string& where) {
    EXPECT_TRUE(NerinAction::applySlot().isDone()) << where;
    EXPECT_THAT(namesOfDrafts(), IsEmpty()) << where;
    if (deed.isEdit) {
      EXPECT_TRUE(profiles() == healthy.after || profiles() == healthy.afterRead)
          << where << ": " << testing::PrintToString(namesIn(libraryFolder()));
      EXPECT_EQ(slotOfMouse(), healthy.slot) << where;
    }
  }

  int failEverywhere(const Deed& deed) {
    const Healthy healthy = doHealthy(deed);
    int cases = 0;
    for (const NamedFault& fault : faults) {
      for (int transfer = 0; transfer < healthy.transfers && !HasFailure(); ++transfer) {
        failOnce(deed, healthy, fault, transfer);
        ++cases;
      }
    }
    return cases;
  }

 private:
  explicit EveryTransfer(const std::shared_ptr<VirtualMouse>& mouse)
      : EveryTransfer(mouse, std::make_shared<FaultyRequester>(mouse)) {}
  EveryTransfer(const std::shared_ptr<VirtualMouse>& mouse,
                const std::shared_ptr<FaultyRequester>& requester)
      : ActionTest(mouse, requester),
        m_requester(requester),
        m_template(m_folder.folder() / "template"),
        m_mouseFile(m_folder.folder() / "mouse") {
    fs::create_directories(m_template);
    LXPlatform platform = LXPlatform::current();
    platform.now = [requester] { return requester->time; };
    platform.sleep = [requester](std::chrono::microseconds time) { requester->time += time; };
    LXPlatform::install(platform);
  }

  std::shared_ptr<FaultyRequester> m_requester;
  Scratch m_folder;
  fs::path m_template;
  fs::path m_mouseFile;
};

std::string nameOfDeed(const testing::TestParamInfo<Deed>& info) {
  std::string name = info.param.name;
  std::replace(name.begin(), name.end(), ' ', '_');
  return name;
}

void PrintTo(const Deed& deed, std::ostream* stream) {
  *stream << deed.name;
}

TEST_P(EveryTransfer, ThatFailsLeavesTheLibraryBeforeOrAfterAndTheEditToBeApplied) {
  const int cases = failEverywhere(GetParam());
  std::cout << GetParam().name << ": " << cases << " cases\n";
  RecordProperty("cases", cases);
  EXPECT_GT(cases, 0);
}

INSTANTIATE_TEST_SUITE_P(OfReads, EveryTransfer, testing::ValuesIn(reads), nameOfDeed);
INSTANTIATE_TEST_SUITE_P(OfBackups, EveryTransfer, testing::ValuesIn(backups), nameOfDeed);
INSTANTIATE_TEST_SUITE_P(OfApplies, EveryTransfer, testing::ValuesIn(applies), nameOfDeed);
INSTANTIATE_TEST_SUITE_P(OfSettings, EveryTransfer, testing::ValuesIn(settings), nameOfDeed);

}  // namespace
