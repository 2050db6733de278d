#include "Companion/Service/MouseDisplay.h"

#include <functional>
#include <string>
#include <system_error>

#include "Action/Device/SlotTransfer.h"
#include "Action/NerinAction.h"

using namespace std::chrono_literals;

namespace {

// After a write, the mouse is read once more at the doorbell's time. It is free before its
// profile's name is asked for, so that others wait for one of these at most.
constexpr auto readPause = 150ms;
// The window reads a whole slot when it is told of another one.
constexpr auto busyPause = 250ms;
constexpr auto patience = 1500ms;

EventLoop::Time now() {
  return std::chrono::steady_clock::now();
}

bool isBusy(const Outcome& outcome) {
  return outcome.failure() && outcome.failure()->error == std::errc::device_or_resource_busy;
}

}  // namespace

MouseDisplay::MouseDisplay(EventLoop& loop, BusConnection& bus, bool hasOwn,
                           const SwitchPolicy& policy, MouseWatch& mouse)
    : m_policy(policy),
      m_mouse(mouse),
      m_screen(bus, hasOwn),
      m_nameTimer(loop, [this] { askForName(); }) {}

void MouseDisplay::showSlot() {
  m_patienceEnd = now() + patience;
  askForName();
}

void MouseDisplay::showWrittenSlot() {
  m_patienceEnd = now() + patience;
  m_nameTimer.startIn(readPause);
}

void MouseDisplay::showLevel(int level) {
  show(levelDisplay(level, std::ref(m_words)));
}

void MouseDisplay::showSetting(const WindowMessage& message) {
  if (const auto text = displayOf(message, std::ref(m_words))) {
    show(*text);
  }
}

void MouseDisplay::askForName() {
  m_nameTimer.stop();
  if (!m_policy.slot() || !NerinAction::daemonGetOsd()) {
    return;
  }
  const auto name = NerinAction::getFWProfileName(static_cast<std::uint8_t>(*m_policy.slot()));
  if (isBusy(name.outcome) && now() < m_patienceEnd) {
    m_nameTimer.startIn(busyPause);
    return;
  }
  m_mouse.noteTransfer();
  const std::string profile = name.outcome.isDone() ? name.value.value_or("") : "";
  show(slotDisplay(m_policy.reason(), profile, std::ref(m_words)));
}

void MouseDisplay::show(const DisplayText& text) {
  if (NerinAction::daemonGetOsd()) {
    m_screen.show(text);
  }
}
