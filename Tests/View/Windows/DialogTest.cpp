// The messages with pictures, and the plain message boxes.

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>

#include "Action/Texts/TooltipManager.h"
#include "App/RealPlatform.h"
#include "Kit/Widgets/LXTextField.h"
#include "Tests/Support/ViewTest.h"
#include "View/Screen/ControlFactory.h"
#include "View/Windows/LocalNotifications.h"
#include "View/Windows/NestedLoop.h"
#include "View/Windows/PlainMessage.h"
#include "View/Windows/PopDialogView.h"
#include "View/Windows/Termination.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Dialog : public ViewTest {
 protected:
  void SetUp() override { start(); }

  static bool answer(bool isChoose, std::function<void(LXNoTitleWindow&, PopDialogView&)> act) {
    onDialog(std::move(act));
    return NerinAction::showPopView(isChoose ? "WarningReset" : "WarningNoItem", isChoose);
  }
  // Calls `act` with the next message box.
  static void onBox(std::function<void(QMessageBox&)> act) {
    QTimer::singleShot(0, qApp, [act = std::move(act)] {
      for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* box = qobject_cast<QMessageBox*>(widget); box != nullptr && box->isVisible()) {
          act(*box);
          return;
        }
      }
    });
  }
};

constexpr auto pressOk = [](LXNoTitleWindow&, PopDialogView& dialog) { dialog.okBtn()->click(); };

}  // namespace

TEST_F(Dialog, OkAndCancelAnswerAQuestion) {
  EXPECT_TRUE(answer(true, pressOk));
  EXPECT_FALSE(
      answer(true, [](LXNoTitleWindow&, PopDialogView& dialog) { dialog.cancelBtn()->click(); }));
}

TEST_F(Dialog, ReturnIsOkAndEscapeIsCancel) {
  const auto key = [](Qt::Key one) {
    return [one](LXNoTitleWindow&, PopDialogView& dialog) {
      EXPECT_EQ(dialog.window()->focusWidget(), dialog.okBtn());
      QTest::keyClick(dialog.okBtn(), one);
    };
  };
  EXPECT_TRUE(answer(true, key(Qt::Key_Return)));
  EXPECT_TRUE(answer(true, key(Qt::Key_Enter)));
  EXPECT_TRUE(answer(true, key(Qt::Key_Space)));
  EXPECT_FALSE(answer(true, key(Qt::Key_Escape)));
}

TEST_F(Dialog, TheKeysWorkWhereverTheFocusIs) {
  const auto key = [](Qt::Key one) {
    return [one](LXNoTitleWindow&, PopDialogView& dialog) { QTest::keyClick(&dialog, one); };
  };
  EXPECT_TRUE(answer(true, key(Qt::Key_Return)));
  EXPECT_FALSE(answer(true, key(Qt::Key_Escape)));
}

TEST_F(Dialog, ClosingAQuestionIsCancel) {
  EXPECT_FALSE(answer(true, [](LXNoTitleWindow& window, PopDialogView&) { window.close(); }));
}

TEST_F(Dialog, AMessageWithoutAChoiceIsOkHoweverItEnds) {
  EXPECT_TRUE(answer(false, pressOk));
  EXPECT_TRUE(answer(false, [](LXNoTitleWindow& window, PopDialogView&) { window.close(); }));
  EXPECT_TRUE(answer(false, [](LXNoTitleWindow&, PopDialogView& dialog) {
    QTest::keyClick(dialog.okBtn(), Qt::Key_Escape);
  }));
}

TEST_F(Dialog, IsASmallWindowOverTheMainOne) {
  answer(true, [this](LXNoTitleWindow& shown, PopDialogView& dialog) {
    EXPECT_EQ(shown.size(), QSize(545, 155));
    EXPECT_TRUE(shown.isInDragStrip({5, 49}));
    EXPECT_FALSE(shown.isInDragStrip({5, 50}));
    EXPECT_EQ(shown.frameGeometry().center(), window().frameGeometry().center());
    EXPECT_EQ(shown.accessibleName(), dialog.accessibleName());
    dialog.okBtn()->click();
  });
}

TEST_F(Dialog, NothingElseOfTheProgramReacts) {
  clearTrace();
  answer(true, [this](LXNoTitleWindow&, PopDialogView& dialog) {
    clickThroughWindow(button("profileNewBtn"));
    clickThroughWindow(button("profile3Btn"));
    clickThroughWindow(button("closeBtn"));
    dialog.okBtn()->click();
  });
  EXPECT_FALSE(editState->isNeedSave());
  EXPECT_EQ(library().currFWProfileIndex(), 0);
  EXPECT_FALSE(termination::isTerminating());
  EXPECT_THAT(trace(), IsEmpty());
  clickThroughWindow(button("profileNewBtn"));
  EXPECT_TRUE(editState->isNeedSave());
}

TEST_F(Dialog, HasItsPicturesAndItsButtons) {
  for (const char* key : {"WarningNoDevice", "WarningNeedSave", "WarningReset", "WarningBattle",
                          "WarningNeedLeft", "WarningNoItem"}) {
    PopDialogView question({545, 155}, key, std::nullopt, true);
    question.construct();
    EXPECT_EQ(question.bgImage().size(), QSize(545, 155)) << key;
    for (const LXImage* state :
         {&question.overImage(), &question.downImage(), &question.disableImage()}) {
      EXPECT_FALSE(state->isNull()) << key;
    }
    EXPECT_FALSE(question.accessibleName().isEmpty()) << key;
    EXPECT_EQ(question.okBtn()->tag(), 6000);
    EXPECT_EQ(question.okBtn()->objectName(), QStringLiteral("okBtn"));
    EXPECT_FALSE(question.okBtn()->toolTip().isEmpty());
    ASSERT_NE(question.cancelBtn(), nullptr);
    EXPECT_EQ(question.cancelBtn()->tag(), 6001);
    EXPECT_NE(question.cancelBtn()->toolTip(), question.okBtn()->toolTip());
    PopDialogView notice({545, 155}, key, std::nullopt, false);
    notice.construct();
    EXPECT_EQ(notice.cancelBtn(), nullptr);
  }
}

TEST_F(Dialog, ShowsTheTextThatItWasGiven) {
  PopDialogView notice({545, 155}, "WarningNoItem", "Slot 3", false);
  notice.construct();
  EXPECT_EQ(notice.inPutTxt()->text(), QStringLiteral("Slot 3"));
  EXPECT_TRUE(notice.inPutTxt()->isReadOnly());
  EXPECT_EQ(notice.accessibleName(), QStringLiteral("No profile is selected"));
  EXPECT_EQ(notice.accessibleDescription(), QStringLiteral("Select a profile first"));
  PopDialogView silent({545, 155}, "WarningNoItem", std::nullopt, false);
  silent.construct();
  EXPECT_EQ(silent.inPutTxt()->text(), QString());
}

TEST_F(Dialog, ItsControlsCanBeMovedAndAdded) {
  PopDialogView notice({545, 155}, "WarningNoItem", std::nullopt, false);
  notice.construct();
  notice.setTextRect({1, 2, 30, 40});
  notice.setOkBtnRect({5, 6, 70, 80});
  notice.setCancelBtnRect({9, 10, 11, 12});
  EXPECT_EQ(notice.inPutTxt()->geometry(), QRect(1, 2, 30, 40));
  EXPECT_EQ(notice.okBtn()->geometry(), QRect(5, 6, 70, 80));
  EXPECT_EQ(notice.cancelBtn(), nullptr);
  notice.addCancelBtnByRect({100, 100, 50, 20});
  ASSERT_NE(notice.cancelBtn(), nullptr);
  EXPECT_EQ(notice.cancelBtn()->geometry(), QRect(100, 100, 50, 20));
  notice.setCancelBtnRect({9, 10, 11, 12});
  EXPECT_EQ(notice.cancelBtn()->geometry(), QRect(9, 10, 11, 12));
  notice.addOkBtnByRect({200, 100, 50, 20});
  EXPECT_EQ(notice.okBtn()->geometry(), QRect(200, 100, 50, 20));
}

TEST_F(Dialog, AnotherTagEndsNothing) {
  PopDialogView notice({545, 155}, "WarningNoItem", std::nullopt, true);
  notice.construct();
  std::vector<int> codes;
  QObject::connect(&notice, &PopDialogView::ended, &notice,
                   [&](int code) { codes.push_back(code); });
  LXButton other;
  other.setTag(6002);
  notice.buttonAction(other);
  EXPECT_THAT(codes, IsEmpty());
  notice.okBtn()->click();
  notice.cancelBtn()->click();
  EXPECT_THAT(codes, ElementsAre(1, 0));
}

TEST_F(Dialog, TheEndOfAChildIsPostedWithTypeAndValue) {
  struct Post {
    QString name;
    std::optional<int> type;
    std::optional<QString> value;
    bool operator==(const Post&) const = default;
  };
  std::vector<Post> posted;
  const auto connection = QObject::connect(
      &LocalNotifications::shared(), &LocalNotifications::posted, qApp,
      [&](const QString& name, std::optional<int> type, std::optional<QString> value) {
        posted.push_back({name, type, std::move(value)});
      });
  NerinAction::sendFinishWinMsg(1, QStringLiteral("kept"));
  NerinAction::sendFinishWinMsg(0, std::nullopt);
  QObject::disconnect(connection);
  const QString name = QStringLiteral("Notify_CloseWindow_Event");
  EXPECT_EQ(posted, (std::vector<Post>{{name, 1, QStringLiteral("kept")}, {name, 0, {}}}));
}

TEST_F(Dialog, APlainMessageShowsItsTextAndWaits) {
  const LXPlatform real = realPlatform(nullptr, nullptr);
  bool wasShown = false;
  onBox([&](QMessageBox& box) {
    wasShown = true;
    EXPECT_EQ(box.text(), QStringLiteral("Profile data destruction"));
    EXPECT_EQ(box.standardButtons(), QMessageBox::Ok);
    EXPECT_TRUE(NestedLoop::isRunning());
    box.button(QMessageBox::Ok)->click();
  });
  real.showInfoMessage("Profile data destruction");
  EXPECT_TRUE(wasShown);
  EXPECT_FALSE(NestedLoop::isRunning());
}

TEST_F(Dialog, APlainMessageHasTheButtonsOfTheProgramsDialogs) {
  auto& texts = TooltipManager::shareTooltipManager();
  for (const char* language : {"US", "German", "Greek"}) {
    texts.setLanByname(language);
    QStringList captions;
    onBox([&](QMessageBox& box) {
      captions = {box.button(QMessageBox::Ok)->text(), box.button(QMessageBox::Cancel)->text()};
      box.reject();
    });
    EXPECT_FALSE(plainmessage::ask("?"));
    EXPECT_EQ(captions,
              (QStringList{NerinAction::tooltipText("OK"), NerinAction::tooltipText("Cancel")}));
  }
  texts.setLanByname("US");
}

TEST_F(Dialog, APlainMessageBelongsToTheProgramsWindowWhoeverIsActive) {
  LXNoTitleWindow window({300, 200}, nullptr);
  window.show();
  process();
  QWidget other;
  other.show();
  other.activateWindow();
  process();
  const QWidget* parent = nullptr;
  onBox([&](QMessageBox& box) {
    parent = box.parentWidget();
    box.button(QMessageBox::Ok)->click();
  });
  realPlatform(nullptr, nullptr).showInfoMessage("Profile data destruction");
  EXPECT_NE(qobject_cast<const LXNoTitleWindow*>(parent), nullptr);
}

TEST_F(Dialog, APlainQuestionIsAnsweredByItsButtons) {
  const LXPlatform real = realPlatform(nullptr, nullptr);
  onBox([](QMessageBox& box) { box.button(QMessageBox::Ok)->click(); });
  EXPECT_TRUE(real.chooseInfoMessage("Replace it?"));
  onBox([](QMessageBox& box) { box.button(QMessageBox::Cancel)->click(); });
  EXPECT_FALSE(real.chooseInfoMessage("Replace it?"));
  onBox([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); });
  EXPECT_FALSE(real.chooseInfoMessage("Replace it?"));
}

// A key that was pressed before the window opened and is still down.
void holdKey(QWidget& widget, Qt::Key key) {
  for (int i = 0; i < 3; ++i) {
    QKeyEvent repeat(QEvent::KeyPress, key, Qt::NoModifier, QString(), true);
    QApplication::sendEvent(&widget, &repeat);
  }
}

TEST_F(Dialog, AKeyThatIsHeldAnswersNoQuestion) {
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape, Qt::Key_Space}) {
    bool isOpen = false;
    EXPECT_FALSE(answer(true, [&](LXNoTitleWindow& window, PopDialogView& dialog) {
      holdKey(*dialog.okBtn(), key);
      holdKey(dialog, key);
      isOpen = window.isVisible();
      dialog.cancelBtn()->click();
    }));
    EXPECT_TRUE(isOpen) << key;
  }
}

TEST_F(Dialog, AKeyThatIsHeldEndsNoPlainMessage) {
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
    bool isOpen = false;
    onBox([&](QMessageBox& box) {
      holdKey(*box.button(QMessageBox::Ok), key);
      holdKey(box, key);
      isOpen = box.isVisible();
      QTest::keyClick(box.button(QMessageBox::Ok), Qt::Key_Return);
      EXPECT_FALSE(box.isVisible());
    });
    realPlatform(nullptr, nullptr).showInfoMessage("Profile data destruction");
    EXPECT_TRUE(isOpen) << key;
  }
}
