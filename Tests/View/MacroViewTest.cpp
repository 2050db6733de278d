#include "Tests/View/MacroViewTest.h"

MacroView& MacroViewTest::open() {
  m_editor = new MacroView;
  m_editor->construct();
  show(m_editor);
  return *m_editor;
}

std::vector<std::string> MacroViewTest::rows() {
  std::vector<std::string> all;
  for (const auto& command : commands()) {
    all.push_back(std::to_string(command->keyCode()) + '/' + std::to_string(command->keyFlag()) +
                  '/' + std::to_string(command->delay()));
  }
  return all;
}

void MacroViewTest::send(QEvent::Type type, Key key, std::uint64_t time) {
  QKeyEvent event = nativeEvent(type, key);
  event.setTimestamp(time);
  QCoreApplication::sendEvent(&table(), &event);
}

void MacroViewTest::record() {
  control("recordBtn").click();
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
