#pragma once

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QTest>

#include "Kit/Widgets/LXTextField.h"
#include "Tests/Kit/Desktop/NativeEvent.h"
#include "Tests/Support/EditorTest.h"
#include "View/Assign/SubSingleKeyView.h"

// Evdev codes.
enum Key : std::uint32_t {
  KeyEsc = 1,
  KeyEqual = 13,
  KeyTab = 15,
  KeyReturn = 28,
  KeyLeftCtrl = 29,
  KeyA = 30,
  KeyLeftShift = 42,
  KeyK = 37,
  KeyRightShift = 54,
  KeyLeftAlt = 56,
  KeySpace = 57,
  KeyCapsLock = 58,
  KeyF4 = 62,
  KeyRightCtrl = 97,
  KeyPrint = 99,
  KeyRightAlt = 100,
  KeyMute = 113,
  KeyLeftSuper = 125,
  KeyRightSuper = 126,
};

// The part of the key assignment for mouse functions and keys.
class SingleKeyTest : public AssignTest {
 protected:
  static _BTN_INFO full(std::uint32_t code, std::uint32_t id, std::uint32_t mark) {
    _BTN_INFO info = button(code, {11, 12, 13, 14}, 3);
    info.FuncID = id;
    info.MacroID = mark;
    setText(info.app_path, "/opt/tool.app");
    return info;
  }
  static _BTN_INFO key(std::uint32_t code) {
    _BTN_INFO info = full(2, 2, 2);
    info.KeyBit[0] = code;
    return info;
  }
  SubSingleKeyView& sub() { return part<SubSingleKeyView>("singleKeyView"); }
  LXButton& in(const char* name) { return partOf<LXButton>(sub(), name); }
  LXTextField& display(const char* name) { return partOf<LXTextField>(sub(), name); }
  std::string newKey() { return textOf(display("newKeyEdt")); }
  std::string current() { return textOf(display("oldKeyEdt")); }
  bool saysThatItCannotBeSent() { return note() == "The mouse cannot send this key"; }
  // Empty while it is hidden.
  std::string note() { return display("noteTxt").isVisible() ? textOf(display("noteTxt")) : ""; }
  std::string hint() {
    auto& label = partOf<QLabel>(sub(), "hintTxt");
    return label.isVisible() ? label.text().toStdString() : "";
  }
  void clickField() {
    const QPoint inside = sub().mapTo(&host(), display("newKeyEdt").geometry().center());
    QTest::mouseClick(host().windowHandle(), Qt::LeftButton, {}, inside);
    process();
  }

  // Sends a key like the window system: to the focused widget.
  static void down(std::uint32_t key, bool isRepeat = false) {
    QKeyEvent event = nativeEvent(QEvent::KeyPress, key, 0, isRepeat);
    QApplication::sendEvent(QApplication::focusWidget(), &event);
  }
  static void up(std::uint32_t key) {
    QKeyEvent event = nativeEvent(QEvent::KeyRelease, key);
    QApplication::sendEvent(QApplication::focusWidget(), &event);
  }
  static void tap(std::uint32_t key) {
    down(key);
    up(key);
  }
  // Taps a key that Qt would handle itself. `meaning` is Qt's name for it.
  static void tap(std::uint32_t key, Qt::Key meaning, Qt::KeyboardModifiers held = {}) {
    for (const auto type : {QEvent::ShortcutOverride, QEvent::KeyPress, QEvent::KeyRelease}) {
      QKeyEvent event(type, meaning, held, key + 8, 0, 0);
      QApplication::sendEvent(QApplication::focusWidget(), &event);
    }
  }
  void openCapture() {
    openPanel(3, full(1, 1, 1));
    clickThroughWindow(in("keybordChk"));
  }
};
