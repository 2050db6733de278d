// The time strip, the fields of the selected command, the keys of the table, and undo.

#include <QAccessible>
#include <QLabel>
#include <QTest>

#include <gmock/gmock.h>

#include "Kit/Widgets/LXNumberTextField.h"
#include "Tests/View/Macros/MacroViewTest.h"
#include "View/Macros/KeyField.h"
#include "View/Macros/TimeStrip.h"
#include "View/Macros/UsageBar.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class MacroWorkbenchTest : public MacroViewTest {
 protected:
  // A and B, which overlap from 100 to 200 ms, and a mouse button that is not let go.
  void openOnChord() {
    openOn(0, 0);
    using Info = MacroKeyInfo;
    for (const auto& [code, flag, delay] :
         {std::tuple{0, Info::KeyPress, 100}, std::tuple{11, Info::KeyPress, 100},
          std::tuple{0, Info::KeyRelease, 200}, std::tuple{11, Info::KeyRelease, 500},
          std::tuple{120, Info::MousePress, 100}}) {
      commands().push_back(std::make_shared<MacroKeyInfo>(code, flag, delay));
    }
    addCommands(0);
  }
  TimeStrip& strip() { return part<TimeStrip>("timeStrip"); }
  KeyField& keyField() { return part<KeyField>("rowKeyTxt"); }
  LXNumberTextField& pauseField() { return part<LXNumberTextField>("rowDelayTxt"); }
  std::string length() { return part<QLabel>("lengthTxt").text().toStdString(); }
  void undo() { QTest::keyClick(&table(), Qt::Key_Z, Qt::ControlModifier); }
  void redo() { QTest::keyClick(&table(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier); }
  void hit(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(&table(), key, modifiers);
  }
  // Presses on a row, moves to the place and lets go.
  void dragRow(int row, int y) {
    QWidget* rows = table().viewport();
    const QPoint from(40, 20 * row + 10);
    QTest::mousePress(rows, Qt::LeftButton, {}, from);
    for (const QPoint& at : {from + QPoint(0, 15), QPoint(40, y), QPoint(40, y)}) {
      QMouseEvent move(QEvent::MouseMove, at, rows->mapToGlobal(at), Qt::NoButton, Qt::LeftButton,
                       {});
      QCoreApplication::sendEvent(rows, &move);
    }
    QTest::mouseRelease(rows, Qt::LeftButton, {}, {40, y});
  }
  void send(QEvent::Type type, std::uint32_t code) {
    QKeyEvent event = nativeEvent(type, code);
    QCoreApplication::sendEvent(&keyField(), &event);
  }
};

}  // namespace

TEST_F(MacroWorkbenchTest, TheStripShowsKeysAndPausesToScale) {
  openOnChord();
  EXPECT_EQ(length(), "1000 ms");
  const double scale = (strip().width() - 12) / 1000.0;
  const QRectF a = strip().barOf(0);
  const QRectF b = strip().barOf(1);
  EXPECT_NEAR(a.left(), 6, 0.01);
  EXPECT_NEAR(a.width(), 200 * scale, 0.01);
  EXPECT_NEAR(b.left(), 6 + 100 * scale, 0.01);
  EXPECT_NEAR(b.width(), 300 * scale, 0.01);
  EXPECT_EQ(strip().barOf(3), b);
  // Keys that are down together lie below each other.
  EXPECT_GE(b.top(), a.bottom());
  EXPECT_TRUE(strip().timeline().spanOf(0)->overlaps);
  // The button stays down to the end, alone.
  const QRectF button = strip().barOf(4);
  EXPECT_NEAR(button.right(), strip().width() - 6, 0.01);
  EXPECT_EQ(button.top(), a.top());
  EXPECT_FALSE(strip().timeline().spanOf(4)->overlaps);
  EXPECT_EQ(strip().timeline().spanOf(4)->release, MacroTimeline::none);
}

TEST_F(MacroWorkbenchTest, AScreenReaderHearsTheNumbersAndSelectsCommands) {
  openOnChord();
  const auto* length = QAccessible::queryAccessibleInterface(&part<QLabel>("lengthTxt"));
  EXPECT_EQ(length->text(QAccessible::Name), "Length: 1000 ms");
  std::vector<std::string> heard;
  for (const auto* label : editor().findChildren<QLabel*>()) {
    heard.push_back(label->accessibleName().toStdString());
  }
  EXPECT_THAT(heard, testing::IsSupersetOf({"Events: 5 / 40", "Memory: 20 / 2000"}));
  auto* commandTable = QAccessible::queryAccessibleInterface(&table())->tableInterface();
  ASSERT_NE(commandTable, nullptr);
  ASSERT_TRUE(commandTable->selectRow(3));
  EXPECT_EQ(row(), 3);
  EXPECT_EQ(textOf(pauseField()), "500");
  EXPECT_EQ(editor().selKeyInfo(), commands()[3]);
  QAccessible::queryAccessibleInterface(&part<LXTextField>("macroNameTxt"))
      ->setText(QAccessible::Value, QStringLiteral("Combo"));
  EXPECT_EQ(editor().currMacroInfo()->nameStr(), "Combo");
}

TEST_F(MacroWorkbenchTest, WithoutPausesEveryCommandHasAPlace) {
  openOn(4, 0);
  EXPECT_EQ(length(), "0 ms");
  for (int row = 0; row < 4; ++row) {
    EXPECT_EQ(strip().timeline().rowAt(strip().timeline().place(row)), row);
  }
  for (int i = 0; i < 4; ++i) {
    press("delKeyBtn");
  }
  EXPECT_EQ(strip().timeline().rowAt(0.5), MacroTimeline::none);
  QTest::mouseClick(&strip(), Qt::LeftButton, {}, {100, 20});
  EXPECT_EQ(row(), -1);
}

TEST_F(MacroWorkbenchTest, AReleaseWithoutAPressStandsAlone) {
  openOn(0, 0);
  commands().push_back(std::make_shared<MacroKeyInfo>(0, MacroKeyInfo::KeyRelease, 50));
  commands().push_back(std::make_shared<MacroKeyInfo>(120, MacroKeyInfo::KeyPress, 50));
  // The button of the same code is another one.
  commands().push_back(std::make_shared<MacroKeyInfo>(120, MacroKeyInfo::MouseRelease, 0));
  addCommands(0);
  const auto& timeline = strip().timeline();
  EXPECT_EQ(timeline.spanOf(0)->press, MacroTimeline::none);
  EXPECT_EQ(timeline.spanOf(1)->release, MacroTimeline::none);
  EXPECT_EQ(timeline.spanOf(2)->press, MacroTimeline::none);
}

TEST_F(MacroWorkbenchTest, TableAndStripSelectTheSameCommand) {
  openOnChord();
  select(2);
  EXPECT_EQ(strip().currentRow(), 2);
  EXPECT_EQ(strip().accessibleDescription(), "Release A, 200 ms / 1000 ms");
  const auto clickBar = [this](int of, double along) {
    const QRectF bar = strip().barOf(of);
    QTest::mouseClick(&strip(), Qt::LeftButton, {},
                      QPointF(bar.left() + along * bar.width(), bar.center().y()).toPoint());
  };
  clickBar(1, 0.1);
  EXPECT_EQ(row(), 1);
  clickBar(1, 0.9);
  EXPECT_EQ(row(), 3);
  // The pause after the last release.
  QTest::mouseClick(&strip(), Qt::LeftButton, {}, {strip().width() * 6 / 10, 40});
  EXPECT_EQ(row(), 3);
  hitKey(strip(), Qt::Key_Right);
  EXPECT_EQ(row(), 4);
  hitKey(strip(), Qt::Key_Right);
  EXPECT_EQ(row(), 4);
  hitKey(strip(), Qt::Key_Home);
  EXPECT_EQ(row(), 0);
  EXPECT_EQ(editor().selKeyInfo(), commands()[0]);
}

TEST_F(MacroWorkbenchTest, ShiftChoosesRowsTogetherInTableAndStrip) {
  openOnChord();
  const auto chosen = [this] {
    std::string rows;
    const auto& model = *qobject_cast<MacroCommandModel*>(table().model());
    for (int i = 0; i < model.rowCount(); ++i) {
      rows += model.isChosen(i) ? 'x' : '.';
    }
    return rows;
  };
  const auto clickRow = [this](int row, Qt::KeyboardModifiers modifiers) {
    QTest::mouseClick(table().viewport(), Qt::LeftButton, modifiers, {40, 20 * row + 10});
  };
  clickRow(3, {});
  EXPECT_EQ(chosen(), "...x.");
  clickRow(1, Qt::ShiftModifier);
  EXPECT_EQ(chosen(), ".xxx.");
  EXPECT_EQ(row(), 1);
  EXPECT_EQ(strip().accessibleDescription(), "Press B, 100 ms / 1000 ms, From line 2 to line 4");
  clickRow(1, {});  // the selected row alone, again
  EXPECT_EQ(chosen(), ".x...");
  QTest::keyClick(&strip(), Qt::Key_Right, Qt::ShiftModifier);
  QTest::keyClick(&strip(), Qt::Key_End, Qt::ShiftModifier);
  EXPECT_EQ(chosen(), ".xxxx");
  hit(Qt::Key_Up, Qt::ShiftModifier);
  EXPECT_EQ(chosen(), ".xxx.");
  hit(Qt::Key_Up);
  EXPECT_EQ(chosen(), "..x..");
  EXPECT_EQ(strip().accessibleDescription(), "Release A, 200 ms / 1000 ms");
  // By dragging along the strip.
  const int y = strip().height() - 3;
  const auto xOf = [this](int of) { return static_cast<int>(strip().barOf(of).left()) + 2; };
  QTest::mousePress(&strip(), Qt::LeftButton, {}, {xOf(0), y});
  const QPointF end(strip().width() - 8, y);
  QMouseEvent move(QEvent::MouseMove, end, strip().mapToGlobal(end), Qt::NoButton, Qt::LeftButton,
                   {});
  QCoreApplication::sendEvent(&strip(), &move);
  QTest::mouseRelease(&strip(), Qt::LeftButton, {}, end.toPoint());
  EXPECT_EQ(chosen(), "xxxxx");
  EXPECT_EQ(row(), 4);
  // An edit leaves only the command that it was made in.
  hit(Qt::Key_Delete);
  EXPECT_EQ(chosen(), "...x");
}

TEST_F(MacroWorkbenchTest, ThePauseOfTheSelectedCommandIsTyped) {
  openOnChord();
  select(1);
  EXPECT_EQ(textOf(pauseField()), "100");
  type(pauseField(), "250");
  hitKey(pauseField(), Qt::Key_Return);
  EXPECT_EQ(commands()[1]->delay(), 250);
  EXPECT_EQ(row(), 1);
  EXPECT_EQ(length(), "1150 ms");
  type(pauseField(), "99999");
  hitKey(pauseField(), Qt::Key_Return);
  EXPECT_EQ(commands()[1]->delay(), 65535);
  type(pauseField(), "0");
  hitKey(pauseField(), Qt::Key_Return);
  EXPECT_EQ(part<UsageBar>("memoryBar").words(), "17 / 2000");
  // What is typed belongs to its row also when another one is clicked.
  pauseField().setFocus();
  type(pauseField(), "33");
  QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, {40, 70});
  EXPECT_EQ(commands()[1]->delay(), 33);
  EXPECT_EQ(row(), 3);
  EXPECT_EQ(textOf(pauseField()), "500");
}

TEST_F(MacroWorkbenchTest, APauseLongerThanTheMouseKeepsIsShownAndStays) {
  openOnChord();
  commands()[0]->setDelay(100000);
  addCommands(0);
  EXPECT_EQ(textOf(pauseField()), "100000");
  pauseField().setFocus();
  table().setFocus();
  EXPECT_EQ(commands()[0]->delay(), 100000);
}

TEST_F(MacroWorkbenchTest, TheKeyOfTheSelectedCommandIsPressed) {
  openOnChord();
  select(2);
  EXPECT_EQ(textOf(keyField()), "A");
  keyField().setFocus();
  send(QEvent::KeyPress, KeyB);
  send(QEvent::KeyRelease, KeyB);
  EXPECT_EQ(commands()[2]->keyCode(), 0);  // the focus alone takes nothing
  hitKey(keyField(), Qt::Key_Return);
  ASSERT_TRUE(keyField().isWaiting());
  EXPECT_EQ(textOf(keyField()), "Press a key");
  send(QEvent::KeyPress, KeyEsc);
  EXPECT_FALSE(keyField().isWaiting());
  EXPECT_TRUE(isOpen());
  EXPECT_THAT(kinds(), ElementsAre("0/0", "11/0", "53/1", "11/1", "120/3"));
  EXPECT_EQ(row(), 2);
  // A mouse button, by the pointer alone.
  QTest::mouseClick(&keyField(), Qt::LeftButton);
  QTest::mouseClick(&keyField(), Qt::RightButton);
  EXPECT_THAT(kinds(), ElementsAre("0/0", "11/0", "121/4", "11/1", "120/3"));
  EXPECT_EQ(textOf(keyField()), "R Button");
}

TEST_F(MacroWorkbenchTest, AClickElsewhereKeepsTheKey) {
  openOnChord();
  QTest::mouseClick(&keyField(), Qt::LeftButton);
  ASSERT_TRUE(keyField().isWaiting());
  QTest::mouseClick(&editor(), Qt::LeftButton, {}, {500, 3});
  EXPECT_FALSE(keyField().isWaiting());
  EXPECT_EQ(textOf(keyField()), "A");
  EXPECT_EQ(commands()[0]->keyCode(), 0);
}

TEST_F(MacroWorkbenchTest, TheFieldsNeedACommandAndNoRecording) {
  open();
  const auto canBeUsed = [this] { return keyField().isEnabled() && pauseField().isEnabled(); };
  EXPECT_FALSE(canBeUsed());
  openOnChord();
  EXPECT_TRUE(canBeUsed());
  record();
  EXPECT_FALSE(keyField().isEnabled() || pauseField().isEnabled() || strip().isEnabled());
  QTest::mouseClick(&strip(), Qt::LeftButton, {}, {100, 20});
  EXPECT_EQ(kinds().back(), "120/4");
  stop();
  EXPECT_TRUE(canBeUsed());
}

TEST_F(MacroWorkbenchTest, KeysDeleteAndMoveTheSelectedCommand) {
  openOn(4, 1);
  hit(Qt::Key_Down, Qt::AltModifier);
  EXPECT_THAT(kinds(), ElementsAre("0/0", "2/0", "1/0", "3/0"));
  EXPECT_EQ(row(), 2);
  hit(Qt::Key_Up, Qt::AltModifier);
  hit(Qt::Key_Up, Qt::AltModifier);
  hit(Qt::Key_Up, Qt::AltModifier);
  EXPECT_THAT(kinds(), ElementsAre("1/0", "0/0", "2/0", "3/0"));
  EXPECT_EQ(row(), 0);
  hit(Qt::Key_Delete);
  EXPECT_THAT(kinds(), ElementsAre("0/0", "2/0", "3/0"));
  hit(Qt::Key_Down);
  EXPECT_EQ(row(), 1);
}

TEST_F(MacroWorkbenchTest, ARowIsDraggedToItsPlace) {
  openOn(4, 3);
  dragRow(0, 45);  // the upper half of the third row
  EXPECT_THAT(kinds(), ElementsAre("1/0", "0/0", "2/0", "3/0"));
  EXPECT_EQ(row(), 1);
  dragRow(3, 2);
  EXPECT_THAT(kinds(), ElementsAre("3/0", "1/0", "0/0", "2/0"));
  EXPECT_EQ(row(), 0);
  dragRow(1, 300);  // below all rows
  EXPECT_THAT(kinds(), ElementsAre("3/0", "0/0", "2/0", "1/0"));
  dragRow(1, 38);  // back to itself
  EXPECT_THAT(kinds(), ElementsAre("3/0", "0/0", "2/0", "1/0"));
  EXPECT_EQ(row(), 1);
}

TEST_F(MacroWorkbenchTest, EveryEditOfTheCommandsIsUndoneAndRedone) {
  openOnChord();
  const auto first = rows();
  select(1);
  type(pauseField(), "7");
  hitKey(pauseField(), Qt::Key_Return);
  const auto second = rows();
  dragRow(0, 95);
  press("delKeyBtn");
  record();
  down(KeyA, 1000);
  up(KeyA, 1010);
  stop();
  const auto last = rows();
  undo();  // the whole recording
  EXPECT_EQ(commands().size(), 4U);
  undo();
  undo();
  EXPECT_EQ(rows(), second);
  undo();
  EXPECT_EQ(rows(), first);
  EXPECT_EQ(row(), 1);
  EXPECT_EQ(editor().selKeyInfo(), commands()[1]);
  undo();
  EXPECT_EQ(rows(), first);
  for (int i = 0; i < 4; ++i) {
    redo();
  }
  EXPECT_EQ(rows(), last);
  redo();
  EXPECT_EQ(rows(), last);
  undo();
  hit(Qt::Key_Delete);
  redo();  // the edit has taken the place of the undone one
  EXPECT_EQ(commands().size(), 3U);
}

TEST_F(MacroWorkbenchTest, UndoEndsAtAnotherMacro) {
  openOn(2, 0);
  hit(Qt::Key_Delete);
  editor().newMacro();
  undo();
  EXPECT_THAT(commands(), IsEmpty());
  chooseIn("macroNameBtn", "NewMacro_1");
  table().setFocus();
  undo();
  EXPECT_EQ(commands().size(), 1U);
}
