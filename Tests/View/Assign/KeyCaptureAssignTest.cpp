// Assigning a captured key to a button.

#include <QTest>

#include <gmock/gmock.h>

#include "Kit/Widgets/LXMenulist.h"
#include "Tests/View/Assign/SingleKeyTest.h"
#include "View/Windows/LocalNotifications.h"

using testing::ElementsAre;

namespace {

class KeyCaptureAssign : public SingleKeyTest {};

}  // namespace

TEST_F(KeyCaptureAssign, AKeyIsStoredByItsMacCode) {
  openCapture();
  tap(KeyK);
  EXPECT_EQ(newKey(), "K");
  EXPECT_EQ(sub().selKeyCode(), 40);
  EXPECT_FALSE(saysThatItCannotBeSent());
  press("applyBtn");
  EXPECT_THAT(sent(), ElementsAre(buttonCommand(3, "02000e0000")));
  EXPECT_EQ(current(), "K");
  press("okBtn");
  EXPECT_TRUE(isSame(stored(), key(40)));
}

TEST_F(KeyCaptureAssign, ALaterKeyTakesThePlaceOfAnEarlierOne) {
  openCapture();
  tap(KeyK);
  down(KeyA);
  EXPECT_EQ(newKey(), "A");
  up(KeyA);
  EXPECT_EQ(sub().selKeyCode(), 0);
}

TEST_F(KeyCaptureAssign, ARepeatIsNoOtherKey) {
  openCapture();
  down(KeyA);
  down(KeyK);
  down(KeyA, true);
  EXPECT_EQ(newKey(), "K");
}

TEST_F(KeyCaptureAssign, EveryModifierIsCapturedWhenItGoesDownLeftAndRightApart) {
  struct Row {
    Key key;
    int code;
    const char* entry;
  };
  for (const Row& row : {Row{KeyLeftShift, 56, "0202000000"},
                         {KeyRightShift, 60, "0202000000"},
                         {KeyLeftCtrl, 59, "0208000000"},
                         {KeyRightCtrl, 62, "0208000000"},
                         {KeyLeftAlt, 58, "0204000000"},
                         {KeyRightAlt, 61, "0204000000"},
                         {KeyLeftSuper, 55, "0201000000"},
                         {KeyRightSuper, 54, "0201000000"},
                         {KeyCapsLock, 57, "0200390000"}}) {
    openCapture();
    clearTrace();
    down(row.key);
    EXPECT_EQ(sub().selKeyCode(), row.code);
    EXPECT_NE(newKey(), "");
    EXPECT_FALSE(saysThatItCannotBeSent()) << row.code;
    up(row.key);
    EXPECT_EQ(sub().selKeyCode(), row.code);
    press("applyBtn");
    EXPECT_THAT(sent(), ElementsAre(buttonCommand(3, row.entry))) << row.code;
  }
}

TEST_F(KeyCaptureAssign, AKeyWithAModifierHeldIsTheLastKeyPressed) {
  openCapture();
  down(KeyLeftCtrl);
  down(KeyK);
  up(KeyK);
  up(KeyLeftCtrl);
  EXPECT_EQ(sub().selKeyCode(), 40);
}

TEST_F(KeyCaptureAssign, AKeyThatTheMouseCannotSendIsShownWithANoteAndStored) {
  openCapture();
  tap(KeyEqual);
  EXPECT_EQ(newKey(), "=");
  EXPECT_TRUE(saysThatItCannotBeSent());
  EXPECT_EQ(textOf(display("noteTxt")), "The mouse cannot send this key");
  press("applyBtn");
  EXPECT_THAT(sent(), ElementsAre(buttonCommand(3, "0200000000")));
  press("okBtn");
  EXPECT_TRUE(isSame(stored(), key(24)));
  openPanel(3, stored());
  EXPECT_TRUE(saysThatItCannotBeSent());
  clickField();
  tap(KeyMute);
  EXPECT_TRUE(saysThatItCannotBeSent());
  EXPECT_EQ(sub().selKeyCode(), 74);
  tap(KeyA);
  EXPECT_FALSE(saysThatItCannotBeSent());
}

TEST_F(KeyCaptureAssign, TheNoteGoesWithTheChoiceOfTheKeyboard) {
  openCapture();
  tap(KeyEqual);
  clickThroughWindow(in("mouseFunChk"));
  EXPECT_FALSE(saysThatItCannotBeSent());
  clickThroughWindow(in("keybordChk"));
  EXPECT_TRUE(saysThatItCannotBeSent());
}

TEST_F(KeyCaptureAssign, WithoutACapturedKeyAllBitsAreStored) {
  openCapture();
  press("okBtn");
  EXPECT_EQ(stored().KeyBit[0], 0xFFFFFFFF);
  EXPECT_EQ(stored().FuncTableId, 2U);
  EXPECT_EQ(stored().FuncID, 2U);
  EXPECT_EQ(stored().MacroID, 2U);
  openPanel(3, stored());
  EXPECT_EQ(sub().selKeyCode(), -1);
  EXPECT_EQ(note(), "No key chosen: the button will do nothing");
  clearTrace();
  press("applyBtn");
  EXPECT_THAT(sent(), ElementsAre(buttonCommand(3, "0200000000")));
}

TEST_F(KeyCaptureAssign, TheStoredKeyStaysUntilAnotherIsCaptured) {
  openPanel(3, key(40));
  press("okBtn");
  EXPECT_TRUE(isSame(stored(), key(40)));
}

TEST_F(KeyCaptureAssign, EveryKeyBelongsToTheCapture) {
  openCapture();
  struct Row {
    Key key;
    Qt::Key meaning;
    int code;
  };
  for (const Row& row : {Row{KeyTab, Qt::Key_Tab, 48},
                         {KeySpace, Qt::Key_Space, 49},
                         {KeyReturn, Qt::Key_Return, 36},
                         {KeyEsc, Qt::Key_Escape, 53}}) {
    tap(row.key, row.meaning);
    EXPECT_EQ(sub().selKeyCode(), row.code);
    EXPECT_TRUE(sub().hasFocus()) << row.code;
    EXPECT_TRUE(isOpen()) << row.code;
  }
  tap(KeyTab, Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_TRUE(sub().hasFocus());
}

TEST_F(KeyCaptureAssign, NoShortcutTakesAKeyFromTheCapture) {
  openCapture();
  QKeyEvent event(QEvent::ShortcutOverride, Qt::Key_S, Qt::ControlModifier, 39, 0, 0);
  event.ignore();
  QApplication::sendEvent(&sub(), &event);
  EXPECT_TRUE(event.isAccepted());
}

TEST_F(KeyCaptureAssign, EscapeTwiceGivesTheKeyboardBackAndAThirdTimeCancels) {
  openCapture();
  tap(KeyEsc, Qt::Key_Escape);
  tap(KeyK);
  tap(KeyEsc, Qt::Key_Escape);
  EXPECT_TRUE(sub().hasFocus());
  tap(KeyEsc, Qt::Key_Escape);
  EXPECT_FALSE(sub().hasFocus());
  EXPECT_TRUE(in("keybordChk").hasFocus());
  EXPECT_EQ(sub().choice(), 2);
  EXPECT_EQ(newKey(), "K");
  EXPECT_EQ(sub().selKeyCode(), 40);
  EXPECT_TRUE(isOpen());
  hitKey(in("keybordChk"), Qt::Key_Escape);
  process();
  EXPECT_FALSE(isOpen());
}

TEST_F(KeyCaptureAssign, TheSecondEscapeMayBeHeld) {
  openCapture();
  tap(KeyEsc, Qt::Key_Escape);
  for (const bool isRepeat : {false, true, true}) {
    QKeyEvent event(QEvent::KeyPress, Qt::Key_Escape, {}, KeyEsc + 8, 0, 0, {}, isRepeat);
    QApplication::sendEvent(QApplication::focusWidget(), &event);
  }
  EXPECT_TRUE(isOpen());
  EXPECT_TRUE(sub().hasFocus());
  up(KeyEsc);
  EXPECT_TRUE(in("keybordChk").hasFocus());
  EXPECT_TRUE(isOpen());
}

TEST_F(KeyCaptureAssign, EscapeItselfIsKeptWhereNoKeyWas) {
  openCapture();
  tap(KeyEsc, Qt::Key_Escape);
  tap(KeyEsc, Qt::Key_Escape);
  EXPECT_FALSE(sub().hasFocus());
  EXPECT_EQ(sub().selKeyCode(), 53);
}

TEST_F(KeyCaptureAssign, TheKeyboardIsChosenWithTheArrowsToo) {
  openPanel(3, full(1, 1, 1));
  in("mouseFunChk").setFocus(Qt::TabFocusReason);
  hitKey(in("mouseFunChk"), Qt::Key_Right);
  EXPECT_TRUE(sub().hasFocus());
  tap(KeyK);
  EXPECT_EQ(newKey(), "K");
}

TEST_F(KeyCaptureAssign, OneOfTwoShiftKeysThatIsLetGoCountsAsGoingDown) {
  openCapture();
  down(KeyLeftShift);
  down(KeyRightShift);
  EXPECT_EQ(sub().selKeyCode(), 60);
  up(KeyLeftShift);
  EXPECT_EQ(sub().selKeyCode(), 56);
  up(KeyRightShift);
  EXPECT_EQ(sub().selKeyCode(), 56);
}

TEST_F(KeyCaptureAssign, AClickElsewhereGivesTheKeyboardBackAndAClickInsideTakesIt) {
  openCapture();
  tap(KeyK);
  QTest::mouseClick(host().windowHandle(), Qt::LeftButton, {}, QPoint(4, 4));
  EXPECT_FALSE(sub().hasFocus());
  EXPECT_EQ(sub().selKeyCode(), 40);
  const QPoint inside = sub().mapTo(&host(), display("newKeyEdt").geometry().center());
  QTest::mouseClick(host().windowHandle(), Qt::LeftButton, {}, inside);
  EXPECT_TRUE(sub().hasFocus());
  press("comSelBtn");
  openList()->hideMenulist();
  EXPECT_FALSE(sub().hasFocus());
}

TEST_F(KeyCaptureAssign, KeysGoTheirOrdinaryWayWhileAMouseFunctionIsChosen) {
  openPanel(3, full(1, 1, 1));
  in("mouseFunChk").setFocus();
  tap(KeyK);
  QKeyEvent event = nativeEvent(QEvent::KeyPress, KeyK);
  QApplication::sendEvent(&sub(), &event);
  EXPECT_EQ(sub().selKeyCode(), -1);
  EXPECT_EQ(newKey(), "");
  QTest::keyClick(&host(), Qt::Key_Escape);
  process();
  EXPECT_FALSE(isOpen());
}

TEST_F(KeyCaptureAssign, OpeningCapturesNothing) {
  openPanel(3, key(40));
  EXPECT_EQ(sub().choice(), 2);
  EXPECT_TRUE(sub().hasFocus());
  EXPECT_FALSE(sub().isCapturing());
  EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
  tap(KeyA);
  EXPECT_EQ(sub().selKeyCode(), 40);
  hitKey(sub(), Qt::Key_Escape);
  process();
  EXPECT_FALSE(isOpen());
  openPanel(3, button(255, {}, 6));
  chooseType("Mouse or Key Function");
  EXPECT_FALSE(sub().isCapturing());
}

TEST_F(KeyCaptureAssign, TheKeyboardAndTheFieldStartItByPointerAndByKey) {
  const std::function<void()> starts[] = {
      [this] { clickField(); }, [this] { clickThroughWindow(in("keybordChk")); },
      [] { tap(KeyReturn, Qt::Key_Return); }, [] { tap(KeySpace, Qt::Key_Space); },
      [this] {
        in("keybordChk").setFocus(Qt::TabFocusReason);
        hitKey(in("keybordChk"), Qt::Key_Space);
      }};
  for (const auto& start : starts) {
    openPanel(3, key(40));
    start();
    EXPECT_TRUE(sub().isCapturing());
    EXPECT_TRUE(sub().hasFocus());
    EXPECT_EQ(sub().selKeyCode(), 40);
    tap(KeyA);
    EXPECT_EQ(sub().selKeyCode(), 0);
  }
}

TEST_F(KeyCaptureAssign, AHeldKeyThatStartsItIsNotCaptured) {
  openPanel(3, key(40));
  down(KeyReturn);
  QKeyEvent start(QEvent::KeyPress, Qt::Key_Return, {}, KeyReturn + 8, 0, 0);
  QApplication::sendEvent(&sub(), &start);
  ASSERT_TRUE(sub().isCapturing());
  for (const bool isFlagged : {true, false}) {
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, {}, KeyReturn + 8, 0, 0, {}, isFlagged);
    QApplication::sendEvent(&sub(), &held);
    EXPECT_EQ(sub().selKeyCode(), 40);
  }
  up(KeyReturn);
  tap(KeyReturn, Qt::Key_Return);
  EXPECT_EQ(sub().selKeyCode(), 36);
}

TEST_F(KeyCaptureAssign, AskedToCloseTheWindowItEndsAndKeepsTheWindow) {
  openCapture();
  auto& view = *qobject_cast<ChildView*>(sub().parentWidget());
  EXPECT_TRUE(view.staysOpen());
  EXPECT_FALSE(sub().isCapturing());
  EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
  EXPECT_FALSE(view.staysOpen());
}

TEST_F(KeyCaptureAssign, ItOwnsTheKeyboardUntilItEnds) {
  const std::function<void()> ends[] = {
      [this] { QTest::mouseClick(host().windowHandle(), Qt::LeftButton, {}, QPoint(4, 4)); },
      [this] {
        // Beside the field, inside the part.
        const QPoint beside = sub().mapTo(&host(), QPoint(2, 2));
        QTest::mouseClick(host().windowHandle(), Qt::LeftButton, {}, beside);
      },
      [this] { clickThroughWindow(in("mouseFunChk")); },
      [this] { press("applyBtn"); },
      [this] { chooseType("Disable"); },
      [this] {
        tap(KeyEsc, Qt::Key_Escape);
        tap(KeyEsc, Qt::Key_Escape);
      },
      [this] {
        QEvent event(QEvent::WindowDeactivate);
        QApplication::sendEvent(&sub(), &event);
      },
      [this] { LocalNotifications::shared().post(NerinAction::notifyOutPlus); },
      [this] { press("okBtn"); },
      [this] { destroyHost(); }};
  for (const auto& end : ends) {
    openCapture();
    ASSERT_EQ(QWidget::keyboardGrabber(), &sub());
    end();
    process();
    EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
  }
}

TEST_F(KeyCaptureAssign, KeysOfTheDesktopAreKeysLikeAnyOther) {
  openCapture();
  down(KeyLeftAlt);
  tap(KeyF4, Qt::Key_F4, Qt::AltModifier);
  up(KeyLeftAlt);
  EXPECT_EQ(newKey(), "F4");
  EXPECT_EQ(sub().selKeyCode(), 118);
  tap(KeyPrint, Qt::Key_Print);
  EXPECT_EQ(newKey(), "F13");
  EXPECT_EQ(note(), "");
  EXPECT_TRUE(isOpen());
  EXPECT_TRUE(sub().isCapturing());
}

TEST_F(KeyCaptureAssign, SaysHowToBeginAndHowToLeave) {
  openPanel(3, key(40));
  EXPECT_EQ(hint(), "Press Return or click the field to capture");
  EXPECT_EQ(sub().accessibleDescription().toStdString(), hint());
  EXPECT_EQ(sub().accessibleName(), "Keyboard key");
  clickField();
  EXPECT_EQ(hint(), "Press a key. Esc twice or a click elsewhere ends this.");
  EXPECT_EQ(sub().accessibleDescription().toStdString(), hint());
  tap(KeyEsc, Qt::Key_Escape);
  EXPECT_EQ(hint(), "Esc again ends this and keeps K. Esc is also in the list.");
  tap(KeyEqual);
  EXPECT_EQ(hint(), "Press a key. Esc twice or a click elsewhere ends this.");
  EXPECT_EQ(note(), "The mouse cannot send this key");
  press("applyBtn");
  EXPECT_EQ(hint(), "");
}

TEST_F(KeyCaptureAssign, ApplySaysWhatAKeyThatCannotBeSentWillDo) {
  openCapture();
  press("applyBtn");
  EXPECT_EQ(part<QLabel>("statusText").text(), "No key chosen: the button will do nothing");
  clickField();
  tap(KeyEqual);
  press("applyBtn");
  EXPECT_EQ(part<QLabel>("statusText").text(), "The button will do nothing");
  clickField();
  tap(KeyA);
  press("applyBtn");
  EXPECT_EQ(part<QLabel>("statusText").text(), "");
}

TEST_F(KeyCaptureAssign, AMouseFunctionThatIsNotChosenIsSaidToo) {
  openPanel(3, full(4, 9, 1));
  EXPECT_EQ(note(), "No function chosen: nothing changes");
  chooseIn(in("selBtn"), "Middle Click");
  EXPECT_EQ(note(), "");
}

TEST_F(KeyCaptureAssign, AKeyThatTheKeyboardLacksIsChosenFromTheListByPointer) {
  openCapture();
  EXPECT_EQ(in("keyListBtn").tag(), 293);
  EXPECT_EQ(in("keyListBtn").accessibleName(), "Other keys");
  chooseIn(in("keyListBtn"), "F14 (Scroll Lock)");
  EXPECT_EQ(newKey(), "F14");
  EXPECT_EQ(sub().selKeyCode(), 107);
  EXPECT_EQ(in("keyListBtn").title(), "Other keys");
  EXPECT_FALSE(sub().isCapturing());
  clearTrace();
  press("applyBtn");
  EXPECT_THAT(sent(), ElementsAre(buttonCommand(3, "0200470000")));
  press("okBtn");
  EXPECT_TRUE(isSame(stored(), key(107)));
  clickThroughWindow(in("mouseFunChk"));
  EXPECT_FALSE(in("keyListBtn").isEnabled());
}

// Capture, leave with Esc, and take Esc from the list.
TEST_F(KeyCaptureAssign, EscapeIsAssignedByKeyAlone) {
  openPanel(3, key(40));
  tap(KeyReturn, Qt::Key_Return);
  tap(KeyEsc, Qt::Key_Escape);
  tap(KeyEsc, Qt::Key_Escape);
  EXPECT_EQ(sub().selKeyCode(), 40);
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  ASSERT_TRUE(in("keyListBtn").hasFocus());
  hitKey(in("keyListBtn"), Qt::Key_Space);
  ASSERT_NE(openList(), nullptr);
  QTest::keyClicks(openList(), QStringLiteral("Esc"));
  hitKey(*openList(), Qt::Key_Return);
  process();
  EXPECT_EQ(sub().selKeyCode(), 53);
  EXPECT_EQ(newKey(), "Esc");
  EXPECT_TRUE(isOpen());
  press("okBtn");
  EXPECT_TRUE(isSame(stored(), key(53)));
}

TEST_F(KeyCaptureAssign, TheListOpensOnTheKeyThatItHolds) {
  openPanel(3, key(119));
  clickThroughWindow(in("keyListBtn"));
  ASSERT_NE(openList(), nullptr);
  EXPECT_EQ(openList()->currentItem()->text(), "End");
  openList()->hideMenulist();
}
