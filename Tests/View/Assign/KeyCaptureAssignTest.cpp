// Assigning a captured key to a button.

#include <QTest>

#include <gmock/gmock.h>

#include "Kit/Widgets/LXMenulist.h"
#include "Tests/View/Assign/SingleKeyTest.h"

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
  EXPECT_FALSE(saysThatItCannotBeSent());
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
