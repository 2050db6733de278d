// What the window says to each way in which a mouse can fail, and that it stays usable.

#include <gmock/gmock.h>

#include "Action/Edit/Drafts.h"
#include "Action/Record/EditState.h"
#include "Kit/Core/LXPlatform.h"
#include "Tests/Support/FaultyRequester.h"
#include "Tests/Support/ViewTest.h"
#include "View/Windows/StatusLine.h"

namespace {

using testing::IsEmpty;

class TransferFaults : public ViewTest, public testing::WithParamInterface<TransferFault> {
 protected:
  TransferFaults() : m_requester(std::make_shared<FaultyRequester>(sharedMouse())) {
    LXPlatform platform = LXPlatform::current();
    platform.deviceRequester = m_requester;
    platform.now = [requester = m_requester] { return requester->time; };
    LXPlatform::install(platform);
  }

  void failAfter(int transfers) { m_requester->failAfter(transfers, GetParam()); }
  void recover() { m_requester->recover(); }
  void edit() {
    editState->edit().liftHeight = 4;
    view().refreshApplyBtn();
  }
  // In the open child window.
  QString childStatus() {
    return child()->findChild<StatusLine*>(QStringLiteral("statusLine"))->text();
  }

  std::shared_ptr<FaultyRequester> m_requester;
};

std::string nameOfFault(const testing::TestParamInfo<TransferFault>& info) {
  switch (info.param) {
    case TransferFault::Unplugged:
      return "Unplugged";
    case TransferFault::Hung:
      return "Hung";
    case TransferFault::Short:
      return "Short";
    case TransferFault::Stalled:
      return "Stalled";
    default:
      return "Other";
  }
}

}  // namespace

TEST_P(TransferFaults, OfAnApplyAreToldWithTheReportThatFailed) {
  start();
  for (int taken = 0; taken < 4; ++taken) {
    edit();
    failAfter(taken);
    click("applyBtn");
    EXPECT_EQ(status(),
              "Not applied: the mouse did not take report " + std::to_string(taken + 1) + " of 4");
    EXPECT_TRUE(button("applyBtn").isEnabled());
    EXPECT_EQ(editState->selProfile().liftHeight, 4U);
    recover();
  }
  EXPECT_THAT(m_shown, IsEmpty());
  click("applyBtn");
  EXPECT_EQ(status(), "Applied to slot 1");
  EXPECT_FALSE(button("applyBtn").isEnabled());
  EXPECT_FALSE(NerinAction::isApplyUnfinished(0));
}

TEST_P(TransferFaults, OfAResetAreToldToo) {
  start();
  failAfter(2);
  click("reDefBtn");
  EXPECT_THAT(status(), testing::StartsWith("Not applied: the mouse did not take report 3 of"));
  EXPECT_TRUE(button("applyBtn").isEnabled());
  recover();
  click("applyBtn");
  EXPECT_EQ(status(), "Applied to slot 1");
}

// The slot is changed first, which takes two transfers; then it is read.
TEST_P(TransferFaults, OfAReadLeaveTheSlotAsItWasShown) {
  start();
  for (int at = 2; at < 6; ++at) {
    const std::string shown = shownName();
    failAfter(at);
    chooseSlot(3);
    EXPECT_EQ(status(), "The slot could not be read. Nothing was changed.") << at;
    EXPECT_EQ(shownName(), shown) << at;
    recover();
    chooseSlot(1);
    EXPECT_EQ(shownName(), "Profile#1");
  }
  chooseSlot(3);
  EXPECT_EQ(shownName(), "Profile#3");
  EXPECT_THAT(m_shown, IsEmpty());
}

TEST_P(TransferFaults, OfASlotChangeAreTold) {
  start();
  for (int at = 0; at < 2; ++at) {
    failAfter(at);
    chooseSlot(3);
    EXPECT_NE(status(), "") << at;
    recover();
    chooseSlot(1);
  }
}

TEST_P(TransferFaults, OfARenamingKeepTheOldName) {
  start();
  failAfter(0);
  typeName("Desk");
  EXPECT_EQ(status(), "The mouse did not take all of it. Try again.");
  EXPECT_EQ(mouse().slotName(0), "Profile#1");
  recover();
  typeName("Desk");
  EXPECT_EQ(mouse().slotName(0), "Desk");
}

TEST_P(TransferFaults, OfTheLedModeAreTold) {
  start();
  failAfter(0);
  click("battleModeBtn");
  EXPECT_EQ(status(), "The mouse did not take all of it. Try again.");
  EXPECT_EQ(editState->selProfile().modeType, 1U) << "an Apply takes it to the mouse";
  recover();
  click("normalModeBtn");
  EXPECT_EQ(status(), "");
}

TEST_P(TransferFaults, OfSettingsAreToldInTheirWindow) {
  start();
  for (const char* opener : {"preformanceBtn", "lightOptionBtn"}) {
    click(opener);
    ASSERT_NE(child(), nullptr) << opener;
    failAfter(1);
    child()->findChild<LXButton*>(QStringLiteral("applyBtn"))->click();
    EXPECT_EQ(childStatus(), QStringLiteral("The mouse did not take all of it. Try again."))
        << opener;
    recover();
    child()->findChild<LXButton*>(QStringLiteral("applyBtn"))->click();
    EXPECT_EQ(childStatus(), QString()) << opener;
    child()->findChild<LXButton*>(QStringLiteral("cancelBtn"))->click();
    process();
  }
}

INSTANTIATE_TEST_SUITE_P(Kinds, TransferFaults,
                         testing::Values(TransferFault::Unplugged, TransferFault::Hung,
                                         TransferFault::Short, TransferFault::Stalled),
                         nameOfFault);
