// The window watches the mouse by itself, and says why it cannot be used.

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QTest>

#include <gmock/gmock.h>

#include "Action/Texts/TooltipManager.h"
#include "Kit/Core/LXPlatform.h"
#include "Tests/Support/ViewTest.h"
#include "View/Windows/PopDialogView.h"
#include "View/Windows/Termination.h"
#include "VirtualMouse/VirtualDeviceRequester.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

class MainViewWatch : public ViewTest {
 protected:
  // The window looks by itself whenever this mouse comes or goes.
  void watchTheMouse() {
    LXPlatform platform = LXPlatform::current();
    platform.watchPresence = [this](std::function<void()> whenChanged) {
      mouse().setPresenceObserver(std::move(whenChanged));
      return std::shared_ptr<void>(&mouse(), [this](void*) { mouse().setPresenceObserver({}); });
    };
    LXPlatform::install(platform);
  }
};

// A mouse that is there or not for a reason that the test chooses.
class ReasonedRequester final : public LXDeviceRequester {
 public:
  explicit ReasonedRequester(std::shared_ptr<VirtualMouse> mouse) : m_mouse(std::move(mouse)) {}

  void setIsPrintMsg(bool) override {}
  void listenDevWithVid(std::uint16_t vid, std::uint16_t pid) override {
    m_mouse.listenDevWithVid(vid, pid);
  }
  bool isDevOn() override {
    ++looks;
    return reason == LXDeviceAbsence::None && m_mouse.isDevOn();
  }
  LXDeviceAbsence absence() override { return reason; }
  std::uint64_t connection() const override { return opened; }
  Claim claim(std::chrono::milliseconds, std::error_code& error) override {
    error = isTaken ? std::make_error_code(std::errc::device_or_resource_busy) : std::error_code();
    return nullptr;
  }
  bool sendDeviceRequest(LXDeviceRequest& request) override {
    ++transfers;
    if (isSilent) {
      request.error = std::make_error_code(std::errc::timed_out);
      return false;
    }
    return isDevOn() && m_mouse.sendDeviceRequest(request);
  }
  void resetCurrDevice() override {}

  LXDeviceAbsence reason = LXDeviceAbsence::None;
  bool isTaken = false;
  bool isSilent = false;
  int transfers = 0;
  int looks = 0;
  std::uint64_t opened = 1;

 private:
  VirtualDeviceRequester m_mouse;
};

class MainViewAbsence : public MainViewWatch {
 protected:
  void SetUp() override {
    requester = std::make_shared<ReasonedRequester>(sharedMouse());
    LXPlatform platform = LXPlatform::current();
    platform.deviceRequester = requester;
    LXPlatform::install(platform);
  }

  // Acts on the next dialog that is shown, after it has followed the reason.
  static void whenShown(std::function<void(PopDialogView&)> act) {
    onDialog([act = std::move(act)](LXNoTitleWindow&, PopDialogView& dialog) { act(dialog); });
  }

  std::shared_ptr<ReasonedRequester> requester;
};

}  // namespace

TEST_F(MainViewWatch, TheWindowSeesTheMouseGoWithoutTheService) {
  watchTheMouse();
  start();
  m_answer = false;
  mouse().detach();
  EXPECT_TRUE(view().isOutPlus());
  process();
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningNoDevice", true)));
  EXPECT_TRUE(termination::isTerminating());
}

TEST_F(MainViewWatch, TheMouseThatComesBackIsReadWithoutTheService) {
  watchTheMouse();
  start();
  m_duringQuestion = [this] {
    mouse().attach();
    mouse().pressSlotButton(3);
  };
  mouse().detach();
  process();
  EXPECT_THAT(m_asked, testing::SizeIs(1));
  EXPECT_FALSE(termination::isTerminating());
  EXPECT_FALSE(view().isOutPlus());
  EXPECT_TRUE(button("profile4Btn").isChecked());
  // The next removal is seen, too.
  m_duringQuestion = {};
  m_answer = false;
  mouse().detach();
  process();
  EXPECT_THAT(m_asked, testing::SizeIs(2));
}

TEST_F(MainViewWatch, AReportOfTheServiceOfWhatTheWindowSawChangesNothing) {
  watchTheMouse();
  start();
  m_duringQuestion = [this] {
    view().devReportPro({{"type", 100}, {"value", 0}});
    mouse().attach();
    view().devReportPro({{"type", 101}, {"value", 0}});
  };
  mouse().detach();
  process();
  EXPECT_THAT(m_asked, testing::SizeIs(1));
  clearTrace();
  // The service is late.
  report(100);
  report(101);
  EXPECT_THAT(m_asked, testing::SizeIs(1));
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_FALSE(view().isOutPlus());
  EXPECT_TRUE(view().isDevOnTag());
  EXPECT_FALSE(termination::isTerminating());
}

TEST_F(MainViewWatch, AMouseThatCameBackUnderAPanelIsReadWithoutAQuestion) {
  watchTheMouse();
  start();
  m_duringPanel = [this] {
    mouse().detach();
    mouse().attach();
    mouse().pressSlotButton(5);
    process();
  };
  click("linkProBtn");
  process();
  EXPECT_THAT(m_asked, IsEmpty());
  EXPECT_TRUE(button("profile6Btn").isChecked());
}

TEST_F(MainViewWatch, OkLooksForTheMouseBeforeItQuits) {
  start();
  mouse().detach();
  // Nobody tells that the mouse is back.
  m_duringQuestion = [this] { mouse().attach(); };
  report(100);
  EXPECT_FALSE(termination::isTerminating());
  EXPECT_TRUE(button("profile1Btn").isChecked());
}

TEST_F(MainViewWatch, TheQuestionEndsByItselfWhenTheMouseIsThere) {
  start();
  mouse().detach();
  onDialog([this](LXNoTitleWindow&, PopDialogView&) { mouse().attach(); });
  view().checkDevPro();
  EXPECT_FALSE(termination::isTerminating());
  EXPECT_TRUE(button("profile1Btn").isChecked());
  EXPECT_FALSE(view().isOutPlus());
}

TEST_F(MainViewAbsence, TheQuestionNamesTheReasonAndFollowsIt) {
  struct Case {
    LXDeviceAbsence reason;
    const char* words;
    bool hasLink;
  };
  constexpr Case cases[] = {
      {LXDeviceAbsence::NotFound, "WarningNoDevice", false},
      {LXDeviceAbsence::NoPermission, "WarningNoPermission", true},
      {LXDeviceAbsence::NeedsReplug, "WarningNeedsReplug", false},
      {LXDeviceAbsence::InUse, "WarningMouseInUse", false},
  };
  requester->reason = LXDeviceAbsence::NotFound;
  int shown = 0;
  whenShown([&](PopDialogView& dialog) {
    for (const Case& each : cases) {
      requester->reason = each.reason;
      const QString words =
          QString::fromStdString(*TooltipManager::shareTooltipManager().getTooltip(each.words));
      const auto isShown = [&] { return dialog.accessibleName() == words; };
      EXPECT_TRUE(QTest::qWaitFor(isShown, 3000)) << each.words;
      EXPECT_EQ(dialog.linkLbl() != nullptr, each.hasLink) << each.words;
      EXPECT_EQ(dialog.window()->accessibleName(), words);
      ++shown;
    }
    requester->reason = LXDeviceAbsence::None;
  });
  start();
  EXPECT_EQ(shown, 4);
  EXPECT_FALSE(termination::isTerminating());
  EXPECT_TRUE(button("profile1Btn").isChecked());
}

TEST_F(MainViewAbsence, TheQuestionSleepsUntilItIsToldOfAMouse) {
  std::function<void()> tell;
  LXPlatform platform = LXPlatform::current();
  platform.watchPresence = [&tell](std::function<void()> whenChanged) {
    tell = std::move(whenChanged);
    return std::make_shared<int>();
  };
  LXPlatform::install(platform);
  requester->reason = LXDeviceAbsence::NotFound;
  bool wasShown = false;
  whenShown([&](PopDialogView& dialog) {
    requester->looks = 0;
    QTest::qWait(1200);
    EXPECT_EQ(requester->looks, 0);
    requester->reason = LXDeviceAbsence::NoPermission;
    tell();
    EXPECT_EQ(dialog.accessibleName().toStdString(),
              *TooltipManager::shareTooltipManager().getTooltip("WarningNoPermission"));
    // Nobody tells of the permission.
    requester->reason = LXDeviceAbsence::None;
    wasShown = true;
  });
  start();
  EXPECT_TRUE(wasShown);
  EXPECT_FALSE(termination::isTerminating());
  EXPECT_TRUE(button("profile1Btn").isChecked());
}

TEST_F(MainViewAbsence, TheRuleCanBeCopied) {
  requester->reason = LXDeviceAbsence::NoPermission;
  QString copied;
  whenShown([&](PopDialogView& dialog) {
    ASSERT_NE(dialog.linkLbl(), nullptr);
    emit dialog.linkLbl()->linkActivated(QStringLiteral("#"));
    copied = QGuiApplication::clipboard()->text();
    dialog.cancelBtn()->click();
  });
  start();
  EXPECT_THAT(copied.toStdString(), testing::HasSubstr("TAG+=\"uaccess\""));
  EXPECT_TRUE(termination::isTerminating());
}

TEST_F(MainViewAbsence, AStartAtASilentMouseAsksItOnceAndAgainOnOk) {
  requester->isSilent = true;
  std::vector<std::string> shown;
  std::vector<int> transfers;
  whenShown([&](PopDialogView& dialog) {
    shown.push_back(dialog.accessibleName().toStdString());
    transfers.push_back(requester->transfers);
    requester->isSilent = false;
    QTest::qWait(500);
    // A silent mouse is not asked while nobody wants it: that would block for seconds.
    transfers.push_back(requester->transfers);
    dialog.okBtn()->click();
  });
  start();
  EXPECT_THAT(shown, ElementsAre("The mouse does not answer"));
  EXPECT_THAT(transfers, ElementsAre(1, 1));
  EXPECT_FALSE(termination::isTerminating());
  EXPECT_TRUE(button("profile1Btn").isChecked());
  EXPECT_THAT(m_shown, IsEmpty());
}

TEST_F(MainViewAbsence, ASilentMouseThatIsPluggedInAnewEndsTheQuestion) {
  requester->isSilent = true;
  whenShown([&](PopDialogView&) {
    requester->isSilent = false;
    QTest::qWait(300);
    ++requester->opened;
  });
  start();
  EXPECT_FALSE(termination::isTerminating());
  EXPECT_TRUE(button("profile1Btn").isChecked());
}

TEST_F(MainViewAbsence, AStartGoesOnWhenTheOtherProgramLetsGo) {
  requester->isTaken = true;
  std::vector<std::string> shown;
  whenShown([&](PopDialogView& dialog) {
    shown.push_back(dialog.accessibleName().toStdString());
    requester->isTaken = false;
  });
  start();
  EXPECT_THAT(shown, ElementsAre("Another program is using the mouse"));
  EXPECT_FALSE(termination::isTerminating());
  EXPECT_TRUE(button("profile1Btn").isChecked());
  EXPECT_EQ(shownName(), mouse().slotName(0));
}
