#include "Companion/Desktop/KWinForeground.h"

#include <cstdlib>
#include <fstream>
#include <system_error>
#include <utility>

#include <systemd/sd-bus.h>

using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

constexpr const char* kwin = "org.kde.KWin";
constexpr const char* scriptingPath = "/Scripting";
constexpr const char* scripting = "org.kde.kwin.Scripting";
// A fixed name, so that a script that a killed program left behind goes at the next start.
constexpr const char* scriptName = "com.corvex.NerinOption.focus";
constexpr const char* path = "/com/corvex/NerinOption/Focus";
constexpr const char* interface = "com.corvex.NerinOption.Focus";
constexpr const char* member = "InFront";
// A script that runs tells the first state at once.
constexpr auto silenceLimit = 3s;

// The names of signal and property changed with Plasma 6. The title is not read.
std::string scriptFor(const std::string& address) {
  return std::string("function tell(window) {\n  callDBus(\"") + address + "\", \"" + path +
         "\", \"" + interface + "\", \"" + member + R"(",
           window ? String(window.resourceClass) : "",
           window ? String(window.resourceName) : "",
           window ? String(window.desktopFileName) : "",
           window ? String(window.pid) : "0");
}
(workspace.windowActivated || workspace.clientActivated).connect(tell);
tell(workspace.activeWindow || workspace.activeClient);
)";
}

}  // namespace

KWinForeground::KWinForeground(EventLoop& loop, fs::path file, Changed changed, Lost lost)
    : m_file(std::move(file)),
      m_changed(std::move(changed)),
      m_lost(std::move(lost)),
      m_silence(loop, [this] { end(); }) {}

std::unique_ptr<KWinForeground> KWinForeground::open(EventLoop& loop, const fs::path& folder,
                                                     Changed changed, Lost lost) {
  if (folder.empty()) {
    return nullptr;
  }
  auto result = std::unique_ptr<KWinForeground>(
      new KWinForeground(loop, folder / "kwin-focus.js", std::move(changed), std::move(lost)));
  return result->connect(loop) ? std::move(result) : nullptr;
}

KWinForeground::~KWinForeground() {
  if (m_isLoaded) {
    m_bus->call(
        {kwin, scriptingPath, scripting, "unloadScript"},
        [](sd_bus_message* call) { sd_bus_message_append(call, "s", scriptName); }, nullptr, false);
    std::error_code ignored;
    fs::remove(m_file, ignored);
  }
}

bool KWinForeground::connect(EventLoop& loop) {
  m_bus = BusConnection::open(loop.handle(), BusConnection::Kind::Session, [this] { end(); });
  if (!m_bus) {
    return false;
  }
  m_bus->serve(path, interface, member, [this](sd_bus_message* call) { take(call); });
  m_bus->watch(
      std::string("type='signal',sender='org.freedesktop.DBus',"
                  "member='NameOwnerChanged',arg0='") +
          kwin + "'",
      [this](sd_bus_message* signal) {
        const char* name = nullptr;
        const char* before = nullptr;
        const char* after = nullptr;
        if (sd_bus_message_read(signal, "sss", &name, &before, &after) > 0 && *before != '\0') {
          end();
        }
      });
  m_silence.startIn(silenceLimit);
  // Ends what a killed program left, and asks whether there is a KWin.
  m_bus->call(
      {kwin, scriptingPath, scripting, "unloadScript"},
      [](sd_bus_message* call) { sd_bus_message_append(call, "s", scriptName); },
      [this](sd_bus_message* answer) {
        if (answer == nullptr) {
          end();
        } else {
          load();
        }
      },
      false);
  return true;
}

void KWinForeground::load() {
  std::error_code ignored;
  fs::create_directories(m_file.parent_path(), ignored);
  std::ofstream script(m_file, std::ios::trunc);
  script << scriptFor(m_bus->uniqueName());
  script.close();
  if (!script) {
    end();
    return;
  }
  m_bus->call(
      {kwin, scriptingPath, scripting, "loadScript"},
      [this](sd_bus_message* call) {
        sd_bus_message_append(call, "ss", m_file.c_str(), scriptName);
      },
      [this](sd_bus_message* answer) {
        int number = -1;
        if (answer == nullptr || sd_bus_message_read(answer, "i", &number) <= 0 || number < 0) {
          end();
          return;
        }
        m_isLoaded = true;
        m_bus->call({kwin, scriptingPath, scripting, "start"}, nullptr, nullptr, false);
      },
      false);
}

void KWinForeground::take(sd_bus_message* call) {
  const char* windowClass = nullptr;
  const char* instance = nullptr;
  const char* desktopFile = nullptr;
  const char* pid = nullptr;
  if (sd_bus_message_read(call, "ssss", &windowClass, &instance, &desktopFile, &pid) <= 0) {
    return;
  }
  m_silence.stop();
  std::optional<AppIdentity> identity;
  const int process = std::atoi(pid);
  if (*windowClass != '\0' || *desktopFile != '\0' || process > 0) {
    identity.emplace();
    // The desktop file is what KWin itself found out about the window.
    identity->appId = *desktopFile != '\0' ? desktopFile : windowClass;
    identity->instance = *desktopFile != '\0' ? windowClass : instance;
    identity->pid = process;
    foreground::describeProcess(*identity);
  }
  m_changed(identity);
}

void KWinForeground::end() {
  m_silence.stop();
  if (m_lost) {
    std::exchange(m_lost, nullptr)();
  }
}
