// Recording mouse buttons anywhere in the window.

#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTest>

#include <gmock/gmock.h>

#include "Tests/View/Macros/MacroViewTest.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class MacroClicks : public MacroViewTest {
 protected:
  // Clicks through the window system, which knows disabled and transparent widgets.
  void clickAt(QWidget& widget, Qt::MouseButton button = Qt::LeftButton) {
    clickThroughWindow(widget, button);
  }
  void pressMouse(QEvent::Type type, Qt::MouseButton button, std::uint64_t time) {
    const QPointF place(10, 10);
    QMouseEvent event(type, place, table().viewport()->mapToGlobal(place), button, button, {});
    event.setTimestamp(time);
    QCoreApplication::sendEvent(table().viewport(), &event);
  }
};

const std::vector<std::string> leftClick{"120/3", "120/4"};
const std::vector<std::string> rightClick{"121/3", "121/4"};
const std::vector<std::string> otherClick{"122/3", "122/4"};

}  // namespace

TEST_F(MacroClicks, ARepeatLeavesTheTimeAlone) {
  openAndRecord();
  pressMouse(QEvent::MouseButtonPress, Qt::LeftButton, 1000);
  // If a release is lost, the desktop sends a second press.
  pressMouse(QEvent::MouseButtonPress, Qt::LeftButton, 1300);
  pressMouse(QEvent::MouseButtonRelease, Qt::LeftButton, 1450);
  pressMouse(QEvent::MouseButtonPress, Qt::RightButton, 1500);
  EXPECT_THAT(rows(), ElementsAre("120/3/450", "120/4/50", "121/3/0"));
}

TEST_F(MacroClicks, EveryClickInTheWindowIsTaken) {
  openAndRecord();
  // All kinds of controls, also disabled ones.
  for (const char* one :
       {"macroNameBtn", "newMacroBtn", "okBtn", "cancelBtn", "recordBtn", "insertStopBtn",
        "insertCancelBtn", "insertDefDelayChk", "macroNameTxt", "defDelayTxt", "insertDefDelayTxt",
        "recordStateTxt", "eventBar", "memoryBar", "commandTable"}) {
    auto& widget = part<QWidget>(one);
    clickAt(widget);
    EXPECT_EQ(takeKinds(), leftClick) << one;
    clickAt(widget, Qt::RightButton);
    EXPECT_EQ(takeKinds(), rightClick) << one;
    clickAt(widget, Qt::BackButton);
    EXPECT_EQ(takeKinds(), otherClick) << one;
    EXPECT_TRUE(editor().isRecord());
    EXPECT_TRUE(table().hasFocus()) << one;
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr) << one;
  }
  EXPECT_TRUE(isOpen());
}

TEST_F(MacroClicks, ClicksOnTheScrollBarAreTakenToo) {
  openOn(38, 0);
  record();
  process();
  const int before = table().verticalScrollBar()->value();
  ASSERT_TRUE(table().verticalScrollBar()->isVisible());
  clickAt(*table().verticalScrollBar());
  EXPECT_THAT(commands(), SizeIs(40));
  EXPECT_EQ(kinds().back(), "120/4");
  EXPECT_GE(table().verticalScrollBar()->value(), before);
}

TEST_F(MacroClicks, TheSecondClickOfADoubleClickIsAClick) {
  openAndRecord();
  const std::vector<std::string> two{"120/3", "120/4", "120/3", "120/4"};
  for (const char* one : {"commandTable", "okBtn", "macroNameTxt", "defDelayTxt"}) {
    auto& widget = part<QWidget>(one);
    const QPoint place = widget.mapTo(&host(), widget.rect().center());
    QTest::mouseDClick(host().windowHandle(), Qt::LeftButton, {}, place);
    process();
    EXPECT_EQ(takeKinds(), two) << one;
  }
  QTest::mouseDClick(host().windowHandle(), Qt::LeftButton, {}, {300, 560});
  EXPECT_EQ(takeKinds(), two);
  EXPECT_EQ(table().findChild<QLineEdit*>(), nullptr);
}

TEST_F(MacroClicks, TheKindsOfReportsAreThePressesOfTheButtons) {
  openAndRecord();
  const QPointF place(10, 10);
  struct Kind {
    int type;
    Qt::MouseButton button;
    const char* row;
  };
  for (const Kind& kind : {Kind{4, Qt::LeftButton, "120/3"},
                           {5, Qt::LeftButton, "120/4"},
                           {6, Qt::RightButton, "121/3"},
                           {7, Qt::RightButton, "121/4"},
                           {8, Qt::MiddleButton, "122/3"},
                           {9, Qt::ForwardButton, "122/4"}}) {
    QMouseEvent event(QEvent::MouseButtonPress, place, place, kind.button, kind.button, {});
    editor().onMouseEvent(table(), event, kind.type);
    EXPECT_THAT(takeKinds(), ElementsAre(kind.row));
    editor().onMouseEvent(control("okBtn"), event, kind.type);
    EXPECT_THAT(takeKinds(), ElementsAre(kind.row));
  }
  for (const int type : {0, 1, 2, 3, 10}) {
    QMouseEvent event(QEvent::MouseMove, place, place, Qt::LeftButton, {}, {});
    editor().onMouseEvent(table(), event, type);
    editor().onMouseEvent(control("okBtn"), event, type);
    EXPECT_THAT(rows(), IsEmpty()) << type;
  }
}

TEST_F(MacroClicks, TheStopButtonIsTheOnlyPlaceThatIsNotTaken) {
  openOn(1, 0);
  for (const bool inserts : {false, true}) {
    editor().setInsertState(true);
    control(inserts ? "insertRecordBtn" : "recordBtn").click();
    LXButton& active = control(inserts ? "insertStopBtn" : "stopBtn");
    LXButton& other = control(inserts ? "stopBtn" : "insertStopBtn");
    const std::size_t before = commands().size();
    clickAt(active, Qt::RightButton);
    clickAt(active, Qt::MiddleButton);
    EXPECT_THAT(commands(), SizeIs(before));
    EXPECT_TRUE(editor().isRecord());
    clickAt(other);
    EXPECT_THAT(commands(), SizeIs(before + 2));
    EXPECT_TRUE(editor().isRecord());
    clickAt(active);
    EXPECT_FALSE(editor().isRecord());
    EXPECT_THAT(commands(), SizeIs(before + 2));
    EXPECT_EQ(editor().isInsert(), inserts);
  }
  EXPECT_FALSE(editor().isInsertRecord());
}

TEST_F(MacroClicks, AButtonIsLetGoWhereItWasPressed) {
  openAndRecord();
  QWindow* window = host().windowHandle();
  const auto middleOf = [this](QWidget& widget) {
    return widget.mapTo(&host(), widget.rect().center());
  };
  QTest::mousePress(window, Qt::LeftButton, {}, middleOf(table()));
  QTest::mouseRelease(window, Qt::LeftButton, {}, middleOf(control("stopBtn")));
  EXPECT_TRUE(editor().isRecord());
  EXPECT_THAT(takeKinds(), ElementsAre("120/3", "120/4"));
  QTest::mousePress(window, Qt::LeftButton, {}, middleOf(control("stopBtn")));
  QTest::mouseRelease(window, Qt::LeftButton, {}, middleOf(table()));
  EXPECT_TRUE(editor().isRecord());
  EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(MacroClicks, WithoutARecordingClicksAreOrdinary) {
  openOn(3, 0);
  for (const char* one : {"eventBar", "commandTable", "stopBtn"}) {
    clickAt(part<QWidget>(one));
    clickAt(part<QWidget>(one), Qt::RightButton);
  }
  EXPECT_THAT(commands(), SizeIs(3));
  // The right button selects no row; the left button does.
  const QPoint third = table().visualRect(table().model()->index(2, 1)).center();
  QTest::mouseClick(table().viewport(), Qt::RightButton, {}, third);
  EXPECT_EQ(row(), 0);
  QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, third);
  EXPECT_EQ(row(), 2);
  // While recording, a click selects no row.
  record();
  QTest::mouseClick(table().viewport(), Qt::LeftButton, {},
                    table().visualRect(table().model()->index(0, 1)).center());
  EXPECT_EQ(row(), 4);
}
