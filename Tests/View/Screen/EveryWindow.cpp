#include "Tests/View/Screen/EveryWindow.h"

#include <QApplication>

#include "Action/Catalogue/MacroCatalogue.h"
#include "View/Assign/TkeyRepeatView.h"
#include "View/Dpi/LevelSettingView.h"
#include "View/Macros/MacroView.h"
#include "View/Windows/ModalWindow.h"
#include "View/Windows/ProgramPanel.h"

void EveryWindow::addCombo() {
  addMacro(1, "Combo", {{0, 0, 10}, {0, 1, 20}, {120, 3, 5}, {121, 4, 5}, {122, 3, 5}});
}

void EveryWindow::throughTheMainWindow(const Look& look) {
  start();
  typeName("Game");
  look("named");
  click("battleModeBtn");
  click("goRightBtn");
  look("Battle mode");
  click("goLeftBtn");
  view().findChild<QAbstractButton*>(QStringLiteral("changesBtn"))->click();
  look("changes");
}

void EveryWindow::throughTheFooterOfEachEnd(const Look& look) {
  start();
  for (const char* name : {"applyBtn", "reDefBtn", "profileNewBtn", "profileDelBtn"}) {
    click(name);
    look(name);
  }
}

void EveryWindow::throughTheChildWindows(const Look& look) {
  start();
  for (const char* name : {"lightOptionBtn", "preformanceBtn", "MacroSettingBtn", "rightBtn"}) {
    click(name);
    ASSERT_TRUE(child()) << name;
    look(name);
    child()->close();
    process();
  }
}

void EveryWindow::throughTheAssignmentOfEachKind(const Look& look) {
  for (const _BTN_INFO& info :
       {macroButton(1), button(1, {6}), button(2, {0}), button(1, {}, ButtonTypeSensitivity),
        button(15, {}, ButtonTypeLaunch), button(6, {}, ButtonTypeDisabled)}) {
    openPanel(3, info);
    look(std::to_string(info.btnType).c_str());
  }
}

void EveryWindow::openLists(std::initializer_list<const char*> openers, const Look& look) {
  for (const char* name : openers) {
    // The parts for the other kinds have one of the same name, and are hidden.
    for (auto* opener : panel().findChildren<LXButton*>(QString::fromLatin1(name))) {
      if (opener->isVisible()) {
        clickThroughWindow(*opener);
        break;
      }
    }
    QWidget* list = QApplication::activePopupWidget();
    ASSERT_TRUE(list) << name;
    look(name);
    list->close();
    process();
  }
}

void EveryWindow::throughTheListsOfFunctions(const Look& look) {
  openPanel(3, macroButton(1));
  openLists({"comSelBtn", "tkeySelBtn", "repeatSelBtn"}, look);
  _BTN_INFO scroll = button(1, {6});
  scroll.FuncID = 1;
  scroll.MacroID = 1;
  openPanel(3, scroll);
  openLists({"comSelBtn", "selBtn"}, look);
  _BTN_INFO dpi = button(1, {}, ButtonTypeSensitivity);
  dpi.FuncID = 1;
  openPanel(3, dpi);
  openLists({"comSelBtn", "selBtn"}, look);
}

void EveryWindow::throughTheMacroEditor(const Look& look) {
  auto* editor = new MacroView;
  editor->construct();
  show(editor);
  editor->setSelMacroByNode(NerinAction::macroStore->macroNode->children().front());
  editor->selectComByIndex(1);
  look("a macro");
  for (const char* name : {"toolsBtn", "testBtn"}) {
    control(name).click();
    look(name);
    if (QWidget* pane = QApplication::activePopupWidget()) {
      pane->close();
    }
  }
  control("recordBtn").click();
  look("recordBtn");
  control("stopBtn").click();
}

void EveryWindow::throughTheInnerWindows(const Look& look) {
  int seen = 0;
  const auto run = [&]<typename View>(View* content, const char* state) {
    QWidget over;
    over.resize(700, 600);
    over.show();
    content->construct();
    ModalWindow window(content, 0, QString(), &over);
    onModal<View>([&](LXNoTitleWindow& shown, View&) {
      ++seen;
      look(state);
      shown.close();
    });
    window.run();
  };
  run(new LevelSettingView, "DPI levels");
  run(new TkeyRepeatView, "repeat count");
  EXPECT_EQ(seen, 2);
}

void EveryWindow::throughThePanelOfPrograms(const Look& look) {
  ProgramPanel panel({{"Chess", "/apps/chess.desktop", {}, true}}, {}, nullptr);
  panel.show();
  look("programs");
}
