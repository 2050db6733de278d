#pragma once

#include <chrono>

#include "Companion/Desktop/ScreenDisplay.h"
#include "Companion/Loop/EventLoop.h"
#include "Companion/Policy/SwitchPolicy.h"
#include "Companion/Policy/WindowMessage.h"
#include "Companion/Service/MouseWatch.h"
#include "Companion/Service/UserWords.h"
#include "Kit/Bus/BusConnection.h"

// Shows on the screen for a moment what the mouse has now, in the user's language and while the
// user wants it.
class MouseDisplay {
 public:
  // `hasOwn`: whether the desktop has a display of its own kind. The policy knows the slot and why
  // it is that one. All must outlive this.
  MouseDisplay(EventLoop& loop, BusConnection& bus, bool hasOwn, const SwitchPolicy& policy,
               MouseWatch& mouse);

  // The slot with the name of its profile, for which the installed platform's mouse is asked. While
  // another program has the mouse, this waits for the name a little, and then does without it.
  // Nothing is shown without a mouse.
  void showSlot();
  // The same, for a slot that was just written: the mouse is read once more before.
  void showWrittenSlot();
  // Another DPI level, from 0.
  void showLevel(int level);
  // What the window says that it changed; nothing for most of what it says.
  void showSetting(const WindowMessage& message);

  // The user may have chosen another language.
  void forgetWords() { m_words.forget(); }

 private:
  void askForName();
  void show(const DisplayText& text);

  const SwitchPolicy& m_policy;
  MouseWatch& m_mouse;
  ScreenDisplay m_screen;
  UserWords m_words;
  EventLoop::Timer m_nameTimer;
  EventLoop::Time m_patienceEnd;
};
