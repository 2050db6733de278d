// What the user sees while the mouse is written or read, and in which order.

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <thread>

#include <gmock/gmock.h>

#include "Action/Device/DeviceLink.h"
#include "Action/NerinAction.h"
#include "Kit/Core/ObservedDeviceRequester.h"
#include "Tests/Support/ViewTest.h"
#include "View/Windows/Termination.h"
#include "View/Windows/TransferProgress.h"

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

class Transfer : public ViewTest {
 protected:
  // Checks the program at every pause between two reports.
  void watch() {
    auto* line = view().findChild<ProgressLine*>(QStringLiteral("progressBar"));
    ASSERT_NE(line, nullptr);
    setOnPause([this, line] {
      TransferProgress::reportDone();
      m_fractions.push_back(line->fraction());
      const QCursor* cursor = QApplication::overrideCursor();
      m_waits.push_back(cursor != nullptr && cursor->shape() == Qt::WaitCursor);
    });
  }
  double fraction() {
    return view().findChild<ProgressLine*>(QStringLiteral("progressBar"))->fraction();
  }
  // The first bytes of each sent report, without the ready commands of reads.
  std::vector<std::string> writes() const {
    std::vector<std::string> lines;
    for (const std::string& line : sent()) {
      if (!line.starts_with("SET 0300 0 c40c") && !line.starts_with("SET 0300 0 df")) {
        lines.push_back(line.substr(0, 18));
      }
    }
    return lines;
  }

  std::vector<double> m_fractions;
  std::vector<bool> m_waits;
};

}  // namespace

TEST_F(Transfer, FillsTheLineUnderAWaitCursor) {
  start();
  click("profileNewBtn");
  watch();
  click("applyBtn");
  ASSERT_GE(m_fractions.size(), 3U);
  EXPECT_TRUE(std::is_sorted(m_fractions.begin(), m_fractions.end()));
  EXPECT_GT(m_fractions.front(), 0);
  EXPECT_GT(m_fractions.back(), 0.5);
  EXPECT_LE(m_fractions.back(), 1);
  EXPECT_THAT(m_waits, Each(true));
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  EXPECT_LE(fraction(), 0);
}

TEST_F(Transfer, CountsTheMacrosOfTheButtons) {
  start();
  addMacro(3, "one", {{4, 0, 10}});
  addMacro(4, "two", {{4, 0, 10}});
  editState->edit().btnInfo[5] = macroButton(3);
  editState->edit().btnInfo[6] = macroButton(4);
  editState->raiseNeedSave();
  view().refreshApplyBtn();
  watch();
  click("applyBtn");
  ASSERT_FALSE(m_fractions.empty());
  EXPECT_LT(m_fractions.front(), 0.2);
  EXPECT_LE(m_fractions.back(), 1);
  EXPECT_TRUE(std::is_sorted(m_fractions.begin(), m_fractions.end()));
  EXPECT_EQ(std::count(m_fractions.begin(), m_fractions.end(), 1.0), 1);
}

TEST_F(Transfer, WhatWasClickedBehindCancelIsDropped) {
  start();
  click("preformanceBtn");
  auto* child = this->child();
  ASSERT_NE(child, nullptr);
  setOnPause([] { std::this_thread::sleep_for(std::chrono::milliseconds(10)); });
  child->findChild<LXButton*>(QStringLiteral("cancelBtn"))->click();
  setOnPause({});
  const auto clickCancel = [this] {
    QTest::mouseClick(window().windowHandle(), Qt::LeftButton, {},
                      button("cancelBtn").mapTo(&window(), QPoint(20, 20)));
  };
  clickCancel();
  EXPECT_FALSE(termination::isTerminating()) << "it was queued while the trial was undone";
  QTest::qWait(50);
  clickCancel();
  EXPECT_TRUE(termination::isTerminating());
}

TEST_F(Transfer, NothingElseHappensMeanwhile) {
  start();
  bool hasHappened = false;
  QTimer::singleShot(0, qApp, [&] { hasHappened = true; });
  click("profileNewBtn");
  click("applyBtn");
  EXPECT_FALSE(sent().empty());
  EXPECT_FALSE(hasHappened);
  process();
  EXPECT_TRUE(hasHappened);
}

TEST_F(Transfer, ApplyWritesNameThenImageAndThenTellsTheService) {
  start();
  editState->raiseNeedSave();
  view().refreshApplyBtn();
  clearTrace();
  std::vector<std::size_t> messagesSeen;
  setOnPause([&] { messagesSeen.push_back(messages().size()); });
  click("applyBtn");
  EXPECT_THAT(writes(), ElementsAre(StartsWith("SET 0306 1 06"), StartsWith("SET 0300 0 c400"),
                                    StartsWith("SET 0305 1 05"), StartsWith("SET 0300 0 c400")));
  EXPECT_THAT(messagesSeen, Each(0U));
  EXPECT_THAT(messages(), ElementsAre("101"));
  EXPECT_FALSE(posts().back().userInfo.has_value());
}

TEST_F(Transfer, ASlotChangeSwitchesTheMouseFirstAndTellsTheServiceLast) {
  start();
  clearTrace();
  std::vector<std::size_t> messagesSeen;
  setOnPause([&] { messagesSeen.push_back(messages().size()); });
  editState->setIsHaveNewName(true);
  chooseSlot(3);
  const auto lines = sent();
  ASSERT_GE(lines.size(), 3U);
  EXPECT_THAT(lines[0], StartsWith("SET 0300 0 de19a200"));
  EXPECT_THAT(lines[1], StartsWith("SET 0300 0 c40702"));
  EXPECT_THAT(lines[2], StartsWith("SET 0300 0 c40c02"));
  EXPECT_THAT(messagesSeen, Each(0U));
  ASSERT_THAT(messages(), ElementsAre("111"));
  EXPECT_EQ(posts().back().name, "NerinSettingChange");
  EXPECT_EQ(posts().back().userInfo, (LXUserInfo{{"value1", 1}, {"value2", 2}}));
  EXPECT_FALSE(editState->isHaveNewName());
}

TEST_F(Transfer, AStartWritesTheModeAndNothingElse) {
  start();
  const auto zone = StartsWith("SET 0300 0 c40f");
  EXPECT_THAT(writes(), ElementsAre(zone, zone, zone, zone, StartsWith("SET 0300 0 c403")));
  EXPECT_FALSE(hasSent("de19"));
  EXPECT_FALSE(hasSent("c407"));
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(Transfer, FillingABattleProfileWritesItsMode) {
  start();
  click("battleModeBtn");
  click("applyBtn");
  chooseSlot(2);
  EXPECT_TRUE(button("normalModeBtn").isChecked());
  m_asked.clear();
  clearTrace();
  chooseSlot(1);
  EXPECT_THAT(m_asked, IsEmpty());
  EXPECT_TRUE(button("battleModeBtn").isChecked());
  EXPECT_EQ(editState->currSetProfile().modeType, 1U);
  const auto withMode = writes().size();
  EXPECT_FALSE(editState->isNeedSave());
  chooseSlot(2);
  chooseSlot(3);
  clearTrace();
  chooseSlot(4);
  // The mode is the same, so only the two commands of the slot change are written.
  EXPECT_EQ(writes().size(), 2U);
  EXPECT_EQ(withMode, 2U + 5U);
}

TEST_F(Transfer, ASlotThatCannotBeReadKeepsWhatIsShown) {
  start();
  const QString caption = button("rightBtn").title();
  const std::string name = shownName();
  editState->edit().poRate = 3;
  editState->clearNeedSave();
  mouse().clearSlot(6);
  m_answer = true;
  chooseSlot(7);
  EXPECT_EQ(library().currFWProfileIndex(), 6);
  EXPECT_EQ(shownName(), name);
  EXPECT_EQ(button("rightBtn").title(), caption);
  EXPECT_EQ(editState->selProfile().poRate, 3U);
  EXPECT_THAT(messages(), ElementsAre("111"));
}

TEST_F(Transfer, AMouseThatAnswersNonsenseStopsNothing) {
  start();
  for (const auto kind : {MouseScenario::Kind::AnswersShort, MouseScenario::Kind::AnswersRandom,
                          MouseScenario::Kind::HoldsGarbage, MouseScenario::Kind::Absent}) {
    MouseScenario scenario;
    scenario.kind = kind;
    mouse().setScenario(scenario);
    for (int slot = 1; slot <= 10; ++slot) {
      chooseSlot(slot);
      EXPECT_EQ(library().currFWProfileIndex(), slot - 1);
    }
    click("profileNewBtn");
    click("applyBtn");
    // What a mouse that is gone did not take is still to be applied.
    EXPECT_EQ(editState->isNeedSave(), kind == MouseScenario::Kind::Absent);
    EXPECT_EQ(button("applyBtn").isEnabled(), kind == MouseScenario::Kind::Absent);
  }
}

TEST_F(Transfer, EveryTransferOfEveryWindowHasTheWaitCursor) {
  start();
  int transfers = 0;
  int unseen = 0;
  const auto mouse = *NerinAction::sysDeviceReq;
  *NerinAction::sysDeviceReq = std::make_shared<ObservedDeviceRequester>(
      mouse, ObservedDeviceRequester::Observer{
                 [&](const LXDeviceRequest&) {
                   const QCursor* cursor = QApplication::overrideCursor();
                   ++transfers;
                   unseen += cursor == nullptr || cursor->shape() != Qt::WaitCursor ? 1 : 0;
                 },
                 nullptr});
  for (const char* opener : {"preformanceBtn", "lightOptionBtn", "WhellBtn"}) {
    click(opener);
    ASSERT_NE(child(), nullptr) << opener;
    for (const char* end : {"applyBtn", "cancelBtn"}) {
      child()->findChild<LXButton*>(QString::fromLatin1(end))->click();
    }
    process();
  }
  click("battleModeBtn");
  click("profile3Btn");
  click("profileNewBtn");
  click("applyBtn");
  EXPECT_GT(transfers, 30);
  EXPECT_EQ(unseen, 0);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  *NerinAction::sysDeviceReq = mouse;
}
