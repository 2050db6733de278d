// Copying the colors of the lights, and taking changes back.

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QTest>

#include <gmock/gmock.h>

#include "Kit/Widgets/LXNumberTextField.h"
#include "Tests/View/Lights/LightTest.h"
#include "View/Windows/StatusLine.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class LightCopies : public LightTest {
 protected:
  void SetUp() override { QApplication::clipboard()->clear(); }
  void keys(const char* widget, QKeySequence sequence) {
    auto& target = part<QWidget>(widget);
    target.setFocus();
    QTest::keySequence(&target, sequence);
    process();
  }
  void copy(const char* widget) { keys(widget, QKeySequence(Qt::CTRL | Qt::Key_C)); }
  void copyAll(const char* widget) { keys(widget, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C)); }
  void paste(const char* widget) { keys(widget, QKeySequence(Qt::CTRL | Qt::Key_V)); }
  void undo(const char* widget) { keys(widget, QKeySequence(Qt::CTRL | Qt::Key_Z)); }
  void redo(const char* widget) { keys(widget, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)); }
  static std::string clipboard() { return QApplication::clipboard()->text().toStdString(); }
  static void setClipboard(const char* text) {
    QApplication::clipboard()->setText(QString::fromUtf8(text));
  }
  std::string said() { return part<StatusLine>("statusLine").text().toStdString(); }
  QMenu& menu() { return part<QMenu>("lightMenu"); }
  QAction& entry(const char* name) {
    for (QAction* action : menu().actions()) {
      if (action->objectName() == QString::fromLatin1(name)) {
        return *action;
      }
    }
    throw std::runtime_error(std::string("no entry ") + name);
  }
  void chooseEntry(const char* name) {
    QTest::mouseClick(&menu(), Qt::LeftButton, {}, menu().actionGeometry(&entry(name)).center());
    process();
  }
  std::vector<std::string> colors() {
    std::vector<std::string> all;
    for (int i = 0; i < 4; ++i) {
      all.push_back(LightView::getColorPro(color(i)).shown().name().toStdString());
    }
    return all;
  }
  std::vector<std::string> opened{"#0a141e", "#28323c", "#46505a", "#646e78"};
};

}  // namespace

TEST_F(LightCopies, AColorGoesFromLightToLightByKey) {
  open();
  copy("midLightBtn");
  EXPECT_EQ(clipboard(), "#0A141E");
  EXPECT_EQ(said(), "Copied: #0A141E. Ctrl+V gives it to another light.");
  EXPECT_EQ(light().currSelectedIndex(), 0) << "copying changes nothing";
  paste("leftLightTagBtn");
  EXPECT_THAT(colors(), ElementsAre("#0a141e", "#28323c", "#46505a", "#0a141e"));
  EXPECT_EQ(light().currSelectedIndex(), 4);
  EXPECT_EQ(light().afterColor(), stored(10, 20, 30));
  EXPECT_EQ(textOf(part<LXTextField>("hexTxt")), "0A141E");
  EXPECT_EQ(said(), "");
  EXPECT_THAT(sent(), IsEmpty());
  expectColor(editState->selProfile().lightColorArr[3], 100, 110, 120);
}

TEST_F(LightCopies, ThePickersCopyAndPasteForTheChosenLight) {
  open();
  press("logoLightBtn");
  copy("colorFieldView");
  EXPECT_EQ(clipboard(), "#46505A");
  setClipboard("ff8000");
  paste("brightnessView");
  EXPECT_THAT(colors(), ElementsAre("#0a141e", "#28323c", "#ff8000", "#646e78"));
  EXPECT_EQ(light().beforeColor(), stored(70, 80, 90));
  paste("colorBarView");
  // The fields have their own clipboard.
  setClipboard("77");
  auto& red = part<LXNumberTextField>("redTxt");
  red.selectAll();
  paste("redTxt");
  EXPECT_EQ(textOf(red), "77");
}

TEST_F(LightCopies, WithoutALightOneIsAskedFor) {
  open();
  copy("colorFieldView");
  EXPECT_EQ(clipboard(), "");
  EXPECT_EQ(said(), "Choose a light, then give it a color");
  setClipboard("#010203");
  statusline::clear();
  paste("colorFieldView");
  EXPECT_EQ(said(), "Choose a light, then give it a color");
  EXPECT_EQ(colors(), opened);
}

TEST_F(LightCopies, ATextThatIsNoColorIsNotPasted) {
  open();
  for (const char* text : {"", "red", "#12345", "#1234567", "#12345g", "#010203 #040506",
                           "#010203 #040506 #070809 #0a0b0c #0d0e0f", "a #010203"}) {
    setClipboard(text);
    statusline::clear();
    paste("midLightBtn");
    EXPECT_EQ(colors(), opened) << text;
    EXPECT_EQ(said(), "There is no color to paste. Copy one with Ctrl+C first.") << text;
  }
  setClipboard(std::string(100000, '1').c_str());
  paste("midLightBtn");
  EXPECT_EQ(colors(), opened);
}

TEST_F(LightCopies, AllLightsGoFromSlotToSlot) {
  open();
  press("midLightBtn");
  copyAll("midLightBtn");
  EXPECT_EQ(clipboard(), "#0A141E #28323C #46505A #646E78");
  EXPECT_EQ(said(), "Copied: all lights. Ctrl+V gives them to another slot.");
  press("cancelBtn");
  open();
  for (int i = 0; i < 4; ++i) {
    editState->edit().lightColorArr[i] = {1, 1, 1};
  }
  light().fillSettingData();
  paste("okBtn");
  EXPECT_EQ(colors(), opened);
  press("okBtn");
  expectColor(editState->selProfile().lightColorArr[3], 100, 110, 120);
  EXPECT_TRUE(editState->isNeedSave());
}

TEST_F(LightCopies, OneColorIsUsedForAllLightsFromTheMenu) {
  open();
  press("reProfileLightBtn");
  clickThroughWindow(control("logoLightBtn"), Qt::RightButton);
  ASSERT_TRUE(menu().isVisible());
  chooseEntry("useForAllLights");
  EXPECT_FALSE(menu().isVisible());
  EXPECT_THAT(colors(), testing::Each("#46505a"));
  EXPECT_EQ(said(), "All lights have this color. Ctrl+Z takes it back.");
  // The swatches of the chosen light, and the history of the others.
  EXPECT_EQ(light().currSelectedIndex(), 2);
  EXPECT_EQ(light().beforeColor(), stored(40, 50, 60));
  EXPECT_EQ(light().afterColor(), stored(70, 80, 90));
  press("midLightBtn");
  EXPECT_EQ(light().beforeColor(), stored(10, 20, 30));
  EXPECT_EQ(light().afterColor(), stored(70, 80, 90));
  undo("midLightBtn");
  EXPECT_EQ(colors(), opened);
  EXPECT_EQ(said(), "Undone: Wheel, Profile light, Left side");
  redo("midLightBtn");
  EXPECT_THAT(colors(), testing::Each("#46505a"));
  EXPECT_EQ(said(), "Done again: Wheel, Profile light, Left side");
}

TEST_F(LightCopies, TheMenuOpensByKeyAndNamesTheKeys) {
  open();
  for (const QKeySequence& sequence :
       {QKeySequence(Qt::Key_Menu), QKeySequence(Qt::SHIFT | Qt::Key_F10)}) {
    for (const char* name : {"midLightBtn", "logoLightTagBtn"}) {
      keys(name, sequence);
      ASSERT_TRUE(menu().isVisible()) << name;
      menu().hide();
    }
  }
  keys("logoLightTagBtn", QKeySequence(Qt::Key_Menu));
  EXPECT_EQ(entry("copyColor").text(), "Copy color\tCtrl+C");
  EXPECT_EQ(entry("pasteColor").text(), "Paste color\tCtrl+V");
  EXPECT_EQ(entry("copyAllLights").text(), "Copy all lights\tCtrl+Shift+C");
  QTest::keyClick(&menu(), Qt::Key_Down);
  QTest::keyClick(&menu(), Qt::Key_Return);
  EXPECT_EQ(clipboard(), "#46505A");
}

TEST_F(LightCopies, AScreenReaderFindsTheActionsAtTheLight) {
  open();
  auto* read = QAccessible::queryAccessibleInterface(&control("midLightBtn"));
  auto* actions = read->actionInterface();
  for (const char* name : {"Copy color", "Paste color", "Use for all lights", "Copy all lights"}) {
    EXPECT_TRUE(actions->actionNames().contains(QString::fromLatin1(name))) << name;
  }
  actions->doAction(QStringLiteral("Use for all lights"));
  process();
  EXPECT_THAT(colors(), testing::Each("#0a141e"));
}

TEST_F(LightCopies, EveryChangeIsOneStepBack) {
  open();
  press("midLightBtn");
  undo("midLightBtn");
  EXPECT_EQ(colors(), opened);
  auto& field = part<QWidget>("colorFieldView");
  QTest::mousePress(&field, Qt::LeftButton, {}, {20, 20});
  for (int x = 30; x < 90; x += 10) {
    QMouseEvent moved(QEvent::MouseMove, QPointF(x, 40), field.mapToGlobal(QPointF(x, 40)),
                      Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&field, &moved);
  }
  QTest::mouseRelease(&field, Qt::LeftButton, {}, {90, 40});
  const auto dragged = colors();
  EXPECT_NE(dragged, opened);
  type(part<LXNumberTextField>("redTxt"), "3");
  hitKey(part<LXNumberTextField>("redTxt"), Qt::Key_Return);
  const auto typed = colors();
  setClipboard("#ffffff");
  paste("reProfileLightBtn");
  const auto pasted = colors();
  // The same color again is no step.
  paste("reProfileLightBtn");
  undo("colorFieldView");
  EXPECT_EQ(colors(), typed);
  EXPECT_EQ(light().afterColor(), stored(40, 50, 60));
  undo("colorFieldView");
  EXPECT_EQ(colors(), dragged);
  undo("colorFieldView");
  EXPECT_EQ(colors(), opened);
  undo("colorFieldView");
  EXPECT_EQ(colors(), opened);
  redo("okBtn");
  redo("okBtn");
  redo("okBtn");
  EXPECT_EQ(colors(), pasted);
  redo("okBtn");
  EXPECT_EQ(colors(), pasted);
  undo("okBtn");
  // A new change ends what could be done again.
  paste("logoLightBtn");
  const auto last = colors();
  redo("logoLightBtn");
  EXPECT_EQ(colors(), last);
}

TEST_F(LightCopies, AWindowThatEndedTakesNoColor) {
  open();
  press("okBtn");
  setClipboard("#ffffff");
  auto* read = QAccessible::queryAccessibleInterface(&control("midLightBtn"));
  for (const char* name : {"Paste color", "Use for all lights"}) {
    read->actionInterface()->doAction(QString::fromLatin1(name));
    process();
  }
  EXPECT_EQ(colors(), opened);
}
