// What would Apply change? And undo and redo, in the window.

#include <QAccessible>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

#include <gmock/gmock.h>

#include "Action/Edit/Drafts.h"
#include "Kit/Widgets/LXProgressBar.h"
#include "Kit/Widgets/LXTextField.h"
#include "Tests/Support/ViewTest.h"
#include "View/Main/ChangesList.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class WindowChanges : public ViewTest {
 protected:
  void SetUp() override {
    start();
    m_lift = editState->selProfile().liftHeight;
  }

  void lift(std::uint32_t height) {
    editState->edit().liftHeight = height;
    view().refreshApplyBtn();
  }
  void disable(std::size_t index) {
    editState->edit().btnInfo[index] = ActionTest::button(255, {}, ButtonTypeDisabled);
    view().fillBtnCaption(static_cast<int>(index));
    view().refreshApplyBtn();
  }
  static std::uint32_t lift() { return editState->selProfile().liftHeight; }

  ChangesList& list() { return *view().findChild<ChangesList*>(); }
  QPushButton& arrow() { return *view().findChild<QPushButton*>(QStringLiteral("changesBtn")); }
  QPushButton* takeBackBtn(int row) {
    return list().findChild<QPushButton*>(QStringLiteral("takeBack%1").arg(row));
  }
  std::vector<std::string> rows() {
    std::vector<std::string> words;
    for (int row = 1;; ++row) {
      const auto* line = list().findChild<QWidget*>(QStringLiteral("change%1").arg(row));
      if (line == nullptr) {
        return words;
      }
      words.push_back(line->accessibleName().toStdString());
    }
  }
  // As the window system sends it to an open pop-up.
  void hit(Qt::Key key) {
    QWidget* focused = list().focusWidget();
    QTest::keyClick(focused != nullptr ? focused : &list(), key);
    process();
  }
  void keys(QKeySequence sequence) {
    QWidget* target = QApplication::focusWidget();
    ASSERT_NE(target, nullptr);
    QTest::keySequence(target, sequence);
    process();
  }
  void undo() { keys(QKeySequence(Qt::CTRL | Qt::Key_Z)); }
  void redo() { keys(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)); }
  void activate() {
    window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
  }

  std::uint32_t m_lift = 0;
};

TEST_F(WindowChanges, AreListedByARightClickOnApply) {
  lift(9);
  disable(3);
  clickThroughWindow(button("applyBtn"), Qt::RightButton);
  ASSERT_TRUE(list().isOpen());
  const auto words = rows();
  ASSERT_EQ(words.size(), 2U);
  EXPECT_EQ(words[0], "Lift-off height: 9 instead of " + std::to_string(m_lift));
  EXPECT_THAT(words[1], StartsWith("Thumb button 2: Disable instead of "));
  EXPECT_TRUE(editState->isNeedSave()) << "nothing is applied by it";
}

TEST_F(WindowChanges, OfATrialAreThatApplyGivesTheMouseTheProfilesOwnLevels) {
  lift(9);
  click("applyBtn");
  ASSERT_FALSE(button("applyBtn").isEnabled());
  const auto held = [this] {
    const auto image = mouse().imageReport(mouse().activeSlot());
    return Bytes(image.begin(), image.end());
  };
  const auto applied = held();
  click("preformanceBtn");
  const auto childButton = [this](const char* name) {
    return child()->findChild<LXButton*>(QString::fromLatin1(name));
  };
  auto* slider = child()->findChild<LXProgressBar*>(QStringLiteral("dpiPro"));
  QTest::keyClick(slider, Qt::Key_Right);
  clickThroughWindow(*childButton("applyBtn"));
  clickThroughWindow(*childButton("cancelBtn"));
  ASSERT_EQ(child(), nullptr);
  EXPECT_EQ(status(),
            "The mouse keeps the DPI settings you tried. Apply gives it the profile's own.");
  EXPECT_NE(held(), applied);
  ASSERT_TRUE(button("applyBtn").isEnabled());
  clickThroughWindow(arrow());
  EXPECT_THAT(rows(), testing::IsEmpty());
  QStringList shown;
  for (const QLabel* label : list().findChildren<QLabel*>()) {
    shown.append(label->text());
  }
  EXPECT_TRUE(shown.contains(
      QStringLiteral("Nothing is changed, but the mouse may have other settings. Apply writes "
                     "these again.")))
      << shown.join(u'|').toStdString();
  hit(Qt::Key_Escape);
  clickThroughWindow(button("applyBtn"));
  EXPECT_EQ(held(), applied);
  EXPECT_FALSE(button("applyBtn").isEnabled());
  EXPECT_FALSE(NerinAction::hasDraft(0));
}

TEST_F(WindowChanges, AreListedByTheArrowBesideApply) {
  EXPECT_FALSE(arrow().isEnabled());
  lift(9);
  EXPECT_TRUE(arrow().isEnabled());
  clickThroughWindow(arrow());
  EXPECT_TRUE(list().isOpen());
  EXPECT_EQ(arrow().accessibleName(), QStringLiteral("What would Apply change?"));
  const QRect apply(button("applyBtn").mapToGlobal(QPoint()), button("applyBtn").size());
  EXPECT_LE(list().geometry().bottom(), apply.top());
  hit(Qt::Key_Escape);
  EXPECT_FALSE(list().isOpen());
}

TEST_F(WindowChanges, AreListedByKey) {
  lift(9);
  activate();
  for (const QKeySequence& sequence :
       {QKeySequence(Qt::Key_Menu), QKeySequence(Qt::SHIFT | Qt::Key_F10)}) {
    button("applyBtn").setFocus();
    keys(sequence);
    EXPECT_TRUE(list().isOpen()) << sequence.toString().toStdString();
    list().hide();
  }
  button("reDefBtn").setFocus();
  keys(QKeySequence(Qt::Key_Menu));
  EXPECT_FALSE(list().isOpen());
}

TEST_F(WindowChanges, AreTakenBackOneByOneByPointer) {
  const std::string caption = button("bomBtn2").title().toStdString();
  lift(9);
  disable(3);
  EXPECT_EQ(button("bomBtn2").title(), QStringLiteral("Disable"));
  view().showChanges();
  clickThroughWindow(*takeBackBtn(2));
  EXPECT_EQ(button("bomBtn2").title().toStdString(), caption);
  EXPECT_EQ(lift(), 9U);
  EXPECT_THAT(rows(), testing::SizeIs(1));
  EXPECT_TRUE(button("applyBtn").isEnabled());
  clickThroughWindow(*takeBackBtn(1));
  EXPECT_EQ(lift(), m_lift);
  EXPECT_FALSE(list().isOpen());
  EXPECT_FALSE(button("applyBtn").isEnabled());
  EXPECT_FALSE(NerinAction::hasDraft(0));
}

TEST_F(WindowChanges, AreTakenBackByKeyAndTheFocusStays) {
  lift(9);
  disable(3);
  disable(4);
  activate();
  button("applyBtn").setFocus();
  keys(QKeySequence(Qt::Key_Menu));
  ASSERT_EQ(list().focusWidget(), takeBackBtn(1));
  hit(Qt::Key_Down);
  hit(Qt::Key_Down);
  ASSERT_EQ(list().focusWidget(), takeBackBtn(3));
  hit(Qt::Key_Return);
  EXPECT_THAT(rows(), testing::SizeIs(2));
  ASSERT_EQ(list().focusWidget(), takeBackBtn(2));
  hit(Qt::Key_Space);
  EXPECT_THAT(rows(), ElementsAre(StartsWith("Lift-off height")));
  undo();
  EXPECT_THAT(rows(), testing::SizeIs(1)) << "the list has the keyboard";
  hit(Qt::Key_Return);
  EXPECT_FALSE(list().isOpen());
  EXPECT_TRUE(button("profile1Btn").hasFocus());
}

TEST_F(WindowChanges, AHeldReturnTakesOneBack) {
  lift(9);
  disable(3);
  view().showChanges();
  QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), true);
  QApplication::sendEvent(&list(), &held);
  process();
  EXPECT_THAT(rows(), testing::SizeIs(2));
}

TEST_F(WindowChanges, FitTheirListInEveryLanguage) {
  for (const char* language : {"en", "de", "fr", "es", "it", "pt-BR", "ru", "ja", "ko"}) {
    destroyWindow();
    process();
    endProgram();
    setPreferredLanguage(language);
    start();
    editState->edit().liftHeight = 4;
    view().showChanges();
    process();
    const auto* bar = list().findChild<QScrollArea*>()->horizontalScrollBar();
    EXPECT_EQ(bar->maximum(), 0) << language;
    EXPECT_EQ(bar->value(), 0) << language;
    list().hide();
  }
}

TEST_F(WindowChanges, SayTheNameTheLevelsTheLightsAndTheProgram) {
  _Nerin_PROFILE profile = editState->selProfile();
  profile.dpiLevel = 2;
  profile.currSelectDPI = 0;
  profile.poRate = 1;
  profile.modeType = 1;
  profile.lightColorArr[0] = {255, 0, 0};
  editState->take(profile);
  editState->settle();
  profile.dpiLevel = 3;
  profile.xSensArr[2] = 20;
  profile.ySensArr[2] = 40;
  profile.poRate = 3;
  profile.modeType = 0;
  profile.lightColorArr[0] = {0, 0, 255};
  addMacro(900, "<b>Heal</b>");
  profile.btnInfo[2] = macroButton(900, 2, 5);
  editState->take(profile);
  library().setCurrActivePath("/usr/bin/game");
  library().setCurrIsActive(true);
  const std::string name = shownName();
  library().setCurrFWProfileName("Play");
  view().refreshApplyBtn();
  view().showChanges();
  const auto words = rows();
  ASSERT_EQ(words.size(), 7U);
  EXPECT_EQ(words[0], "Profile name: Play instead of " + name);
  EXPECT_EQ(words[1], "Report rate: 1000 Hz instead of 250 Hz");
  EXPECT_EQ(words[2], "LED mode: Normal instead of Battle");
  EXPECT_EQ(words[3], "LED: Wheel: #0000ff instead of #ff0000");
  EXPECT_EQ(words[4], "DPI level 3: 1000 × 2000 instead of not in use");
  EXPECT_THAT(words[5], StartsWith("Wheel button: <b>Heal</b>, Repeat by Count ×5 instead of "));
  EXPECT_EQ(words[6], "Link to program: game instead of –");
  for (const QLabel* label : list().findChildren<QLabel*>()) {
    EXPECT_EQ(label->textFormat() == Qt::PlainText || label->text().isEmpty(), true);
  }
}

TEST_F(WindowChanges, SayThatAButtonIsStoredDifferently) {
  editState->edit().btnInfo[0].KeyBit[3] ^= 1U;
  view().refreshApplyBtn();
  view().showChanges();
  EXPECT_THAT(rows(), ElementsAre(HasSubstr("(changed)")));
}

TEST_F(WindowChanges, SayWhyThereAreNone) {
  const auto said = [this] {
    view().showChanges();
    return list().findChild<QLabel*>(QStringLiteral("noChange"))->text().toStdString();
  };
  editState->raiseNeedSave();
  view().refreshApplyBtn();
  EXPECT_EQ(said(), "Nothing is changed");
  list().hide();
  mouse().clearSlot(4);
  chooseSlot(5);
  lift(9);
  EXPECT_THAT(said(), StartsWith("This slot is empty"));
}

TEST_F(WindowChanges, AreInTheLanguageOfTheUser) {
  setPreferredLanguage("de");
  startAgain();
  setPreferredLanguage("de");
  endProgram();
  setPreferredLanguage("de");
  start();
  disable(3);
  view().showChanges();
  EXPECT_THAT(rows(), ElementsAre(HasSubstr(" statt ")));
  EXPECT_EQ(takeBackBtn(1)->text(), QStringLiteral("Zurücknehmen"));
}

TEST_F(WindowChanges, TheOpenListStandsInTheTreeOfAScreenReader) {
  lift(m_lift + 1);
  auto* apply = QAccessible::queryAccessibleInterface(&button("applyBtn"));
  EXPECT_EQ(apply->childCount(), 0);
  arrow().click();
  ASSERT_EQ(apply->childCount(), 1);
  EXPECT_EQ(apply->child(0)->object(), &list());
  hit(Qt::Key_Escape);
  EXPECT_EQ(apply->childCount(), 0);
}

TEST_F(WindowChanges, ADifferenceCanBeReadByScreenReaders) {
  lift(9);
  view().showChanges();
  QAccessibleInterface* read = QAccessible::queryAccessibleInterface(takeBackBtn(1));
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->role(), QAccessible::Button);
  EXPECT_EQ(read->text(QAccessible::Name),
            QStringLiteral("Take back: Lift-off height: 9 instead of %1").arg(m_lift));
  read->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_TRUE(QTest::qWaitFor([this] { return lift() == m_lift; }));
}

TEST_F(WindowChanges, ManyOfThemScroll) {
  for (std::size_t index = 2; index < buttonCount; ++index) {
    disable(index);
  }
  view().showChanges();
  const int count = static_cast<int>(rows().size());
  EXPECT_GT(count, 10);
  EXPECT_LT(list().height(), view().height());
  hit(Qt::Key_Up);
  const QWidget* last = takeBackBtn(count);
  EXPECT_EQ(list().focusWidget(), last);
  EXPECT_TRUE(list().rect().contains(QRect(last->mapTo(&list(), QPoint()), last->size())));
}

TEST_F(WindowChanges, UndoAndRedoByKey) {
  const QString caption = button("bomBtn2").title();
  activate();
  button("profile1Btn").setFocus();
  lift(9);
  disable(3);
  undo();
  EXPECT_EQ(button("bomBtn2").title(), caption);
  EXPECT_EQ(status(), "Undone: Thumb button 2");
  EXPECT_TRUE(button("applyBtn").isEnabled());
  undo();
  EXPECT_EQ(lift(), m_lift);
  EXPECT_FALSE(button("applyBtn").isEnabled());
  undo();
  EXPECT_EQ(lift(), m_lift);
  redo();
  EXPECT_EQ(status(), "Done again: Lift-off height");
  redo();
  EXPECT_EQ(button("bomBtn2").title(), QStringLiteral("Disable"));
  EXPECT_TRUE(button("applyBtn").isEnabled());
}

TEST_F(WindowChanges, UndoCanBeUndoneByPointer) {
  lift(9);
  view().undoEdit();
  takeOffer();
  EXPECT_EQ(lift(), 9U);
  takeOffer();
  EXPECT_EQ(lift(), m_lift);
}

TEST_F(WindowChanges, UndoOfAModeSendsItAgain) {
  click("battleModeBtn");
  EXPECT_EQ(editState->selProfile().modeType, 1U);
  clearTrace();
  view().undoEdit();
  EXPECT_EQ(editState->selProfile().modeType, 0U);
  EXPECT_FALSE(sent().empty());
  EXPECT_TRUE(button("normalModeBtn").isChecked() || button("normalModeBtn").isStepItem());
  EXPECT_TRUE(m_asked.size() == 1) << "the question about the Battle mode came once";
  clearTrace();
  view().redoEdit();
  EXPECT_EQ(editState->selProfile().modeType, 1U);
  EXPECT_FALSE(sent().empty());
  EXPECT_TRUE(m_asked.size() == 1);
  clearTrace();
  lift(9);
  view().undoEdit();
  EXPECT_TRUE(sent().empty()) << "the same mode";
}

TEST_F(WindowChanges, UndoOfAModeSaysThatTheMouseDidNotTakeIt) {
  click("battleModeBtn");
  mouse().setScenario({.kind = MouseScenario::Kind::UnpluggedAfter, .transfers = 0});
  view().undoEdit();
  EXPECT_THAT(status(), HasSubstr("did not take"));
  EXPECT_EQ(editState->selProfile().modeType, 0U);
}

TEST_F(WindowChanges, UndoReachesANewProfileAndALink) {
  chooseSlot(2);
  click("profileNewBtn");
  const std::string made = shownName();
  click("linkProChk");
  view().undoEdit();
  EXPECT_FALSE(button("linkProChk").isChecked());
  EXPECT_EQ(shownName(), made);
  view().undoEdit();
  EXPECT_NE(shownName(), made);
  EXPECT_FALSE(button("applyBtn").isEnabled());
  view().redoEdit();
  EXPECT_EQ(shownName(), made);
}

TEST_F(WindowChanges, UndoInTheNameFieldIsThatOfTheField) {
  lift(9);
  activate();
  nameField().setFocus();
  nameField().selectAll();
  QTest::keyClicks(&nameField(), QStringLiteral("Ab"));
  undo();
  EXPECT_EQ(lift(), 9U);
  EXPECT_NE(shownName(), "Ab");
}

TEST_F(WindowChanges, UndoWaitsForAChildWindow) {
  lift(9);
  view().showLightView();
  view().undoEdit();
  view().showChanges();
  EXPECT_EQ(lift(), 9U);
  EXPECT_FALSE(list().isOpen());
  child()->close();
  process();
  view().undoEdit();
  EXPECT_EQ(lift(), m_lift);
}

TEST_F(WindowChanges, UndoOfSomethingThatWasTriedIsStillToBeApplied) {
  view().showLightView();
  editState->currSetProfile().lightColorArr[0] = {1, 2, 3};
  child()->findChild<LXButton*>(QStringLiteral("applyBtn"))->click();
  child()->findChild<LXButton*>(QStringLiteral("okBtn"))->click();
  process();
  EXPECT_TRUE(button("applyBtn").isEnabled());
  view().undoEdit();
  EXPECT_TRUE(button("applyBtn").isEnabled()) << "the mouse shows the tried color";
  click("applyBtn");
  EXPECT_FALSE(button("applyBtn").isEnabled());
}

TEST_F(WindowChanges, UndoEndsAtTheSlot) {
  lift(9);
  mouse().pressSlotButton(4);
  report(1, 4);
  view().undoEdit();
  EXPECT_TRUE(NerinAction::hasDraft(0));
  EXPECT_EQ(library().currFWProfileIndex(), 4);
  EXPECT_FALSE(editState->isEdited());
}

TEST_F(WindowChanges, AreSeenInTheLightsOfTheDrawings) {
  const auto seen = [this](const char* map) {
    return view().findChild<QWidget*>(QString::fromLatin1(map))->grab().toImage();
  };
  const auto has = [](const QImage& picture, const QColor& color) {
    for (int y = 0; y < picture.height(); ++y) {
      for (int x = 0; x < picture.width(); ++x) {
        if (picture.pixelColor(x, y) == color) {
          return true;
        }
      }
    }
    return false;
  };
  const QImage before = seen("subView1");
  const QColor logo(1, 250, 60);
  const QColor side(251, 2, 255);
  EXPECT_FALSE(has(before, logo));
  editState->edit().lightColorArr[2] = {1, 250, 60};
  editState->edit().lightColorArr[3] = {251, 2, 255};
  view().refreshApplyBtn();
  EXPECT_TRUE(has(seen("subView1"), logo));
  EXPECT_TRUE(has(seen("subView1"), side));
  EXPECT_TRUE(has(seen("subView2"), side));
  const QImage normal = seen("subView1");
  click("battleModeBtn");
  EXPECT_NE(seen("subView1"), normal) << "the Battle mode has a look of its own";
  view().undoEdit();
  EXPECT_EQ(seen("subView1"), normal);
  view().undoEdit();
  EXPECT_EQ(seen("subView1"), before);
}

}  // namespace
