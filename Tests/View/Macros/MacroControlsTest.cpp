// Every control of the macro editor: its name, its text and its effect; and how the window opens
// and closes.

#include <QAccessible>
#include <QTest>
#include <algorithm>
#include <cctype>

#include <gmock/gmock.h>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Kit/Widgets/LXMenulist.h"
#include "Kit/Widgets/LXNumberTextField.h"
#include "Tests/View/Macros/MacroViewTest.h"
#include "View/Macros/MacroMenulist.h"
#include "View/Windows/LocalNotifications.h"

namespace {

struct Row {
  const char* name;
  int tag;
  const char* tooltip;
  const char* effect;  // of a click, on the second of three commands, with the insert panel on
  // The text for screen readers, if there is no tooltip.
  const char* heard = nullptr;
};

std::ostream& operator<<(std::ostream& out, const Row& row) {
  return out << row.name;
}

const Row controlRows[] = {
    {"macroNameBtn", 200, "Select a macro", "list NewMacro_1 Other"},
    {"newMacroBtn", 201, "Create New Macro", "macro NewMacro_2, no row"},
    {"delMacroBtn", 202, "Delete a macro",
     "says Are you sure you want to delete this macro?, macro Other, no row"},
    {"copyMacroBtn", 203, "Copy a macro", "macro NewMacro_2"},
    {"importMacroBtn", 204, "Import macro", "open panel *.mac"},
    {"exportMacroBtn", 205, "Export macro", "save panel NewMacro_1"},
    {"recordBtn", 206, "Record", "records"},
    {"stopBtn", 207, "Stop", "insert panel off"},
    {"delKeyBtn", 208, "Delete", "0 2"},
    {"insertKeyBtn", 209, "Insert instructions in macro", ""},
    {"toolsBtn", 230, "Tools for lines", ""},
    {"testBtn", 231, "Test what the mouse will send", ""},
    {"keyUpBtn", 210, "Move instruction line up", "1 0 2"},
    {"keyDownBtn", 211, "Move instruction line down", "0 2 1"},
    {"autoDelayChk", 212, "Detect the delay time automatically", ""},
    {"defDelayChk", 213, "", "delay 2/1", "Fixed delay"},
    {"lgnoreDelayChk", 214, "Without any delay", "delay 3/1"},
    {"insertBtn", 215, "",
     "list Record before the Selected Line Record after the Selected Line Delay before the "
     "Selected Line Delay after the Selected Line",
     "Insert"},
    {"insertAutoDelayChk", 216, "", "", "Measured delay"},
    {"insertDefDelayChk", 217, "", "delay 1/2", "Fixed delay"},
    {"insertLgnoreDelayChk", 218, "", "delay 1/3", "Without any delay"},
    {"okBtn", 219, "Close", "saved 2, closed 1"},
    {"cancelBtn", 220, "", "closed 0", "Cancel"},
    {"applyBtn", 221, "Apply", "saved 2"},
    {"insertRecordBtn", 223, "", "records to insert", "Record"},
    {"insertStopBtn", 224, "", "", "Stop"},
    {"insertIntBtn", 225, "", "0 1+50 2", "Insert"},
    {"insertCancelBtn", 226, "Cancel", "insert panel off"},
};

class MacroControls : public MacroViewTest, public testing::WithParamInterface<Row> {
 protected:
  void openWithInsertPanel() {
    openOn(0, 0);
    editor().newMacro();
    type("Other");
    chooseIn("macroNameBtn", "NewMacro_1");
    addCommands(3);
    select(1);
    press("insertKeyBtn");
    m_before = effect();
  }
  void type(const char* name) {
    auto& field = part<LXTextField>("macroNameTxt");
    field.selectAll();
    field.insert(QString::fromLatin1(name));
    emit field.textEdited(field.text());
  }
  std::string step(const char* first) {
    const std::string stem = first;
    const char* parts[] = {"AutoDelayChk", "DefDelayChk", "LgnoreDelayChk"};
    for (int i = 0; i < 3; ++i) {
      std::string name = stem + parts[i];
      name[0] = static_cast<char>(std::tolower(name[0]));
      if (control(name.c_str()).isChecked()) {
        return std::to_string(i + 1);
      }
    }
    return "none";
  }
  std::size_t saved() {
    const std::string text = textOfFile(supportFolder() / "MenuInfo.xml");
    std::size_t count = 0;
    for (std::size_t at = text.find("MacroID="); at != std::string::npos;
         at = text.find("MacroID=", at + 1)) {
      ++count;
    }
    return count;
  }
  // The visible effects in words.
  std::vector<std::string> effect() {
    std::vector<std::string> parts;
    for (const std::string& text : m_shown) {
      parts.push_back("says " + text);
    }
    for (const auto& panel : m_panels) {
      parts.push_back(panel.isSave ? "save panel " + panel.name
                                   : "open panel " + panel.patterns.front());
    }
    if (const LXMenulist* list = openList()) {
      std::string text = "list";
      for (const std::string& title : titlesOf(*list)) {
        text += ' ' + title;
      }
      parts.push_back(text);
    }
    parts.push_back("macro " + name());
    std::string commandList;
    for (const auto& command : commands()) {
      commandList += (commandList.empty() ? "" : " ") + std::to_string(command->keyCode()) +
                     (command->delay() != 0 ? "+" + std::to_string(command->delay()) : "");
    }
    parts.push_back(commandList.empty() ? "no row" : commandList);
    parts.push_back("delay " + step("") + '/' + step("insert"));
    if (editor().isRecord()) {
      parts.emplace_back(editor().isInsertRecord() ? "records to insert" : "records");
    } else {
      parts.emplace_back(editor().isInsert() ? "insert panel on" : "insert panel off");
    }
    parts.push_back("saved " + std::to_string(saved()));
    if (!isOpen()) {
      parts.push_back("closed " + std::to_string(editor().endTag()));
    }
    return parts;
  }
  std::string change() {
    std::string text;
    for (const std::string& part : effect()) {
      if (std::find(m_before.begin(), m_before.end(), part) == m_before.end()) {
        text += (text.empty() ? "" : ", ") + part;
      }
    }
    return text;
  }

  const std::vector<const char*> m_all = [] {
    std::vector<const char*> names;
    for (const Row& row : controlRows) {
      names.push_back(row.name);
    }
    return names;
  }();

 private:
  std::vector<std::string> m_before;
};

}  // namespace

TEST_P(MacroControls, IsCalledAndDoesWhatItSays) {
  openWithInsertPanel();
  const Row& row = GetParam();
  LXButton& one = control(row.name);
  EXPECT_EQ(one.tag(), row.tag);
  EXPECT_EQ(one.toolTip().toStdString(), row.tooltip);
  auto* accessible = QAccessible::queryAccessibleInterface(&one);
  ASSERT_NE(accessible, nullptr);
  EXPECT_THAT(accessible->text(QAccessible::Name).toStdString(),
              testing::StartsWith(row.heard != nullptr ? row.heard : row.tooltip));
  one.click();
  process();
  EXPECT_EQ(change(), row.effect);
}

INSTANTIATE_TEST_SUITE_P(Every, MacroControls, testing::ValuesIn(controlRows),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(MacroControls, ThereIsNoOtherButton) {
  open();
  std::vector<std::string> found;
  for (const auto* one : editor().findChildren<LXButton*>()) {
    found.push_back(one->objectName().toStdString());
  }
  EXPECT_THAT(found, testing::UnorderedElementsAreArray(m_all));
}

TEST_F(MacroControls, OtherTagsDoNothing) {
  openWithInsertPanel();
  LXButton stranger;
  for (const int tag : {0, 199, 212, 213, 214, 216, 217, 218, 222, 227, 300}) {
    stranger.setTag(tag);
    editor().buttonAction(stranger);
  }
  EXPECT_EQ(change(), "");
}

TEST_F(MacroControls, TheDelayFieldsTakeFourDigitsUpTo5000) {
  openOn(1, 0);
  press("insertKeyBtn");
  for (const char* name : {"defDelayTxt", "insertDefDelayTxt"}) {
    auto& field = part<LXNumberTextField>(name);
    EXPECT_EQ(field.minNum(), 0) << name;
    EXPECT_EQ(field.maxNum(), 5000) << name;
    EditorTest::type(field, "-12345");
    EXPECT_EQ(textOf(field), "1234") << name;
    EditorTest::type(field, "5001");
    hitKey(field, Qt::Key_Return);
    EXPECT_EQ(textOf(field), "5000") << name;
  }
}

TEST_F(MacroControls, TheDelaysLastAsLongAsTheProgram) {
  open();
  EXPECT_EQ(textOf(part<LXNumberTextField>("defDelayTxt")), "50");
  EXPECT_EQ(textOf(part<LXNumberTextField>("insertDefDelayTxt")), "50");
  openOn(1, 0);
  press("insertKeyBtn");
  EditorTest::type(part<LXNumberTextField>("defDelayTxt"), "120");
  hitKey(part<LXNumberTextField>("defDelayTxt"), Qt::Key_Return);
  EXPECT_EQ(macroDelays->delayTime, 120);
  EXPECT_EQ(macroDelays->defDelayTime, 50);
  EditorTest::type(part<LXNumberTextField>("insertDefDelayTxt"), "7");
  hitKey(part<LXNumberTextField>("insertDefDelayTxt"), Qt::Key_Return);
  EXPECT_EQ(macroDelays->delayTime, 120);
  EXPECT_EQ(macroDelays->defDelayTime, 7);
  press("cancelBtn");
  open();
  EXPECT_EQ(textOf(part<LXNumberTextField>("defDelayTxt")), "120");
  EXPECT_EQ(textOf(part<LXNumberTextField>("insertDefDelayTxt")), "7");
}

TEST_F(MacroControls, EveryOpeningBeginsWithMeasuredDelaysAndTheInsertPanelOff) {
  openOn(1, 0);
  press("insertKeyBtn");
  control("lgnoreDelayChk").click();
  control("insertLgnoreDelayChk").click();
  chooseIn("insertBtn", "Delay after the Selected Line");
  press("cancelBtn");
  open();
  EXPECT_EQ(step(""), "1");
  EXPECT_EQ(step("insert"), "1");
  EXPECT_FALSE(editor().isInsert());
  EXPECT_EQ(editor().currInsertType(), 1);
  EXPECT_EQ(control("insertBtn").title(), "Record before the Selected Line");
  EXPECT_TRUE(control("insertRecordBtn").isVisible());
  EXPECT_FALSE(control("insertIntBtn").isVisible());
  EXPECT_EQ(name(), "NewMacro_1");
  EXPECT_EQ(control("macroNameBtn").title(), "NewMacro_1");
}

TEST_F(MacroControls, WithoutAnInsertMenuTheListButtonIsEmpty) {
  NerinAction::functionMenus->macroInsertMenuNode = nullptr;
  open();
  EXPECT_EQ(control("insertBtn").title(), "");
  editor().setInsertState(true);
  control("insertBtn").click();
  EXPECT_EQ(openList(), nullptr);
}

TEST_F(MacroControls, BothListsAreAsWideAsTheyAreToBe) {
  openOn(1, 0);
  press("insertKeyBtn");
  press("macroNameBtn");
  ASSERT_EQ(openList(), macromenulist::list());
  EXPECT_EQ(openList()->menuWidth(), 195);
  EXPECT_EQ(openList()->menuDelegate(), &editor());
  openList()->hideMenulist();
  press("insertBtn");
  ASSERT_EQ(openList(), editor().insertMenulist());
  EXPECT_EQ(openList()->menuWidth(), 195);
  EXPECT_EQ(openList()->menuDelegate(), &editor());
  openList()->hideMenulist();
}

TEST_F(MacroControls, TheMouseThatGoesClosesTheWindowAndItsLists) {
  int ends = 0;
  QObject scope;
  QObject::connect(
      &LocalNotifications::shared(), &LocalNotifications::posted, &scope,
      [&](const QString& name, std::optional<int> type, const std::optional<QString>& value) {
        if (name == "Notify_OutPlusEnd") {
          ++ends;
          EXPECT_FALSE(isOpen());
          EXPECT_EQ(type, std::nullopt);
          EXPECT_EQ(value, std::nullopt);
        }
      });
  const std::function<void()> states[] = {[] {}, [this] { press("macroNameBtn"); },
                                          [this] { press("insertBtn"); }, [this] { record(); },
                                          [this] { control("insertRecordBtn").click(); }};
  int expected = 0;
  for (const auto& state : states) {
    openOn(1, 0);
    press("insertKeyBtn");
    state();
    LocalNotifications::shared().post("Notify_OutPlus");
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(openList(), nullptr);
    EXPECT_EQ(editor().endTag(), 0);
    EXPECT_FALSE(editor().isRecord());
    EXPECT_EQ(ends, ++expected);
    // A second notification has no effect.
    LocalNotifications::shared().post("Notify_OutPlus");
    EXPECT_EQ(ends, expected);
  }
  EXPECT_EQ(saved(), 0U);
}

TEST_F(MacroControls, OtherNotificationsAreNoneOfItsBusiness) {
  open();
  LocalNotifications::shared().post("Notify_OutPlusEnd");
  LocalNotifications::shared().post("Notify_CloseWindow_Event");
  EXPECT_TRUE(isOpen());
}

TEST_F(MacroControls, AnEndWithoutSavingKeepsTheEditsForTheNextSave) {
  openOn(2, 0);
  type("Edited");
  press("cancelBtn");
  EXPECT_EQ(saved(), 0U);
  ASSERT_EQ(NerinAction::macroStore->macroListArrs.size(), 1U);
  EXPECT_EQ(NerinAction::macroStore->macroListArrs[0]->nameStr(), "Edited");
  EXPECT_EQ(NerinAction::macroStore->macroListArrs[0]->keyInfoArr().size(), 2U);
  EXPECT_FALSE(editState->isNeedSave());
  open();
  press("applyBtn");
  EXPECT_EQ(saved(), 1U);
  EXPECT_TRUE(isOpen());
  EXPECT_FALSE(editState->isNeedSave());
  EXPECT_EQ(editor().endTag(), 0);
}
