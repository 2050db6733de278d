// The window that assigns a function to a button of the mouse.

#include <QTest>

#include <gmock/gmock.h>

#include "Kit/Widgets/LXMenulist.h"
#include "Kit/Widgets/LXTextField.h"
#include "Tests/Support/EditorTest.h"
#include "View/Assign/SubSensitivityView.h"
#include "View/Assign/SubTKeyView.h"
#include "View/Windows/LocalNotifications.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class KeyAssign : public AssignTest {
 protected:
  // A button whose fields all differ.
  static _BTN_INFO full(std::uint32_t type, std::uint32_t code = 13) {
    _BTN_INFO info = button(code, {11, 12, 13, 14}, type);
    setText(info.app_path, "/opt/tool.app");
    info.MacroID = 99;
    return info;
  }
  std::string title() { return control("comSelBtn").title().toStdString(); }
  // The list button of the DPI functions.
  LXButton& function() { return partOf<LXButton>(part<QWidget>("sensitivityView"), "selBtn"); }
  // The names of the local notifications that `during` posts.
  std::vector<std::string> heard(const std::function<void()>& during) {
    std::vector<std::string> names;
    const auto link =
        QObject::connect(&LocalNotifications::shared(), &LocalNotifications::posted,
                         [&names](const QString& name) { names.push_back(name.toStdString()); });
    during();
    QObject::disconnect(link);
    return names;
  }
};

struct Kind {
  std::uint32_t type;
  const char* title;
  const char* part;  // null for none
};

constexpr Kind kinds[] = {{1, "Default", nullptr},
                          {2, "Macro Key", "tkeyView"},
                          {3, "Mouse or Key Function", "singleKeyView"},
                          {4, "DPI Function", "sensitivityView"},
                          {5, "Launch Program", "launchProView"},
                          {6, "Disable", nullptr}};

}  // namespace

TEST_F(KeyAssign, ItsControlsHaveTheirTagsAndTexts) {
  openPanel(3, full(1));
  struct Row {
    const char* name;
    int tag;
    const char* text;
    const char* spoken;
  };
  for (const Row& row : {Row{"comSelBtn", 270, "", "Function"},
                         {"applyBtn", 271, "Apply", "Apply"},
                         {"okBtn", 272, "Close", "Close"},
                         {"cancelBtn", 273, "Cancel", "Cancel"}}) {
    EXPECT_EQ(control(row.name).tag(), row.tag) << row.name;
    EXPECT_EQ(control(row.name).toolTip(), row.text) << row.name;
    EXPECT_EQ(control(row.name).accessibleName(), row.spoken) << row.name;
  }
}

TEST_F(KeyAssign, TheListOfKindsHasItsWidthAndSixEntries) {
  openPanel(3, full(1));
  EXPECT_EQ(panel().keyAssMenuList()->menuWidth(), 177);
  std::vector<std::string> titles;
  for (const Kind& kind : kinds) {
    titles.emplace_back(kind.title);
  }
  EXPECT_EQ(titlesOf(*panel().keyAssMenuList()), titles);
}

TEST_F(KeyAssign, OpensOnTheKindOfTheStoredAssignment) {
  for (const Kind& kind : kinds) {
    openPanel(3, full(kind.type));
    EXPECT_EQ(title(), kind.title);
    EXPECT_EQ(panel().currFunId(), static_cast<std::int32_t>(kind.type));
    if (kind.part == nullptr) {
      EXPECT_THAT(shownParts(), IsEmpty()) << kind.title;
    } else {
      EXPECT_THAT(shownParts(), ElementsAre(kind.part));
    }
  }
  EXPECT_THAT(trace(), IsEmpty());
}

TEST_F(KeyAssign, ChoosingAKindShowsItsPartAlone) {
  openPanel(3, full(1));
  for (const Kind& kind : kinds) {
    chooseType(kind.title);
    EXPECT_EQ(title(), kind.title);
    EXPECT_EQ(panel().currFunId(), static_cast<std::int32_t>(kind.type));
    EXPECT_EQ(shownParts().size(), kind.part == nullptr ? 0U : 1U) << kind.title;
    if (kind.part != nullptr) {
      EXPECT_THAT(shownParts(), ElementsAre(kind.part));
    }
  }
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_TRUE(isSame(stored(), full(1)));
}

TEST_F(KeyAssign, EachPartGetsACopyOfItsOwnAndTheButton) {
  openPanel(11, full(3, 7));
  for (const char* name : {"tkeyView", "singleKeyView", "sensitivityView", "launchProView"}) {
    auto* sub = qobject_cast<KeyAssignSubView*>(&part<QWidget>(name));
    ASSERT_NE(sub, nullptr);
    EXPECT_EQ(sub->btnIndex(), 11) << name;
    EXPECT_TRUE(isSame(sub->tmpBtnInfo(), full(3, 7))) << name;
  }
  part<SubSensitivityView>("sensitivityView").saveData();
  EXPECT_TRUE(isSame(part<SubTKeyView>("tkeyView").tmpBtnInfo(), full(3, 7)));
  EXPECT_TRUE(isSame(panel().tmpBtnInfo(), full(3, 7)));
}

TEST_F(KeyAssign, APartThatIsShownAgainHasLostItsUnsavedChoice) {
  openPanel(3, full(1));
  chooseType("DPI Function");
  chooseIn(function(), "Show DPI");
  chooseType("Default");
  chooseType("DPI Function");
  EXPECT_EQ(function().title(), "");
}

TEST_F(KeyAssign, ChoosingTheSameKindAgainKeepsTheChoice) {
  openPanel(3, full(1));
  chooseType("DPI Function");
  chooseIn(function(), "Show DPI");
  chooseType("DPI Function");
  EXPECT_EQ(function().title(), "Show DPI");
}

TEST_F(KeyAssign, AKindThatTheListDoesNotHaveIsNone) {
  for (const std::uint32_t type : {0U, 7U, 0xFFFFFFFFU}) {
    openPanel(3, full(type));
    EXPECT_EQ(title(), "") << type;
    EXPECT_EQ(panel().currFunId(), 0) << type;
    EXPECT_THAT(shownParts(), IsEmpty()) << type;
    press("okBtn");
    EXPECT_TRUE(isSame(stored(), full(type))) << type;
    EXPECT_EQ(panel().endTag(), 1) << type;
  }
}

TEST_F(KeyAssign, ApplyOfNoKindSendsTheButtonAsItIs) {
  openPanel(3, full(0));
  press("applyBtn");
  EXPECT_THAT(sent(), ElementsAre(buttonCommand(3, "0d0b0c0d0e")));
}

TEST_F(KeyAssign, TheDefaultIsTheButtonsOwnWhole) {
  for (int index = 0; index < 16; ++index) {
    openPanel(index, full(2, 6));
    chooseType("Default");
    press("okBtn");
    EXPECT_TRUE(isSame(stored(), library().getDefBtnInfoByIndex(index))) << index;
  }
  openPanel(5, full(6));
  chooseType("Default");
  press("okBtn");
  EXPECT_EQ(stored().btnType, 4U);
}

TEST_F(KeyAssign, AnotherFunctionBecomesTheDefaultWhenThePanelIsClosed) {
  openPanel(3, full(1, 13));
  press("okBtn");
  EXPECT_TRUE(isSame(stored(), library().getDefBtnInfoByIndex(3)));
}

TEST_F(KeyAssign, DisablingKeepsAllOtherFields) {
  openPanel(3, full(5, 15));
  chooseType("Disable");
  press("okBtn");
  _BTN_INFO expected = full(5, 15);
  expected.FuncID = expected.FuncTableId = 255;
  expected.btnType = 6;
  EXPECT_TRUE(isSame(stored(), expected));
}

TEST_F(KeyAssign, ADisabledButtonIsSentDisabled) {
  openPanel(3, full(3, 1));
  chooseType("Disable");
  press("applyBtn");
  EXPECT_THAT(sent(), ElementsAre(buttonCommand(3, "ff0b0c0d0e")));
}

TEST_F(KeyAssign, ApplyTriesTheAssignmentOnItsButtonOfTheMouse) {
  const char* defaults[] = {"0101000000", "0102000000", "0103000000", "02004d0000",
                            "02004a0000", "0940400000", "0a40400000", "1540400000",
                            "ff00000000", "ff00000000", "0208500000", "02004e0000",
                            "02004b0000", "02084f0000", "0106000000", "0107000000"};
  for (int index = 0; index < 16; ++index) {
    openPanel(index, full(3, 1));
    chooseType("Default");
    clearTrace();
    press("applyBtn");
    EXPECT_THAT(trace(), ElementsAre(buttonCommand(index, defaults[index]), "SLEEP 30"));
    EXPECT_TRUE(isSame(panel().tmpBtnInfo(), library().getDefBtnInfoByIndex(index))) << index;
    EXPECT_TRUE(isSame(stored(), full(3, 1))) << index;
    EXPECT_TRUE(isOpen());
  }
  EXPECT_THAT(mouse().faults(), IsEmpty());
}

TEST_F(KeyAssign, ApplyCanBePressedAnyNumberOfTimes) {
  openPanel(3, full(3, 1));
  for (const char* kind : {"Disable", "Default", "Disable"}) {
    chooseType(kind);
    press("applyBtn");
  }
  EXPECT_THAT(sent(), ElementsAre(buttonCommand(3, "ff0b0c0d0e"), buttonCommand(3, "02004d0000"),
                                  buttonCommand(3, "ff77000000")));
  EXPECT_FALSE(editState->isNeedSave());
  EXPECT_TRUE(isSame(stored(), full(3, 1)));
}

TEST_F(KeyAssign, CloseStoresTheAssignmentAndSendsNothing) {
  openPanel(3, full(3, 1));
  chooseType("Disable");
  press("okBtn");
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(panel().endTag(), 1);
  EXPECT_TRUE(editState->isNeedSave());
  EXPECT_EQ(stored().FuncTableId, 255U);
  EXPECT_TRUE(isSame(stored(), panel().tmpBtnInfo()));
  EXPECT_THAT(trace(), IsEmpty());
}

TEST_F(KeyAssign, OtherButtonsStayAsTheyAre) {
  for (int index = 0; index < 16; ++index) {
    editState->edit().btnInfo[index] = full(2, 6);
  }
  openPanel(15, full(3, 1));
  chooseType("Disable");
  press("okBtn");
  for (int index = 0; index < 15; ++index) {
    EXPECT_TRUE(isSame(editState->selProfile().btnInfo[index], full(2, 6))) << index;
  }
}

TEST_F(KeyAssign, CancelSendsTheStoredAssignment) {
  openPanel(3, full(3, 1));
  chooseType("Disable");
  press("cancelBtn");
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(panel().endTag(), 0);
  EXPECT_FALSE(editState->isNeedSave());
  EXPECT_THAT(sent(), ElementsAre(buttonCommand(3, "010b0c0d0e")));
  EXPECT_TRUE(isSame(stored(), full(3, 1)));
  EXPECT_TRUE(isSame(panel().tmpBtnInfo(), full(3, 1)));
}

TEST_F(KeyAssign, CancelAfterApplySendsTheStoredAssignmentAgain) {
  openPanel(3, full(3, 1));
  chooseType("Disable");
  press("applyBtn");
  press("cancelBtn");
  EXPECT_THAT(sent(), ElementsAre(buttonCommand(3, "ff0b0c0d0e"), buttonCommand(3, "010b0c0d0e")));
  EXPECT_TRUE(isSame(panel().tmpBtnInfo(), full(3, 1)));
  const auto image = mouse().imageReport(mouse().activeSlot());
  EXPECT_EQ(image[58 + 5 * 3], 1);
}

TEST_F(KeyAssign, CancelPutsAStoredMacroBackWithItsButton) {
  addMacro(5, "Five", {{0, 0, 10}, {0, 1, 0}});
  openPanel(3, macroButton(5, 3));
  press("cancelBtn");
  ASSERT_EQ(sent().size(), 3U);
  EXPECT_EQ(sent()[0], "SET 0300 0 c40b030100000000");
  EXPECT_THAT(sent()[1], testing::StartsWith("SET 0304 1 040003"));
  EXPECT_EQ(sent()[2], buttonCommand(3, "0603000000"));
}

TEST_F(KeyAssign, EscapeAndAForcedCloseCancel) {
  for (const bool isEscape : {true, false}) {
    openPanel(3, full(3, 1));
    chooseType("Disable");
    press("applyBtn");
    clearTrace();
    if (isEscape) {
      QTest::keyClick(&host(), Qt::Key_Escape);
    } else {
      host().close();
    }
    process();
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(panel().endTag(), 0);
    EXPECT_THAT(sent(), ElementsAre(buttonCommand(3, "010b0c0d0e")));
    EXPECT_TRUE(isSame(panel().tmpBtnInfo(), full(3, 1)));
    EXPECT_TRUE(isSame(stored(), full(3, 1)));
  }
}

TEST_F(KeyAssign, AnEndThatWasChosenIsNotCancelledByTheClosingWindow) {
  openPanel(3, full(3, 1));
  chooseType("Disable");
  press("okBtn");
  panel().windowCloses();
  EXPECT_EQ(stored().FuncTableId, 255U);
  EXPECT_EQ(panel().tmpBtnInfo().FuncTableId, 255U);
  EXPECT_EQ(panel().endTag(), 1);
  EXPECT_THAT(trace(), IsEmpty());
}

TEST_F(KeyAssign, TheRemovalOfTheMouseEndsThePanelAsItWas) {
  openPanel(3, full(3, 1));
  chooseType("Disable");
  press("applyBtn");
  clearTrace();
  press("comSelBtn");
  ASSERT_NE(openList(), nullptr);
  EXPECT_THAT(heard([] { LocalNotifications::shared().post(NerinAction::notifyOutPlus); }),
              ElementsAre("Notify_OutPlusEnd", "Notify_OutPlus"));
  EXPECT_EQ(openList(), nullptr);
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(panel().endTag(), 0);
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_TRUE(isSame(panel().tmpBtnInfo(), full(3, 1)));
  // The closed window no longer listens.
  EXPECT_THAT(heard([] { LocalNotifications::shared().post(NerinAction::notifyOutPlus); }),
              ElementsAre("Notify_OutPlus"));
}

TEST_F(KeyAssign, TheRemovalOfTheMouseClosesTheListsOfTheParts) {
  addMacro(5, "Five");
  struct Row {
    const char* kind;
    const char* part;
    const char* button;
  };
  for (const Row& row : {Row{"Macro Key", "tkeyView", "tkeySelBtn"},
                         {"Macro Key", "tkeyView", "repeatSelBtn"},
                         {"Mouse or Key Function", "singleKeyView", "selBtn"},
                         {"DPI Function", "sensitivityView", "selBtn"}}) {
    openPanel(3, full(3, 9));
    chooseType(row.kind);
    clickThroughWindow(partOf<LXButton>(part<QWidget>(row.part), row.button));
    ASSERT_NE(openList(), nullptr) << row.button;
    LocalNotifications::shared().post(NerinAction::notifyOutPlus);
    EXPECT_EQ(openList(), nullptr) << row.button;
  }
}

TEST_F(KeyAssign, SaysWhichButtonItIs) {
  openPanel(3, full(1));
  panel().setButtonName(QStringLiteral("Side 3"));
  EXPECT_EQ(textOf(part<LXTextField>("buttonTxt")), "Side 3");
  EXPECT_TRUE(part<LXTextField>("buttonTxt").isReadOnly());
}
