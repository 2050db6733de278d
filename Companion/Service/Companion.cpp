#include "Companion/Service/Companion.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include <systemd/sd-bus.h>

#include "Action/Edit/DraftFiles.h"
#include "Action/Edit/Drafts.h"
#include "Action/Library/SupportFolder.h"
#include "Action/NerinAction.h"
#include "Kit/Core/LXLogger.h"

using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

constexpr const char* windowName = "com.corvex.NerinOption";
constexpr auto busyPause = 250ms;
// A desktop that ends or crashes comes back soon, or not at all.
constexpr std::chrono::seconds firstForegroundPause{1};
constexpr std::chrono::seconds longestForegroundPause{30};
constexpr auto reopenLimit = 60s;
// The window that asked for it has to end first.
constexpr auto reopenPause = 500ms;

EventLoop::Time now() {
  return std::chrono::steady_clock::now();
}

}  // namespace

Companion::Companion(EventLoop& loop, BusConnection& bus, Settings settings)
    : m_loop(loop),
      m_bus(bus),
      m_launcher(bus),
      m_settings(std::move(settings)),
      m_mouse(loop, m_settings.udevControl,
              {.reported = [this](const DeviceReport& one) { report(one); },
               .came =
                   [this](const MouseReading& reading) {
                     m_policy.mouseCame(reading.slot);
                     decide();
                   },
               .heard = [](const HidInputReport&) { return false; }}),
      m_foregroundTimer(loop, [this] { openForeground(); }),
      m_decideTimer(loop, [this] { decide(); }),
      m_reopenTimer(loop, [this] { reopenWindow(); }) {
  m_bus.publish(busPath, busName,
                {{"Explanation", [this] { return m_explanation; }},
                 {"Foreground", [this] { return m_foreground ? m_foreground->name() : "none"; }}});
  explain();
}

Companion::~Companion() {
  m_bus.forgetEverybody();
}

void Companion::begin() {
  m_bus.addObserver("NerinSettingChange",
                    [this](const std::string& object, const LXUserInfo& userInfo) {
                      if (const auto message = windowMessageOf(object, userInfo)) {
                        obey(*message);
                      }
                    });
  watchWindow();
  watchFiles();
  NerinAction::startListenDev();
  reloadLinks();
  m_mouse.look();
  explain();
}

void Companion::obey(const WindowMessage& message) {
  if (const auto slot = message.chosenSlot()) {
    m_policy.personChose(*slot, now());
    m_mouse.note(*slot);
  }
  switch (message.code) {
    case NerinAction::MessageProfileApplied:
      reloadLinks();
      m_mouse.ring();
      break;
    case NerinAction::MessageDpiTemporary:
      m_mouse.setIsTrial(message.value(0) != 0);
      m_mouse.ring();
      break;
    case NerinAction::MessageRelaunch:
      m_reopenUntil = now() + reopenLimit;
      m_mouse.setIsTrial(false);
      reloadLinks();
      m_mouse.look();
      reopenWindow();
      break;
    default:
      break;
  }
  decide();
}

void Companion::report(const DeviceReport& one) {
  m_bus.postNotificationName(
      "NerinDevStatus", "",
      LXUserInfo{{"type", static_cast<std::int32_t>(one.type)}, {"value", one.value}});
  switch (one.type) {
    case DeviceReport::SlotChanged:
      m_policy.personChose(one.value, now());
      break;
    case DeviceReport::Removed:
      m_policy.mouseGone();
      break;
    case DeviceReport::Attached:
      reopenWindow();
      break;
    case DeviceReport::DpiChanged:
      break;
  }
  decide();
}

void Companion::watchFiles() {
  // Both folders belong to this product, and may not exist before its first start.
  const fs::path drafts = draftfiles::pathOf("any").parent_path();
  const fs::path preferences = NerinAction::preferenceFilePath().parent_path();
  std::error_code ignored;
  fs::create_directories(drafts, ignored);
  fs::create_directories(preferences, ignored);
  m_draftWatch = m_loop.watchFolder(drafts, [this] { decide(); });
  m_preferenceWatch = m_loop.watchFolder(preferences, [this] {
    reloadLinks();
    decide();
  });
  if (!m_settings.mouseFile.empty()) {
    m_mouseFileWatch =
        m_loop.watchFolder(m_settings.mouseFile.parent_path(), [this] { m_mouse.ring(); });
  }
}

void Companion::watchWindow() {
  m_bus.watch(std::string("type='signal',sender='org.freedesktop.DBus',"
                          "member='NameOwnerChanged',arg0='") +
                  windowName + "'",
              [this](sd_bus_message* signal) {
                const char* name = nullptr;
                const char* before = nullptr;
                const char* after = nullptr;
                if (sd_bus_message_read(signal, "sss", &name, &before, &after) > 0) {
                  setHasWindow(*after != '\0');
                }
              });
  m_bus.call(
      {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner"},
      [](sd_bus_message* call) { sd_bus_message_append(call, "s", windowName); },
      [this](sd_bus_message* answer) {
        int hasOwner = 0;
        if (answer != nullptr && sd_bus_message_read(answer, "b", &hasOwner) > 0) {
          setHasWindow(hasOwner != 0);
        }
      });
}

void Companion::setHasWindow(bool hasWindow) {
  m_hasWindow = hasWindow;
  if (!hasWindow) {
    // A window that ended without a word left no trial behind.
    m_mouse.setIsTrial(false);
  }
  decide();
}

void Companion::reloadLinks() {
  m_links.reload();
  if (m_links.isEmpty()) {
    // Nobody needs to know what is in front, so that nothing wakes this program up for it.
    m_foreground.reset();
    m_foregroundTimer.stop();
    m_front.reset();
    m_policy.setSight(SwitchPolicy::Sight::InFront);
  } else if (!m_foreground) {
    openForeground();
  }
  if (m_policy.program()) {
    m_policy.relinked(m_front ? programOf(*m_front).slot : std::nullopt);
  }
}

void Companion::openForeground() {
  m_foreground = foreground::open(
      m_loop, [this](const std::optional<AppIdentity>& identity) { takeForeground(identity); },
      [this] {
        m_foreground.reset();
        m_policy.setSight(SwitchPolicy::Sight::None);
        m_foregroundPause = firstForegroundPause;
        m_foregroundTimer.startIn(m_foregroundPause);
        explain();
      });
  m_policy.setSight(m_foreground ? SwitchPolicy::Sight::InFront : SwitchPolicy::Sight::None);
  if (!m_foreground && m_foregroundPause < longestForegroundPause) {
    m_foregroundPause = std::min(2 * m_foregroundPause, longestForegroundPause);
    m_foregroundTimer.startIn(m_foregroundPause);
  }
  explain();
}

void Companion::takeForeground(const std::optional<AppIdentity>& identity) {
  // Between two windows there is none.
  if (!identity) {
    return;
  }
  m_front = identity;
  m_policy.inFront(programOf(*identity), now());
  decide();
}

SwitchPolicy::Program Companion::programOf(const AppIdentity& identity) const {
  const auto match = m_links.find(identity, m_policy.slot());
  SwitchPolicy::Program program{
      .id = keyOf(identity), .name = identity.appId, .slot = std::nullopt};
  if (match) {
    program.name = match->name;
    program.slot = match->slot;
  }
  return program;
}

void Companion::decide() {
  m_policy.pause(m_hasWindow && NerinAction::isAnyDraftOnDisk()
                     ? SwitchPolicy::Pause::WindowHasEdits
                     : SwitchPolicy::Pause::None);
  if (const auto wanted = m_policy.wanted(now())) {
    int written = *wanted;
    const auto result = m_mouse.writeSlot([&](int slot) {
      m_policy.mouseHas(slot);
      const auto target = m_policy.wanted(now());
      written = target.value_or(written);
      return target;
    });
    if (result == MouseWatch::Written::Busy) {
      m_decideTimer.startIn(busyPause);
      explain();
      return;
    }
    if (result != MouseWatch::Written::Unchanged) {
      const bool isDone = result == MouseWatch::Written::Done;
      m_policy.wrote(written, isDone, now());
      if (isDone) {
        m_bus.postNotificationName(
            "NerinDevStatus", "",
            LXUserInfo{{"type", static_cast<std::int32_t>(DeviceReport::SlotChanged)},
                       {"value", written}});
      }
    }
  }
  if (const auto due = m_policy.due(now())) {
    m_decideTimer.startAt(*due);
  } else {
    m_decideTimer.stop();
  }
  explain();
}

void Companion::explain() {
  std::string text = m_policy.explanation();
  if (text != m_explanation) {
    m_explanation = std::move(text);
    m_bus.tellChanged("Explanation");
  }
}

void Companion::reopenWindow() {
  if (!m_reopenUntil || m_settings.windowProgram.empty()) {
    return;
  }
  if (now() > *m_reopenUntil) {
    m_reopenUntil.reset();
    return;
  }
  // The arrival of the mouse calls again.
  if (!m_mouse.isThere()) {
    return;
  }
  if (m_hasWindow) {
    m_reopenTimer.startIn(reopenPause);
    return;
  }
  m_reopenUntil.reset();
  m_launcher.launch(m_settings.windowProgram);
}
