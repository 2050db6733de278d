#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "Action/Catalogue/MacroCatalogue.h"
#include "Kit/Widgets/LXTextField.h"
#include "Tests/Kit/Desktop/NativeEvent.h"
#include "Tests/Support/EditorTest.h"
#include "View/Macros/MacroView.h"

// The macro editor with a catalogue for the test.
class MacroViewTest : public EditorTest {
 protected:
  // By evdev code.
  enum Key : std::uint32_t {
    KeyEsc = 1,
    KeyTab = 15,
    KeyEnter = 28,
    KeyLeftControl = 29,
    KeyA = 30,
    KeyLeftShift = 42,
    KeyB = 48,
    KeyRightShift = 54,
    KeyLeftAlt = 56,
    KeySpace = 57,
    KeyCapsLock = 58,
    KeyF4 = 62,
    KeyRightControl = 97,
    KeyRightAlt = 100,
    KeyLeftMeta = 125,
    KeyRightMeta = 126,
    KeyFunction = 464
  };

  // Resets the values that last until the program ends.
  MacroViewTest();

  MacroView& open();
  // Opens the editor with a macro of `count` commands, one of them selected.
  MacroView& openOn(int count, int selected);
  MacroView& editor() { return *m_editor; }
  RigthMouseTBView& table() { return part<RigthMouseTBView>("commandTable"); }
  MacroInfo::Events& commands() { return editor().currMacroInfo()->keyInfoArr(); }
  // Adds presses of the keys 0, 1, ... to the current macro.
  void addCommands(int count);
  std::filesystem::path file(const std::string& name) const { return home() / name; }
  // The names of all macros, and the titles in the list.
  static std::vector<std::string> names();
  std::vector<std::string> offered();
  std::string name() { return textOf(part<LXTextField>("macroNameTxt")); }
  int row() { return table().currentIndex().row(); }
  // "code/flag/delay" of each.
  std::vector<std::string> rows();
  // "code/flag" of each.
  std::vector<std::string> kinds();
  // kinds() during a recording. Clears the commands and restarts the recording.
  std::vector<std::string> takeKinds();
  void down(Key key, std::uint64_t time, std::uint32_t nativeModifiers = 0) {
    send(QEvent::KeyPress, key, time, nativeModifiers);
  }
  void up(Key key, std::uint64_t time, std::uint32_t nativeModifiers = 0) {
    send(QEvent::KeyRelease, key, time, nativeModifiers);
  }
  void record();
  void openAndRecord();
  void stop() { control("stopBtn").click(); }
  // The names of those controls that are enabled.
  std::vector<std::string> usable(const std::vector<const char*>& names);
  void select(int row) { editor().selectComByIndex(row); }

 private:
  void send(QEvent::Type type, Key key, std::uint64_t time, std::uint32_t nativeModifiers);

  MacroView* m_editor = nullptr;
};
