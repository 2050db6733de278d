// Assigning a macro to a button, and its repeat mode.

#include <QElapsedTimer>
#include <QLabel>
#include <QTest>

#include <gmock/gmock.h>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Kit/Widgets/LXMenulist.h"
#include "Kit/Widgets/LXNumberTextField.h"
#include "Tests/Support/EditorTest.h"
#include "View/Assign/SubTKeyView.h"
#include "View/Assign/TkeyRepeatView.h"
#include "View/Macros/MacroMenulist.h"
#include "View/Windows/LocalNotifications.h"
#include "View/Windows/ModalWindow.h"
#include "View/Windows/StatusLine.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class MacroAssign : public AssignTest {
 protected:
  MacroAssign() {
    addMacro(5, "Five", {{0, 0, 10}, {0, 1, 0}});
    addMacro(6, "dmr_fw_macro_tag_6");
    addMacro(7, "Seven");
  }
  SubTKeyView& sub() { return part<SubTKeyView>("tkeyView"); }
  LXButton& in(const char* name) { return partOf<LXButton>(sub(), name); }
  std::string macroTitle() { return in("tkeySelBtn").title().toStdString(); }
  std::string repeatTitle() { return in("repeatSelBtn").title().toStdString(); }
  void chooseMacro(const char* title) { chooseIn(in("tkeySelBtn"), title); }
  void chooseRepeat(const char* title) { chooseIn(in("repeatSelBtn"), title); }
  static _BTN_INFO full(std::uint32_t type, std::uint32_t code) {
    _BTN_INFO info = button(code, {11, 12, 13, 14}, type);
    setText(info.app_path, "/opt/tool.app");
    info.MacroID = 99;
    return info;
  }
  LXTextField& note() { return partOf<LXTextField>(sub(), "noteTxt"); }
  LXTextField& countShown() { return partOf<LXTextField>(sub(), "countTxt"); }
  // The status line of the panel, which all share.
  std::string said() { return part<QLabel>("statusText").text().toStdString(); }
  static void endSaying() { statusline::clear(); }
  static LXNumberTextField& count(TkeyRepeatView& dialog) {
    return partOf<LXNumberTextField>(dialog, "repeatEdt");
  }
  static void pressIn(TkeyRepeatView& dialog, const char* name) {
    clickThroughWindow(partOf<LXButton>(dialog, name));
  }
  // Opens the dialog for the count and answers it.
  void ask(std::function<void(LXNoTitleWindow&, TkeyRepeatView&)> answer) {
    const int before = modals();
    onModal<TkeyRepeatView>(std::move(answer));
    chooseRepeat("Repeat by Count");
    EXPECT_TRUE(waitFor([&] { return modals() > before && !sub().isShowSubMode(); }));
  }
};

}  // namespace

TEST_F(MacroAssign, ItsControlsHaveTheirTagsAndTexts) {
  openPanel(3, macroButton(5));
  EXPECT_EQ(in("tkeySelBtn").tag(), 280);
  EXPECT_EQ(in("tkeySelBtn").toolTip(), "Select a macro");
  EXPECT_EQ(in("repeatSelBtn").tag(), 281);
  EXPECT_EQ(in("repeatSelBtn").toolTip(), "");
  EXPECT_EQ(in("repeatSelBtn").accessibleName(), "Repeat");
  EXPECT_THAT(
      titlesOf(*sub().repeatList()),
      ElementsAre("Play Once", "Repeat by Count", "Repeat While Pressed", "Repeat Until Stopped"));
}

TEST_F(MacroAssign, OpensOnTheStoredMacro) {
  openPanel(3, macroButton(5, 2, 17));
  EXPECT_EQ(sub().selMacroInfo(), NerinAction::getMacroById(5));
  EXPECT_EQ(macroTitle(), "Five");
  EXPECT_EQ(repeatTitle(), "Repeat by Count");
  EXPECT_EQ(sub().macroType(), 2U);
  EXPECT_EQ(sub().macroCount(), 17U);
}

TEST_F(MacroAssign, AMacroReadFromTheMouseHasAPlainName) {
  openPanel(3, macroButton(6));
  EXPECT_EQ(macroTitle(), "Macro Key");
  EXPECT_EQ(sub().selMacroInfo()->macroId(), 6);
}

TEST_F(MacroAssign, AMacroThatIsChosenHasAPlainNameToo) {
  openPanel(3, full(2, 6));
  chooseMacro("Macro Key");
  EXPECT_EQ(macroTitle(), "Macro Key");
  EXPECT_EQ(sub().selMacroInfo()->macroId(), 6);
}

TEST_F(MacroAssign, AMacroThatIsGoneHasNoTitle) {
  openPanel(3, macroButton(77, 4));
  EXPECT_EQ(sub().selMacroInfo(), nullptr);
  EXPECT_EQ(macroTitle(), "");
  EXPECT_EQ(repeatTitle(), "Repeat Until Stopped");
}

TEST_F(MacroAssign, AnUnknownRepeatModeHasNoTitle) {
  for (const std::uint32_t mode : {0U, 5U, 0xFFFFFFFFU}) {
    openPanel(3, macroButton(5, mode, 3));
    EXPECT_EQ(repeatTitle(), "") << mode;
    EXPECT_EQ(sub().macroType(), mode);
  }
}

TEST_F(MacroAssign, AnotherFunctionOpensWithNothingChosen) {
  openPanel(3, full(2, 1));
  EXPECT_EQ(sub().selMacroInfo(), nullptr);
  EXPECT_EQ(macroTitle(), "");
  EXPECT_EQ(repeatTitle(), "");
  EXPECT_EQ(sub().macroType(), 0U);
  EXPECT_EQ(sub().macroCount(), 0U);
}

TEST_F(MacroAssign, TheFirstMacroPlaysOnceUnlessAskedOtherwise) {
  openPanel(3, full(2, 1));
  chooseMacro("Seven");
  EXPECT_EQ(macroTitle(), "Seven");
  EXPECT_EQ(repeatTitle(), "Play Once");
  EXPECT_EQ(sub().macroType(), 1U);
  chooseRepeat("Repeat While Pressed");
  chooseMacro("Five");
  EXPECT_EQ(repeatTitle(), "Repeat While Pressed");
  EXPECT_EQ(sub().macroType(), 3U);
}

TEST_F(MacroAssign, EveryRepeatModeIsStoredWithTheMacro) {
  struct Row {
    const char* title;
    std::uint32_t mode;
  };
  for (const Row& row :
       {Row{"Play Once", 1}, {"Repeat While Pressed", 3}, {"Repeat Until Stopped", 4}}) {
    openPanel(3, full(5, 15));
    chooseType("Macro Key");
    chooseMacro("Five");
    chooseRepeat(row.title);
    EXPECT_EQ(repeatTitle(), row.title);
    press("okBtn");
    _BTN_INFO expected = full(2, 6);
    expected.KeyBit[0] = row.mode;
    expected.KeyBit[1] = 0;
    expected.MacroID = 5;
    EXPECT_TRUE(isSame(stored(), expected)) << row.title;
  }
  EXPECT_EQ(modals(), 0);
}

TEST_F(MacroAssign, WithoutAMacroItsNumberIsZero) {
  openPanel(3, full(2, 1));
  press("okBtn");
  EXPECT_EQ(stored().MacroID, 0U);
  EXPECT_EQ(stored().FuncID, 6U);
  EXPECT_EQ(stored().FuncTableId, 6U);
  EXPECT_EQ(stored().KeyBit[0], 0U);
  EXPECT_EQ(stored().KeyBit[1], 0U);
  EXPECT_EQ(stored().KeyBit[2], 13U);
  EXPECT_EQ(stored().KeyBit[3], 14U);
}

TEST_F(MacroAssign, ApplyWritesTheMacroAndThenTheButton) {
  openPanel(14, full(2, 1));
  chooseMacro("Five");
  chooseRepeat("Repeat Until Stopped");
  press("applyBtn");
  ASSERT_EQ(sent().size(), 3U);
  EXPECT_EQ(sent()[0], "SET 0300 0 c40b110100000000");
  EXPECT_THAT(sent()[1], testing::StartsWith("SET 0304 1 040011"));
  EXPECT_EQ(sent()[2], buttonCommand(14, "0604000d0e"));
  EXPECT_EQ(mouse().macroReport(17)[0], 0xB0);
  EXPECT_THAT(mouse().faults(), IsEmpty());
}

TEST_F(MacroAssign, ApplyOfAMacroThatIsGoneDisablesTheButton) {
  openPanel(3, macroButton(77, 4));
  press("applyBtn");
  EXPECT_EQ(sent().back(), buttonCommand(3, "ff00000000"));
}

TEST_F(MacroAssign, TheListOfMacrosIsFilledWheneverItOpens) {
  openPanel(3, full(2, 1));
  EXPECT_EQ(macromenulist::list(), nullptr);
  clickThroughWindow(in("tkeySelBtn"));
  ASSERT_EQ(openList(), macromenulist::list());
  EXPECT_EQ(openList()->menuDelegate(), &sub());
  const auto before = titlesOf(*openList());
  openList()->hideMenulist();
  addMacro(8, "Eight");
  addMacro(9, "Hidden")->setIsNoDisplay(true);
  clickThroughWindow(in("tkeySelBtn"));
  auto expected = before;
  expected.emplace_back("Eight");
  EXPECT_EQ(titlesOf(*openList()), expected);
}

TEST_F(MacroAssign, TheListOfMacrosIsLetGoWithItsUser) {
  openPanel(3, full(2, 1));
  clickThroughWindow(in("tkeySelBtn"));
  ASSERT_NE(openList(), nullptr);
  destroyHost();
  process();
  EXPECT_EQ(openList(), nullptr);
  EXPECT_TRUE(macromenulist::list() == nullptr || !macromenulist::list()->menuDelegate());
  // No delegate is left to call.
  NerinAction::refreshMenuList();
}

TEST_F(MacroAssign, TheOneWhoOpensTheListLastHearsOfTheChoice) {
  openPanel(3, full(2, 1));
  chooseMacro("Five");
  class Other : public LXMenulistDelegate {
   public:
    void onMenulistSelected(LXMenulist&, const std::shared_ptr<LXTreeNode>&) override { ++heard; }
    int heard = 0;
  } other;
  macromenulist::open(in("tkeySelBtn"), &other, nullptr, "No entry matches.");
  choose(*openList(), "Seven");
  EXPECT_EQ(other.heard, 1);
  EXPECT_EQ(macroTitle(), "Five");
  // Releasing a list of another delegate does nothing.
  macromenulist::release(&sub());
  EXPECT_NE(macromenulist::list(), nullptr);
  chooseMacro("Seven");
  EXPECT_EQ(other.heard, 1);
  EXPECT_EQ(macroTitle(), "Seven");
  macromenulist::release(&other);
}

TEST_F(MacroAssign, TheCountIsAskedForShortlyAfterTheListHasClosed) {
  openPanel(3, macroButton(5, 1, 42));
  QElapsedTimer since;
  qint64 waited = 0;
  since.start();
  ask([&](LXNoTitleWindow& window, TkeyRepeatView& dialog) {
    waited = since.elapsed();
    EXPECT_TRUE(sub().isShowSubMode());
    EXPECT_EQ(window.windowModality(), Qt::WindowModal);
    EXPECT_TRUE(window.isCanDrag());
    EXPECT_TRUE(window.windowFlags() & Qt::FramelessWindowHint);
    EXPECT_LE((window.geometry().center() - host().geometry().center()).manhattanLength(), 2);
    EXPECT_EQ(dialog.repeatCount(), 42);
    EXPECT_EQ(textOf(count(dialog)), "42");
    EXPECT_TRUE(waitFor([&] { return count(dialog).hasFocus(); }));
    EXPECT_EQ(partOf<LXButton>(dialog, "okBtn").tag(), 320);
    EXPECT_EQ(partOf<LXButton>(dialog, "okBtn").toolTip(), "Yes");
    EXPECT_EQ(partOf<LXButton>(dialog, "cancelBtn").tag(), 321);
    EXPECT_EQ(partOf<LXButton>(dialog, "cancelBtn").toolTip(), "No");
    pressIn(dialog, "cancelBtn");
  });
  EXPECT_GE(waited, 100);
  EXPECT_FALSE(sub().isShowSubMode());
  EXPECT_TRUE(waitFor([&] { return QApplication::activeWindow() == &host(); }));
  EXPECT_EQ(repeatTitle(), "Repeat by Count");
  EXPECT_EQ(sub().macroType(), 2U);
}

TEST_F(MacroAssign, ConfirmingTakesTheTypedCount) {
  for (const bool isReturn : {false, true}) {
    openPanel(3, macroButton(5, 1, 42));
    ask([&](LXNoTitleWindow&, TkeyRepeatView& dialog) {
      type(count(dialog), "254");
      isReturn ? hitKey(count(dialog), Qt::Key_Return) : pressIn(dialog, "okBtn");
    });
    EXPECT_EQ(sub().macroCount(), 254U);
    clearTrace();
    press("applyBtn");
    EXPECT_EQ(sent().back(), buttonCommand(3, "0602fe0000"));
    press("okBtn");
    EXPECT_EQ(stored().KeyBit[1], 254U);
  }
}

TEST_F(MacroAssign, TheCountHasFourDigitsWithoutASign) {
  openPanel(3, macroButton(5));
  ask([](LXNoTitleWindow&, TkeyRepeatView& dialog) {
    EXPECT_EQ(count(dialog).minNum(), 0);
    EXPECT_EQ(count(dialog).maxNum(), 9999);
    EXPECT_EQ(count(dialog).maxLength(), 4);
    type(count(dialog), "-98765");
    EXPECT_EQ(textOf(count(dialog)), "9876");
    type(count(dialog), "");
    pressIn(dialog, "okBtn");
  });
  EXPECT_EQ(sub().macroCount(), 1U);
}

TEST_F(MacroAssign, ACountThatCannotBeStoredBecomesTheNearestAndIsShown) {
  struct Row {
    const char* typed;
    std::uint32_t count;
    const char* shown;
    const char* entry;
    const char* said;
  };
  for (const Row& row :
       {Row{"0", 1, "× 1", "0602010000", "Repeats 1 to 254 times: 0 is now 1"},
        {"254", 254, "× 254", "0602fe0000", ""},
        {"255", 254, "× 254", "0602fe0000", "Repeats 1 to 254 times: 255 is now 254"},
        {"256", 254, "× 254", "0602fe0000", "Repeats 1 to 254 times: 256 is now 254"},
        {"9999", 254, "× 254", "0602fe0000", "Repeats 1 to 254 times: 9999 is now 254"}}) {
    openPanel(3, macroButton(5, 1, 42));
    EXPECT_FALSE(countShown().isVisible());
    ask([&](LXNoTitleWindow&, TkeyRepeatView& dialog) {
      type(count(dialog), row.typed);
      hitKey(count(dialog), Qt::Key_Return);
    });
    EXPECT_EQ(said(), row.said);
    EXPECT_EQ(sub().macroCount(), row.count) << row.typed;
    ASSERT_TRUE(countShown().isVisible());
    EXPECT_EQ(textOf(countShown()), row.shown);
    clearTrace();
    press("applyBtn");
    EXPECT_EQ(sent().back(), buttonCommand(3, row.entry)) << row.typed;
    EXPECT_EQ(mouse().macroReport(3)[5], row.count - 1) << row.typed;
    press("okBtn");
    EXPECT_EQ(stored().KeyBit[1], row.count);
    endSaying();
  }
}

TEST_F(MacroAssign, AStoredCountThatTheMouseCannotCountIsShownAndKeptAsTheNearest) {
  for (const std::uint32_t stale : {0U, 255U, 300U, 0xFFFFFFFFU}) {
    openPanel(3, macroButton(5, 2, stale));
    const std::uint32_t nearest = stale == 0 ? 1 : 254;
    EXPECT_EQ(textOf(countShown()), "× " + std::to_string(nearest));
    press("okBtn");
    EXPECT_EQ(stored().KeyBit[1], nearest);
  }
}

TEST_F(MacroAssign, TheCountGoesWithItsRepeatMode) {
  openPanel(3, macroButton(5, 2, 17));
  EXPECT_EQ(textOf(countShown()), "× 17");
  EXPECT_EQ(countShown().accessibleName(), "Repeat count");
  chooseRepeat("Repeat While Pressed");
  EXPECT_FALSE(countShown().isVisible());
  EXPECT_EQ(sub().macroCount(), 17U);
}

TEST_F(MacroAssign, SaysThatNoMacroIsChosenAndWhatApplyThenDid) {
  for (const bool byKey : {false, true}) {
    openPanel(3, full(2, 1));
    ASSERT_TRUE(note().isVisible());
    EXPECT_EQ(textOf(note()), "No macro chosen: the button will do nothing");
    EXPECT_EQ(note().accessibleName(), "No macro chosen: the button will do nothing");
    press("applyBtn");
    EXPECT_EQ(said(), "No macro chosen: the button will do nothing");
    EXPECT_EQ(sent().back(), buttonCommand(3, "ff00000d0e"));
    if (byKey) {
      in("tkeySelBtn").setFocus(Qt::TabFocusReason);
      hitKey(in("tkeySelBtn"), Qt::Key_Space);
      ASSERT_NE(openList(), nullptr);
      hitKey(*openList(), Qt::Key_Down);
      hitKey(*openList(), Qt::Key_Return);
      process();
    } else {
      chooseMacro("Five");
    }
    EXPECT_FALSE(note().isVisible());
    press("applyBtn");
    EXPECT_EQ(said(), "");
  }
}

TEST_F(MacroAssign, CloseSaysWhatAnIncompleteAssignmentWillDo) {
  openPanel(3, full(2, 1));
  press("okBtn");
  EXPECT_EQ(said(), "No macro chosen: the button will do nothing");
}

TEST_F(MacroAssign, SaysThatTheNameIsTooLongOrSharedAndIsCompleteAllTheSame) {
  addMacro(8, std::string(22, 'a'));
  addMacro(9, "Twin");
  addMacro(10, "Twin");
  openPanel(3, macroButton(8));
  EXPECT_EQ(textOf(note()), "This name is longer than the mouse keeps (21 letters)");
  EXPECT_TRUE(note().isVisible());
  press("applyBtn");
  EXPECT_EQ(said(), "");
  openPanel(3, macroButton(10));
  EXPECT_EQ(textOf(note()), "Two macros have this name");
  EXPECT_TRUE(note().isVisible());
  openPanel(3, macroButton(5));
  EXPECT_FALSE(note().isVisible());
}

TEST_F(MacroAssign, ChoosingAnImportedMacroGivesNoOther) {
  addMacro(0, "Beta", {{11, 0, 0}, {11, 1, 0}});
  addMacro(0, "Gamma", {{5, 0, 0}, {5, 1, 0}});
  ASSERT_TRUE(NerinAction::saveMenuList());
  openPanel(3, full(2, 1));
  chooseMacro("Gamma");
  press("applyBtn");
  // The usage of the letter G.
  EXPECT_EQ(mouse().macroReport(3)[52], 0x0A);
  press("okBtn");
  EXPECT_NE(stored().MacroID, 0U);
  const _BTN_INFO kept = stored();
  openPanel(3, kept);
  EXPECT_EQ(macroTitle(), "Gamma");
  NerinAction::macroStore->macroListArrs.clear();
  NerinAction::initMenuList();
  EXPECT_EQ(NerinAction::getMacroNameById(static_cast<std::int32_t>(kept.MacroID)), "Gamma");
}

TEST_F(MacroAssign, EveryOtherEndKeepsTheCount) {
  const std::function<void(LXNoTitleWindow&, TkeyRepeatView&)> ends[] = {
      [](LXNoTitleWindow&, TkeyRepeatView& dialog) { pressIn(dialog, "cancelBtn"); },
      [](LXNoTitleWindow& window, TkeyRepeatView&) { QTest::keyClick(&window, Qt::Key_Escape); },
      [](LXNoTitleWindow& window, TkeyRepeatView&) { window.close(); },
      [](LXNoTitleWindow&, TkeyRepeatView&) {
        LocalNotifications::shared().post(NerinAction::notifyOutPlus);
      }};
  for (const auto& end : ends) {
    openPanel(3, macroButton(5, 1, 42));
    ask([&](LXNoTitleWindow& window, TkeyRepeatView& dialog) {
      type(count(dialog), "7");
      end(window, dialog);
    });
    EXPECT_EQ(sub().macroCount(), 42U);
  }
  EXPECT_EQ(modals(), 4);
}

TEST_F(MacroAssign, TheQuestionGoesWithTheWindowUnderIt) {
  openPanel(3, macroButton(5, 1, 42));
  bool isUp = false;
  onModal<TkeyRepeatView>([&](LXNoTitleWindow&, TkeyRepeatView&) {
    isUp = true;
    LocalNotifications::shared().post(NerinAction::notifyOutPlus);
    destroyHost();
  });
  chooseRepeat("Repeat by Count");
  EXPECT_TRUE(waitFor([&] { return isUp; }));
  process();
  EXPECT_FALSE(isOpen());
}

TEST_F(MacroAssign, ALargerStoredCountIsShownAsTheLargest) {
  openPanel(3, macroButton(5, 2, 0xFFFFFFFF));
  ask([](LXNoTitleWindow&, TkeyRepeatView& dialog) {
    EXPECT_EQ(textOf(count(dialog)), "9999");
    pressIn(dialog, "cancelBtn");
  });
  EXPECT_EQ(sub().macroCount(), 0xFFFFFFFFU);
}

TEST_F(MacroAssign, TheQuestionDiesWithItsPanel) {
  for (const bool isDestroyed : {true, false}) {
    openPanel(3, macroButton(5));
    chooseRepeat("Repeat by Count");
    press("okBtn");
    if (isDestroyed) {
      destroyHost();
    }
    int asked = 0;
    onModal<TkeyRepeatView>([&](LXNoTitleWindow& window, TkeyRepeatView&) {
      ++asked;
      window.close();
    });
    QTest::qWait(200);
    EXPECT_EQ(asked, 0) << isDestroyed;
  }
}
