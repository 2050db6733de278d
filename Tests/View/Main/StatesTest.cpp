// The state after each operation on profiles, followed by another action of the user or the mouse.

#include <gmock/gmock.h>

#include "Tests/View/Main/ProfileDeeds.h"
#include "View/Windows/Termination.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

// The first slot is linked to A and has an edit. Then one operation runs.
struct Row {
  const char* deed;
  State after;
  Names disk;
  // The name that Apply stores in the slot, and the profile's id.
  std::string appliedName;
  std::uint64_t appliedId;
  Names diskAfterApply;
  Names diskAfterReset;
  // The title after a restart without any other action.
  std::string titleAfterRestart;
};

std::ostream& operator<<(std::ostream& out, const Row& row) {
  return out << row.deed;
}

class MainViewStates : public MainViewDeeds, public testing::WithParamInterface<Row> {
 protected:
  void begin() {
    startLinked();
    edit();
    perform(GetParam().deed);
    m_asked.clear();
    clearTrace();
  }

  // Expects that Apply wrote the first slot and the library.
  void expectApplied() {
    const Row& row = GetParam();
    EXPECT_EQ(mouse().slotName(0), row.appliedName);
    EXPECT_EQ(redOnMouse(0), row.after.red);
    EXPECT_EQ(library().fwProfileID()[0], row.appliedId);
    EXPECT_EQ(linkOf(0), row.appliedName);
    EXPECT_EQ(disk(), row.diskAfterApply);
    EXPECT_FALSE(mouse().hasUnrefreshedWrites());
    EXPECT_THAT(mouse().faults(), IsEmpty());
  }

  // Expects that only the operation itself changed anything.
  void expectFirstSlotUntouched() {
    const bool isRenamed = GetParam().deed == std::string("Rename");
    EXPECT_EQ(mouse().slotName(0), isRenamed ? "X" : "A");
    EXPECT_EQ(redOnMouse(0), OfSlotA);
    EXPECT_EQ(linkOf(0), GetParam().after.link);
    EXPECT_EQ(disk(), GetParam().disk);
  }
};

const Row rows[] = {
    {"New",
     {"", "", "NewPF_1", "", Edited, true},
     {"A.pro", "B.pro"},
     "NewPF_1",
     10,
     {"A.pro", "B.pro", "NewPF_1.pro"},
     {"A.pro", "B.pro", "Profile#1.pro"},
     "A"},
    {"Duplicate",
     {"", "", "A_1", "", Edited, true},
     {"A.pro", "B.pro"},
     "A_1",
     10,
     {"A.pro", "A_1.pro", "B.pro"},
     {"A.pro", "B.pro", "Profile#1.pro"},
     "A"},
    {"Delete",
     {"", "", "A", "", Edited, true},
     {"B.pro"},
     "A",
     10,
     {"A.pro", "B.pro"},
     {"B.pro", "Profile#1.pro"},
     ""},
    {"Rename",
     {"X", "X", "X", "X", Edited, true},
     {"B.pro", "X.pro"},
     "X",
     5,
     {"B.pro", "X.pro"},
     {"B.pro", "Profile#1.pro"},
     "X"},
    {"Import",
     {"A", "A", "A", "A", Edited, true},
     {"A.pro", "B.pro", "C.pro"},
     "A",
     5,
     {"A.pro", "B.pro", "C.pro"},
     {"B.pro", "C.pro", "Profile#1.pro"},
     "A"},
    {"Choose",
     {"B", "B", "B", "B", OfFileB, true},
     {"A.pro", "B.pro"},
     "B",
     9,
     {"A.pro", "B.pro"},
     {"A.pro", "Profile#1.pro"},
     "A"},
};

}  // namespace

TEST_P(MainViewStates, IsAsTheDeedLeftIt) {
  startLinked();
  edit();
  clearTrace();
  perform(GetParam().deed);
  EXPECT_EQ(state(), GetParam().after);
  EXPECT_EQ(library().currFWProfileName(), GetParam().after.name);
  EXPECT_TRUE(button("applyBtn").isEnabled());
  EXPECT_THAT(messages(), IsEmpty());
  EXPECT_THAT(m_asked, IsEmpty());
  expectFirstSlotUntouched();
}

TEST_P(MainViewStates, StaysWhenAnotherSlotIsChosenAndTheQuestionDeclined) {
  begin();
  m_answer = false;
  chooseSlot(2);
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningNeedSave", true)));
  EXPECT_EQ(state(), GetParam().after);
  EXPECT_EQ(library().currFWProfileIndex(), 0);
  EXPECT_TRUE(button("profile1Btn").isChecked());
  EXPECT_FALSE(button("profile2Btn").isChecked());
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_THAT(messages(), IsEmpty());
  expectFirstSlotUntouched();
}

TEST_P(MainViewStates, IsAppliedBeforeAKnownProfilesSlotIsLoaded) {
  begin();
  chooseSlot(2);
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningNeedSave", true)));
  EXPECT_EQ(state(), (State{"B", "B", "B", "B", OfSlotB, false}));
  EXPECT_THAT(messages(), ElementsAre("101", "111"));
  EXPECT_EQ(mouse().activeSlot(), 1);
  expectApplied();
}

TEST_P(MainViewStates, IsAppliedBeforeAStrangersSlotIsLoaded) {
  begin();
  chooseSlot(3);
  EXPECT_EQ(state(), (State{"", "", "Stranger", "", OfStranger, false}));
  EXPECT_THAT(messages(), ElementsAre("101", "111"));
  expectApplied();
}

TEST_P(MainViewStates, IsAppliedAndStaysShownInASlotWithoutAName) {
  begin();
  chooseSlot(4);
  const std::string& name = GetParam().appliedName;
  EXPECT_EQ(state(), (State{"", name, name, name, GetParam().after.red, false}));
  EXPECT_THAT(messages(), ElementsAre("101", "111"));
  EXPECT_EQ(mouse().slotName(3), "");
  expectApplied();
}

TEST_P(MainViewStates, GivesWayToTheMousesOwnChangeToAKnownProfile) {
  begin();
  mouse().pressSlotButton(1);
  report(1, 1);
  EXPECT_THAT(m_asked, IsEmpty());
  EXPECT_EQ(state(), (State{"B", "B", "B", "B", OfSlotB, true}));
  EXPECT_THAT(messages(), ElementsAre("111"));
  expectFirstSlotUntouched();
}

TEST_P(MainViewStates, GivesWayToTheMousesOwnChangeToAStranger) {
  begin();
  mouse().pressSlotButton(2);
  report(1, 2);
  EXPECT_THAT(m_asked, IsEmpty());
  EXPECT_EQ(state(), (State{"", "", "Stranger", "", OfStranger, true}));
  expectFirstSlotUntouched();
}

TEST_P(MainViewStates, IsReplacedByTheFactoryProfileAtReset) {
  begin();
  click("reDefBtn");
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningReset", true)));
  EXPECT_EQ(state(),
            (State{"Profile#1", "Profile#1", "Profile#1", "Profile#1", m_factoryRed, false}));
  EXPECT_THAT(messages(), ElementsAre("101"));
  EXPECT_EQ(mouse().slotName(0), "Profile#1");
  EXPECT_EQ(redOnMouse(0), m_factoryRed);
  EXPECT_EQ(disk(), GetParam().diskAfterReset);
  EXPECT_FALSE(button("applyBtn").isEnabled());
}

TEST_P(MainViewStates, IsForgottenWhenTheProgramIsQuit) {
  begin();
  click("closeBtn");
  EXPECT_THAT(m_asked, IsEmpty());
  EXPECT_TRUE(termination::isTerminating());
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_THAT(messages(), IsEmpty());
  EXPECT_EQ(disk(), GetParam().disk);
  startAgain();
  EXPECT_EQ(title(), GetParam().titleAfterRestart);
  EXPECT_EQ(linkOf(0), GetParam().titleAfterRestart);
  EXPECT_EQ(editState->selProfile().lightColorArr[0].cR, OfSlotA);
  EXPECT_FALSE(editState->isNeedSave());
  EXPECT_EQ(disk(), GetParam().disk);
}

INSTANTIATE_TEST_SUITE_P(After, MainViewStates, testing::ValuesIn(rows),
                         [](const auto& test) { return std::string(test.param.deed); });
