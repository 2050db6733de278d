#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Action/MacroCatalogue.h"
#include "Tests/KitDesktop/NativeEvent.h"
#include "Tests/View/EditorTest.h"
#include "View/MacroView.h"

// The macro editor over a catalogue of its own.
class MacroViewTest : public EditorTest {
 protected:
  // By evdev code.
  enum Key : std::uint32_t {
    KeyEsc = 1,
    KeyTab = 15,
    KeyA = 30,
    KeyLeftShift = 42,
    KeyB = 48,
    KeyRightShift = 54
  };

  MacroView& open();
  MacroView& editor() { return *m_editor; }
  RigthMouseTBView& table() { return part<RigthMouseTBView>("commandTable"); }
  MacroInfo::Events& commands() { return editor().currMacroInfo()->keyInfoArr(); }
  // "code/flag/delay" of each.
  std::vector<std::string> rows();
  void down(Key key, std::uint64_t time) { send(QEvent::KeyPress, key, time); }
  void up(Key key, std::uint64_t time) { send(QEvent::KeyRelease, key, time); }
  void record();
  void stop() { control("stopBtn").click(); }
  // The names of the controls among these that can be used.
  std::vector<std::string> usable(const std::vector<const char*>& names);
  void select(int row) { editor().selectComByIndex(row); }

 private:
  void send(QEvent::Type type, Key key, std::uint64_t time);

  MacroView* m_editor = nullptr;
};
