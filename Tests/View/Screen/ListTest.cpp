// The pop-up lists by pointer, by key and as screen readers see them.

#include <QAccessible>
#include <QApplication>
#include <QHelpEvent>
#include <QTest>
#include <QToolTip>
#include <QWindow>

#include <gmock/gmock.h>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Kit/Widgets/LXMenulist.h"
#include "Tests/Support/EditorTest.h"
#include "View/Screen/ControlFactory.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class Entry final : public LXMenuData {
 public:
  Entry(const std::string& title, bool isLineAfter) : m_isLineAfter(isLineAfter) {
    setTitleStr(title);
  }
  bool isLineAfter() const override { return m_isLineAfter; }

 private:
  bool m_isLineAfter;
};

class List : public ViewTest, public LXMenulistDelegate {
 protected:
  void SetUp() override {
    start();
    window().move(0, 0);
    window().activateWindow();
    // The opener of the profile list stands here; its own action opens this list instead.
    opener().setAction(
        [this](LXButton& sender) { NerinAction::showMenulistWithBtn(sender, m_list.get()); });
  }
  void TearDown() override { m_list.reset(); }

  void onMenulistSelected(LXMenulist& /*list*/, const std::shared_ptr<LXTreeNode>& node) override {
    m_chosenTitles.push_back(node->nodeData()->titleStr());
  }

  static std::shared_ptr<LXTreeNode> entries(const std::vector<std::string>& titles,
                                             const std::string& lineAfter = {}) {
    auto root = std::make_shared<LXTreeNode>();
    for (const auto& title : titles) {
      root->addChild(std::make_shared<Entry>(title, title == lineAfter));
    }
    return root;
  }
  LXButton& opener() { return button("currProfileBtn"); }
  // Opens a list of these entries by a click on its opener, which shows the current choice.
  LXMenulist& open(const std::vector<std::string>& titles, const char* current) {
    NerinAction::refreshMenuListData(m_list, this, entries(titles), 188);
    opener().setTitle(QString::fromUtf8(current));
    clickThroughWindow(opener());
    return *m_list;
  }
  // As the user hits it: the open list has the keyboard.
  void hit(Qt::Key key) {
    QTest::keyClick(m_list->windowHandle(), key);
    process();
  }
  void type(const char* text) {
    for (const char* one = text; *one != '\0'; ++one) {
      QTest::keyClick(m_list->windowHandle(), *one);
    }
    process();
  }
  // The titles that are not filtered out.
  std::vector<std::string> shown() const {
    std::vector<std::string> titles;
    for (int row = 0; row < m_list->count(); ++row) {
      if (!m_list->isRowHidden(row)) {
        titles.push_back(m_list->item(row)->text().toStdString());
      }
    }
    return titles;
  }
  std::string current() const {
    return m_list->currentItem() != nullptr ? m_list->currentItem()->text().toStdString() : "";
  }
  // The tooltip of the place in the widget.
  static std::string tipAt(QWidget& widget, const QPoint& place) {
    QToolTip::showText({}, {});
    QHelpEvent help(QEvent::ToolTip, place, widget.mapToGlobal(place));
    QApplication::sendEvent(&widget, &help);
    return QToolTip::text().toStdString();
  }

  std::unique_ptr<LXMenulist> m_list;
  std::vector<std::string> m_chosenTitles;
};

}  // namespace

TEST_F(List, OpensOnTheCurrentChoiceAndReturnChoosesItAgain) {
  LXMenulist& list = open({"one", "two", "three"}, "two");
  ASSERT_TRUE(list.isShowMenu());
  EXPECT_EQ(current(), "two");
  EXPECT_TRUE(list.item(1)->isSelected());
  EXPECT_TRUE(list.hasFocus());
  hit(Qt::Key_Return);
  EXPECT_FALSE(list.isShowMenu());
  EXPECT_THAT(m_chosenTitles, ElementsAre("two"));
}

TEST_F(List, AListWhoseChoicesLoadKeepsTheCurrentOne) {
  NerinAction::refreshMenuListData(m_list, this, entries({"one", "two"}), 188);
  m_list->setReturnKeeps(true);
  open({"one", "two"}, "two");
  hit(Qt::Key_Return);
  EXPECT_FALSE(m_list->isShowMenu());
  EXPECT_THAT(m_chosenTitles, IsEmpty());
  open({"one", "two"}, "two");
  hit(Qt::Key_Up);
  hit(Qt::Key_Return);
  EXPECT_THAT(m_chosenTitles, ElementsAre("one"));
}

TEST_F(List, WithoutACurrentChoiceReturnChoosesNothingAndTheArrowsBegin) {
  open({"one", "two", "three"}, "");
  EXPECT_EQ(current(), "");
  hit(Qt::Key_Return);
  EXPECT_TRUE(m_list->isShowMenu());
  EXPECT_THAT(m_chosenTitles, IsEmpty());
  hit(Qt::Key_Down);
  EXPECT_EQ(current(), "one");
  hit(Qt::Key_Down);
  EXPECT_EQ(current(), "two");
  hit(Qt::Key_Escape);
  open({"one", "two", "three"}, "");
  hit(Qt::Key_Up);
  EXPECT_EQ(current(), "three");
}

TEST_F(List, ASecondClickOnTheOpenerClosesIt) {
  open({"one", "two"}, "two");
  clickThroughWindow(opener());
  EXPECT_FALSE(m_list->isShowMenu());
  EXPECT_THAT(m_chosenTitles, IsEmpty());
  clickThroughWindow(opener());
  EXPECT_TRUE(m_list->isShowMenu());
}

TEST_F(List, PressingTheOpenerAgainByAScreenReaderClosesIt) {
  open({"one", "two"}, "two");
  opener().click();
  EXPECT_FALSE(m_list->isShowMenu());
}

TEST_F(List, AClickBesideClosesIt) {
  open({"one", "two"}, "two");
  // The press closes the list, before the user lets go.
  QWindow* main = window().windowHandle();
  LXButton& beside = button("goRightBtn");
  const QPoint place = beside.mapTo(&window(), beside.rect().center());
  QTest::mousePress(main, Qt::LeftButton, {}, place);
  process();
  EXPECT_FALSE(m_list->isShowMenu());
  QTest::mouseRelease(main, Qt::LeftButton, {}, place);
  process();
  EXPECT_THAT(m_chosenTitles, IsEmpty());
}

TEST_F(List, TypingLeavesTheEntriesThatHoldTheWords) {
  open({"Volume up", "Next track", "Mute", "Volume down", "Move up"}, "Mute");
  const int full = m_list->height();
  type("up");
  EXPECT_THAT(shown(), ElementsAre("Volume up", "Move up"));
  EXPECT_EQ(current(), "Volume up");
  EXPECT_LT(m_list->height(), full);
  auto* label = m_list->findChild<QWidget*>(QStringLiteral("filterLbl"));
  EXPECT_TRUE(label->isVisible());
  hit(Qt::Key_Down);
  EXPECT_EQ(current(), "Move up");
  hit(Qt::Key_Backspace);
  EXPECT_THAT(shown(), ElementsAre("Volume up", "Mute", "Volume down", "Move up"));
  hit(Qt::Key_Escape);
  EXPECT_TRUE(m_list->isShowMenu());
  EXPECT_EQ(shown().size(), 5U);
  EXPECT_EQ(current(), "Mute");
  EXPECT_FALSE(label->isVisible());
  type("volume d");
  hit(Qt::Key_Return);
  EXPECT_THAT(m_chosenTitles, ElementsAre("Volume down"));
  open({"Volume up", "Next track"}, "Next track");
  EXPECT_EQ(shown().size(), 2U);
}

TEST_F(List, AnEntryThatBeginsWithTheWordsComesFirst) {
  open({"Move up", "Up arrow"}, "");
  type("up");
  EXPECT_EQ(current(), "Up arrow");
}

TEST_F(List, SaysWhenNothingMatches) {
  open({"one", "two"}, "two");
  type("x");
  EXPECT_EQ(m_list->note(), "No entry matches");
  hit(Qt::Key_Return);
  EXPECT_TRUE(m_list->isShowMenu());
  EXPECT_THAT(m_chosenTitles, IsEmpty());
  hit(Qt::Key_Escape);
  EXPECT_EQ(m_list->note(), "");
  hit(Qt::Key_Escape);
  EXPECT_FALSE(m_list->isShowMenu());
}

TEST_F(List, AnEmptyOneOpensAndSaysWhatToDo) {
  NerinAction::refreshMenuListData(m_list, this, entries({}), 188);
  m_list->setEmptyText(QStringLiteral("No macros yet. Make one in the macro editor."));
  open({}, "");
  ASSERT_TRUE(m_list->isShowMenu());
  EXPECT_EQ(m_list->note(), "No macros yet. Make one in the macro editor.");
  const QImage drawn = m_list->viewport()->grab().toImage();
  int lit = 0;
  for (int y = 0; y < drawn.height(); ++y) {
    for (int x = 0; x < drawn.width(); ++x) {
      lit += drawn.pixelColor(x, y).lightness() > 150 ? 1 : 0;
    }
  }
  EXPECT_GT(lit, 100);
  auto* read = QAccessible::queryAccessibleInterface(m_list.get());
  EXPECT_THAT(read->text(QAccessible::Description).toStdString(), HasSubstr("macro editor"));
  hit(Qt::Key_Return);
  hit(Qt::Key_Escape);
  EXPECT_FALSE(m_list->isShowMenu());
  EXPECT_THAT(m_chosenTitles, IsEmpty());
}

TEST_F(List, DrawsALineAfterAnEntryThatNeedsOne) {
  NerinAction::refreshMenuListData(m_list, this, entries({"one", "two", "three"}, "two"), 188);
  m_list->showMenulist({0, 0}, 0);
  const QImage drawn = m_list->viewport()->grab().toImage();
  const auto under = [&](int row) {
    const QRect place = m_list->visualItemRect(m_list->item(row));
    return drawn.pixelColor(place.center().x(), place.bottom());
  };
  EXPECT_EQ(under(1), QColor(0x5A, 0x62, 0x70));
  EXPECT_NE(under(0), under(1));
  EXPECT_NE(under(2), under(1));
}

TEST_F(List, TheCatalogueAsksForItsLines) {
  int lines = 0;
  for (const auto& child : NerinAction::functionMenus->singleMenuNode->children()) {
    lines += child->nodeData()->isLineAfter() ? 1 : 0;
  }
  EXPECT_GT(lines, 0);
}

TEST_F(List, ATooltipOnlyCompletesTextThatIsCut) {
  open({"short", "<b>A very long name</b> of a macro that nobody can read here"}, "short");
  const auto tip = [&](int row) {
    return tipAt(*m_list->viewport(), m_list->visualItemRect(m_list->item(row)).center());
  };
  EXPECT_EQ(tip(0), "");
  // As Qt shows it: the marks are letters.
  EXPECT_THAT(tip(1), HasSubstr("&lt;b&gt;A"));
  hit(Qt::Key_Escape);
  LXButton& caption = button("leftClickBtn");
  caption.setTitle(QStringLiteral("Left"));
  caption.setToolTip(QStringLiteral("Left"));
  EXPECT_EQ(tipAt(caption, {5, 5}), "");
  const QString cut =
      QStringLiteral("A very long name of a macro, <i>much</i> too long for its button");
  caption.setTitle(cut);
  caption.setToolTip(cut);
  EXPECT_THAT(tipAt(caption, {5, 5}), HasSubstr("&lt;i&gt;"));
  EXPECT_EQ(tipAt(button("applyBtn"), {5, 5}), "Apply");
}

TEST_F(List, TheFocusReturnsToTheOpenerAndIsShown) {
  opener().showFocus();
  QTest::keyClick(window().windowHandle(), Qt::Key_Return);
  NerinAction::refreshMenuListData(m_list, this, entries({"one", "two"}), 188);
  QTest::keyClick(window().windowHandle(), Qt::Key_Return);
  process();
  ASSERT_TRUE(m_list->isShowMenu());
  hit(Qt::Key_Escape);
  EXPECT_EQ(QApplication::focusWidget(), &opener());
  EXPECT_FALSE(opener().isFocusFromPointer());
}

TEST_F(List, FilledAnewWhileOpenItKeepsItsCurrentEntry) {
  open({"one", "two"}, "two");
  m_list->setMenuNode(entries({"zero", "one", "two"}));
  EXPECT_EQ(current(), "two");
  EXPECT_EQ(m_list->height(), 3 * 28 + 2);
}
