#include "Tests/View/Macros/MacroViewTest.h"

#include <algorithm>
#include <iterator>

#include "Kit/Widgets/LXMenulist.h"

MacroViewTest::MacroViewTest() {}

MacroView& MacroViewTest::open() {
  m_editor = new MacroView;
  m_editor->construct();
  show(m_editor);
  return *m_editor;
}

MacroView& MacroViewTest::openOn(int count, int selected) {
  open();
  editor().newMacro();
  addCommands(count);
  select(selected);
  return *m_editor;
}

void MacroViewTest::addCommands(int count) {
  std::generate_n(std::back_inserter(commands()), count, [code = 0]() mutable {
    return std::make_shared<MacroKeyInfo>(code++, MacroKeyInfo::KeyPress, 0);
  });
  const auto macro = editor().currMacroInfo();
  editor().setSelMacroByNode(MacroView::getNodeByData(macro.get()));
}

std::vector<std::string> MacroViewTest::names() {
  std::vector<std::string> all;
  all.reserve(NerinAction::macroStore->macroListArrs.size());
  for (const auto& macro : NerinAction::macroStore->macroListArrs) {
    all.push_back(macro->nameStr().value_or("(none)"));
  }
  return all;
}

std::vector<std::string> MacroViewTest::offered() {
  press("macroNameBtn");
  std::vector<std::string> titles;
  if (LXMenulist* list = openList()) {
    titles = titlesOf(*list);
    list->hideMenulist();
  }
  return titles;
}

std::vector<std::string> MacroViewTest::rows() {
  std::vector<std::string> all;
  for (const auto& command : commands()) {
    all.push_back(std::to_string(command->keyCode()) + '/' + std::to_string(command->keyFlag()) +
                  '/' + std::to_string(command->delay()));
  }
  return all;
}

std::vector<std::string> MacroViewTest::kinds() {
  std::vector<std::string> all;
  for (const std::string& row : rows()) {
    all.push_back(row.substr(0, row.rfind('/')));
  }
  return all;
}

std::vector<std::string> MacroViewTest::takeKinds() {
  auto all = kinds();
  commands().clear();
  editor().setRecState(true, editor().isInsertRecord());
  return all;
}

void MacroViewTest::send(QEvent::Type type, Key key, std::uint64_t time,
                         std::uint32_t nativeModifiers) {
  QKeyEvent event = nativeEvent(type, key, nativeModifiers);
  event.setTimestamp(time);
  QCoreApplication::sendEvent(&table(), &event);
}

void MacroViewTest::record() {
  control("recordBtn").click();
}

void MacroViewTest::openAndRecord() {
  openOn(0, 0);
  record();
}

std::vector<std::string> MacroViewTest::usable(const std::vector<const char*>& names) {
  std::vector<std::string> found;
  for (const char* name : names) {
    if (control(name).isEnabled()) {
      found.emplace_back(name);
    }
  }
  return found;
}
