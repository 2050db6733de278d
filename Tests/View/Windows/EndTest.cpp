// Ending the program at any time: afterwards it sends nothing and does nothing that the user has
// not confirmed.

#include <QApplication>
#include <QTimer>

#include <gmock/gmock.h>

#include "App/AppDelegate.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Widgets/LXMenulist.h"
#include "Tests/Support/ViewTest.h"
#include "View/Windows/PopDialogView.h"
#include "View/Windows/Termination.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

// Records the posts and its own end.
class PassingCenter final : public LXNotificationCenter {
 public:
  explicit PassingCenter(std::vector<std::string>& log) : m_log(log) {}
  ~PassingCenter() override { m_log.emplace_back("flushed and gone"); }
  void postNotificationName(const std::string&, const std::string& object,
                            const std::optional<LXUserInfo>&) override {
    m_log.push_back("post " + object);
  }
  void addObserver(const std::string&, Observer) override {}
  void removeObserver(const std::string&) override {}

 private:
  std::vector<std::string>& m_log;
};

class End : public ViewTest {
 protected:
  void useCenter(std::vector<std::string>& log) {
    LXPlatform platform = LXPlatform::current();
    platform.notificationCenter = std::make_shared<PassingCenter>(log);
    LXPlatform::install(platform);
  }
  void endInQuestion() {
    m_duringQuestion = [this] {
      termination::terminate();
      clearTrace();
    };
  }
  void endInPanel() {
    m_duringPanel = [this] {
      termination::terminate();
      clearTrace();
    };
  }
  void expectNothingSent() {
    process();
    EXPECT_TRUE(termination::isTerminating());
    EXPECT_THAT(transfers(), IsEmpty());
    EXPECT_THAT(messages(), IsEmpty());
  }
  // The trace without pauses.
  std::vector<std::string> transfers() const {
    std::vector<std::string> lines = trace();
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("SLEEP"); });
    return lines;
  }
};

}  // namespace

TEST_F(End, InTheStartDialogSendsNothing) {
  mouse().detach();
  onDialog([this](LXNoTitleWindow&, PopDialogView&) {
    termination::terminate();
    clearTrace();
  });
  start();
  expectNothingSent();
}

TEST_F(End, BeforeTheMainLoopNeverEntersIt) {
  mouse().detach();
  m_answer = false;
  AppDelegate delegate;
  EXPECT_EQ(runApplication(delegate), 0);
  EXPECT_THAT(m_asked, SizeIs(1));
  EXPECT_TRUE(termination::isTerminating());
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(End, WhileTheWindowComesUpNeverEntersTheMainLoop) {
  QTimer::singleShot(0, qApp, [] { termination::terminate(); });
  AppDelegate delegate;
  EXPECT_EQ(runApplication(delegate), 0);
  EXPECT_TRUE(termination::isTerminating());
  EXPECT_THAT(sent(), IsEmpty());
  EXPECT_THAT(m_asked, IsEmpty());
}

TEST_F(End, InTheMainLoopLeavesIt) {
  start();
  QTimer::singleShot(0, qApp, [] { MainView::cancelPro(); });
  EXPECT_EQ(QApplication::exec(), 0);
  EXPECT_TRUE(termination::isTerminating());
}

TEST_F(End, InADialogOfTheMainLoopLeavesBoth) {
  start();
  bool answer = true;
  QTimer::singleShot(0, qApp, [&] {
    onDialog([](LXNoTitleWindow&, PopDialogView&) { termination::terminate(); });
    answer = NerinAction::showPopView("WarningReset", true);
  });
  EXPECT_EQ(QApplication::exec(), 0);
  EXPECT_FALSE(answer);
}

TEST_F(End, InTheQuestionOfASlotChangeAppliesNothing) {
  start();
  click("profileNewBtn");
  endInQuestion();
  chooseSlot(2);
  expectNothingSent();
  EXPECT_EQ(mouse().slotName(0), "Profile#1");
  EXPECT_EQ(library().currFWProfileIndex(), 0);
  EXPECT_EQ(library().getProfileCount(), 0U);
}

TEST_F(End, InTheShownQuestionOfASlotChangeAppliesNothing) {
  start();
  click("profileNewBtn");
  onDialog([this](LXNoTitleWindow&, PopDialogView&) {
    termination::terminate();
    clearTrace();
  });
  chooseSlot(2);
  expectNothingSent();
  EXPECT_EQ(library().currFWProfileIndex(), 0);
}

TEST_F(End, InTheQuestionOfResetResetsNothing) {
  start();
  endInQuestion();
  click("reDefBtn");
  expectNothingSent();
  EXPECT_EQ(library().getProfileCount(), 0U);
}

TEST_F(End, InTheWarningOfBattleModeLeavesTheMode) {
  start();
  endInQuestion();
  click("battleModeBtn");
  expectNothingSent();
  EXPECT_EQ(editState->selProfile().modeType, 0U);
  EXPECT_TRUE(button("normalModeBtn").isChecked());
}

TEST_F(End, InTheWarningOfTheLastPrimaryClickOpensNothing) {
  start();
  endInQuestion();
  click("leftClickBtn");
  expectNothingSent();
  EXPECT_EQ(child(), nullptr);
}

TEST_F(End, InAFilePanelUsesNoFile) {
  start();
  m_chosen = "/bin/true";
  endInPanel();
  click("linkProBtn");
  expectNothingSent();
  EXPECT_FALSE(editState->isNeedSave());
  EXPECT_FALSE(library().currActivePath().has_value());
}

TEST_F(End, InTheExportPanelWritesNoFile) {
  start();
  click("profileNewBtn");
  typeName("Office");
  m_chosen = home() / "Office";
  endInPanel();
  click("profileExportBtn");
  expectNothingSent();
  EXPECT_FALSE(std::filesystem::exists(home() / "Office.pro"));
}

TEST_F(End, InTheImportPanelAddsNothing) {
  start();
  writeText(home() / "C.pro", profileBytes(30, "C"));
  m_chosen = home() / "C.pro";
  endInPanel();
  click("profileImportBtn");
  expectNothingSent();
  EXPECT_EQ(library().getProfileCount(), 0U);
}

TEST_F(End, InTheRemovalQuestionDoesNotReadTheMouseAgain) {
  start();
  m_duringQuestion = [this] {
    view().devReportPro({{"type", 101}});
    termination::terminate();
    clearTrace();
  };
  report(100);
  expectNothingSent();
}

TEST_F(End, OfOkPostsTheMessageBeforeTheBusGoes) {
  std::vector<std::string> log;
  start();
  click("profileNewBtn");
  useCenter(log);
  click("okBtn");
  EXPECT_THAT(log, ElementsAre("post 101", "flushed and gone"));
}

TEST_F(End, UnderAChildPostsTheRelaunchBeforeTheBusGoes) {
  std::vector<std::string> log;
  start();
  click("MacroSettingBtn");
  useCenter(log);
  report(100);
  EXPECT_THAT(log, ElementsAre("post 121", "flushed and gone"));
}

TEST_F(End, AfterItNoControlAndNoReportReachesTheMouse) {
  start();
  click("profileNewBtn");
  termination::terminate();
  clearTrace();
  for (const char* name : {"profile5Btn", "battleModeBtn", "applyBtn", "okBtn", "reDefBtn"}) {
    click(name);
  }
  typeName("Office");
  menuItem("osdMenu").trigger();
  for (const std::int32_t type : {1, 2, 100, 101}) {
    report(type, 3);
  }
  expectNothingSent();
  EXPECT_EQ(mouse().slotName(0), "Profile#1");
}

TEST_F(End, EndsOnce) {
  std::vector<std::string> log;
  start();
  useCenter(log);
  termination::terminate();
  termination::terminate();
  EXPECT_THAT(log, ElementsAre("flushed and gone"));
}

TEST_F(End, NoMessageIsShownAfterIt) {
  start();
  termination::terminate();
  EXPECT_FALSE(NerinAction::showPopView("WarningReset", true));
  EXPECT_TRUE(NerinAction::showPopView("WarningNoItem", false));
  EXPECT_THAT(m_asked, IsEmpty());
}
