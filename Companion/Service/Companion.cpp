#include "Companion/Service/Companion.h"

#include <system_error>
#include <utility>

#include <systemd/sd-bus.h>

#include "Action/Edit/DraftFiles.h"
#include "Action/Edit/Drafts.h"
#include "Action/Library/SupportFolder.h"
#include "Action/NerinAction.h"
#include "Kit/Bus/CompanionAddress.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/UserFolders.h"

using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

constexpr const char* windowName = "com.corvex.NerinOption";
constexpr auto busyPause = 250ms;
constexpr std::chrono::seconds firstForegroundPause{1};
constexpr std::chrono::seconds longestForegroundPause{30};
constexpr auto reopenLimit = 60s;
// After sleep, the bus needs a moment to find its devices.
constexpr auto resumePause = 2s;
// The window that asked for it has to end first.
constexpr auto reopenPause = 500ms;

EventLoop::Time now() {
  return std::chrono::steady_clock::now();
}

}  // namespace

Companion::Companion(EventLoop& loop, BusConnection& bus, Settings settings)
    : m_loop(loop),
      m_bus(bus),
      m_settings(std::move(settings)),
      m_launcher(bus),
      m_mouse(loop, m_settings.udevControl,
              {.reported = [this](const DeviceReport& one) { report(one); },
               .came =
                   [this](const MouseReading& reading) {
                     m_policy.mouseCame(reading.slot);
                     decide();
                   },
               .heard = [this](const HidInputReport& one) { return launch(one); }}),
      m_foregroundTimer(loop, [this] { openForeground(); }),
      m_decideTimer(loop, [this] { decide(); }),
      m_display(loop, bus, m_settings.hasOwnDisplay, m_policy, m_mouse),
      m_reopenTimer(loop, [this] { reopenWindow(); }),
      m_resumeTimer(loop, [this] {
        m_mouse.look();
        m_mouse.ring();
      }) {
  m_bus.publish(companionaddress::path, companionaddress::interface,
                {{companionaddress::explanation, [this] { return m_explanation; }},
                 {companionaddress::foreground,
                  [this] {
                    const std::string name = m_foreground ? m_foreground->name() : "";
                    return !name.empty() ? name : isForegroundNeeded() ? "none" : "not needed";
                  }},
                 {companionaddress::mouse, [this] { return m_settings.mouseFile.string(); }}});
  explain();
}

Companion::~Companion() {
  // A window that stays must not show what is no longer so.
  m_bus.postNotificationName(slotreason::notification, "", slotreason::userInfoOf({}));
  m_bus.forgetEverybody();
}

void Companion::begin() {
  m_bus.addObserver("NerinSettingChange",
                    [this](const std::string& object, const LXUserInfo& userInfo) {
                      if (const auto message = windowMessageOf(object, userInfo)) {
                        obey(*message);
                      }
                    });
  m_bus.addObserver(slotreason::question,
                    [this](const std::string&, const LXUserInfo&) { tellReason(); });
  watchWindow();
  watchFiles();
  m_session = std::make_unique<SessionState>(
      m_loop.handle(),
      [this] {
        // The right to open the mouse comes and goes with the seat.
        m_mouse.look();
        decide();
      },
      [this] { m_resumeTimer.startIn(resumePause); });
  NerinAction::startListenDev();
  reloadLinks();
  m_mouse.look();
  explain();
}

void Companion::obey(const WindowMessage& message) {
  if (const auto slot = message.chosenSlot()) {
    m_policy.personChose(*slot, now());
    m_mouse.note(*slot);
    m_display.showSlot();
  }
  m_display.showSetting(message);
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
      m_display.showSlot();
      break;
    case DeviceReport::Removed:
      m_policy.mouseGone();
      break;
    case DeviceReport::Attached:
      reopenWindow();
      break;
    case DeviceReport::DpiChanged:
      m_display.showLevel(one.value);
      break;
  }
  decide();
}

void Companion::watchFiles() {
  // Neither folder need exist before the first start.
  const fs::path drafts = draftfiles::pathOf("any").parent_path();
  const fs::path preferences = NerinAction::preferenceFilePath();
  UserFolders::make(drafts);
  UserFolders::make(preferences.parent_path());
  m_draftWatch = m_loop.watchFolder(drafts, [this] { decide(); });
  // Other programs have their files beside the preferences.
  m_preferenceWatch = m_loop.watchFile(preferences, [this] {
    m_display.forgetWords();
    reloadLinks();
    decide();
  });
  if (!m_settings.mouseFile.empty()) {
    m_mouseFileWatch =
        m_loop.watchFolder(m_settings.mouseFile.parent_path(), [this] { m_mouse.ringByFile(); });
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
  m_buttons.learn(learnedbuttons::all());
  m_isOn = NerinAction::daemonGetSwitchSlots();
  m_policy.setIsOn(m_isOn);
  m_policy.setHasLinks(!m_links.isEmpty());
  if (!isForegroundNeeded()) {
    // Nobody needs to know what is in front, so that nothing wakes this program up for it.
    m_foreground.reset();
    m_foregroundTimer.stop();
    m_foregroundPause = firstForegroundPause;
    m_front.reset();
    m_policy.setSight(SwitchPolicy::Sight::InFront);
  } else if (!m_foreground || m_isForegroundLost) {
    openForeground();
  } else {
    m_foreground->linksChanged();
  }
  if (m_policy.program()) {
    m_policy.relinked(m_front ? programOf(*m_front).slot : std::nullopt);
  }
}

void Companion::openForeground() {
  m_isForegroundLost = false;
  m_foreground = foreground::open(
      m_loop,
      {.runtimeFolder = m_settings.runtimeFolder,
       .isLinked = [this](const AppIdentity& one) { return programOf(one).slot.has_value(); }},
      [this](const std::optional<AppIdentity>& identity) { takeForeground(identity); },
      [this] { loseForeground(); });
  if (!m_foreground) {
    m_policy.setSight(SwitchPolicy::Sight::None);
  }
  explain();
}

void Companion::loseForeground() {
  m_isForegroundLost = true;
  m_policy.setSight(SwitchPolicy::Sight::None);
  searchForegroundLater();
  explain();
}

// A desktop that starts or crashes is there soon, or not at all.
void Companion::searchForegroundLater() {
  if (m_foregroundPause <= longestForegroundPause) {
    m_foregroundTimer.startIn(m_foregroundPause);
    m_foregroundPause *= 2;
  }
}

void Companion::takeForeground(const std::optional<AppIdentity>& identity) {
  if (m_foreground->tellsRunning()) {
    m_policy.setSight(SwitchPolicy::Sight::Running);
    searchForegroundLater();
  } else {
    m_policy.setSight(SwitchPolicy::Sight::InFront);
    m_foregroundPause = firstForegroundPause;
  }
  // Between two windows there is none.
  if (identity) {
    m_front = identity;
    m_policy.inFront(programOf(*identity), now());
  }
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

// True for a button that somebody taught, whether or not it launches something here.
bool Companion::launch(const HidInputReport& report) {
  const auto press = m_buttons.heard(report.interfaceNumber, report.bytes, now());
  if (!press) {
    return false;
  }
  const bool isClosed = m_session && m_session->isClosed();
  if (!press->isNew || isClosed || !m_policy.slot()) {
    return true;
  }
  // Only what a person put there in this program: never a path out of somebody else's profile.
  const auto path = NerinAction::daemonGetLaunchPath(*m_policy.slot(), press->button);
  if (path && !path->empty()) {
    m_launcher.launch(*path);
  }
  return true;
}

void Companion::decide() {
  const bool isClosed = m_session && m_session->isClosed();
  const bool hasEdits = m_hasWindow && NerinAction::isAnyDraftOnDisk();
  m_policy.pause(isClosed   ? SwitchPolicy::Pause::Locked
                 : hasEdits ? SwitchPolicy::Pause::WindowHasEdits
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
        m_display.showWrittenSlot();
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
  const SlotReason reason = m_policy.reason();
  if (m_reason == reason) {
    return;
  }
  m_reason = reason;
  m_explanation = slotreason::sentenceOf(reason);
  m_bus.tellChanged(companionaddress::explanation);
  tellReason();
}

void Companion::tellReason() {
  if (m_reason) {
    m_bus.postNotificationName(slotreason::notification, m_reason->program,
                               slotreason::userInfoOf(*m_reason));
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
