#pragma once

#include <functional>
#include <initializer_list>

#include "Tests/Support/EditorTest.h"

// Leads through all windows, lists and panes of the program, and lets a test look at each state.
// `look` gets the name of the state.
class EveryWindow : public AssignTest {
 protected:
  using Look = std::function<void(const char* state)>;

  // A macro with keys and mouse buttons, for which the editor has a warning.
  void addCombo();

  void throughTheMainWindow(const Look& look);
  void throughTheFooterOfEachEnd(const Look& look);
  void throughTheChildWindows(const Look& look);
  void throughTheAssignmentOfEachKind(const Look& look);
  void throughTheListsOfFunctions(const Look& look);
  void throughTheMacroEditor(const Look& look);
  void throughThePanelOfPrograms(const Look& look);
  // The windows over child windows.
  void throughTheInnerWindows(const Look& look);

 private:
  void openLists(std::initializer_list<const char*> openers, const Look& look);
};
