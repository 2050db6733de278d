#include "Companion/Desktop/GnomeForeground.h"

#include <string>
#include <utility>

#include <nlohmann/json.hpp>
#include <systemd/sd-bus.h>

namespace {

constexpr const char* shell = "org.gnome.Shell";
constexpr const char* path = "/org/gnome/shell/extensions/FocusedWindow";
constexpr const char* interface = "org.gnome.shell.extensions.FocusedWindow";

std::string textIn(const nlohmann::json& window, const char* key) {
  const auto entry = window.find(key);
  return entry != window.end() && entry->is_string() ? entry->get<std::string>() : "";
}

// The extension answers in JSON. Of what it says, only the class and the process are looked at.
std::optional<AppIdentity> identityOf(const std::string& text) {
  const auto window = nlohmann::json::parse(text, nullptr, false);
  if (!window.is_object()) {
    return std::nullopt;
  }
  AppIdentity identity;
  identity.appId = textIn(window, "wm_class");
  identity.instance = textIn(window, "wm_class_instance");
  const auto pid = window.find("pid");
  if (pid != window.end() && pid->is_number_integer()) {
    identity.pid = pid->get<int>();
    foreground::describeProcess(identity);
  }
  const bool isKnown = !identity.appId.empty() || !identity.executable.empty();
  return isKnown ? std::optional(identity) : std::nullopt;
}

}  // namespace

GnomeForeground::GnomeForeground(Changed changed, Lost lost)
    : m_changed(std::move(changed)), m_lost(std::move(lost)) {}

GnomeForeground::~GnomeForeground() = default;

std::unique_ptr<GnomeForeground> GnomeForeground::open(EventLoop& loop, Changed changed,
                                                       Lost lost) {
  auto result =
      std::unique_ptr<GnomeForeground>(new GnomeForeground(std::move(changed), std::move(lost)));
  return result->connect(loop) ? std::move(result) : nullptr;
}

bool GnomeForeground::connect(EventLoop& loop) {
  m_bus = BusConnection::open(loop.handle(), BusConnection::Kind::Session, [this] { end(); });
  if (!m_bus) {
    return false;
  }
  m_bus->watch(std::string("type='signal',sender='org.freedesktop.DBus',"
                           "member='NameOwnerChanged',arg0='") +
                   shell + "'",
               [this](sd_bus_message* signal) {
                 const char* name = nullptr;
                 const char* before = nullptr;
                 if (sd_bus_message_read(signal, "ss", &name, &before) > 0 && *before != '\0') {
                   end();
                 }
               });
  m_bus->watch(std::string("type='signal',sender='") + shell +
                   "',path='/org/gnome/Shell/Introspect',"
                   "interface='org.gnome.Shell.Introspect',member='RunningApplicationsChanged'",
               [this](sd_bus_message*) { ask(); });
  // Without a window in front the extension answers with an error, so that this is asked first.
  m_bus->call(
      {shell, path, "org.freedesktop.DBus.Introspectable", "Introspect"}, nullptr,
      [this](sd_bus_message* answer) {
        const char* description = nullptr;
        if (answer != nullptr && sd_bus_message_read(answer, "s", &description) > 0 &&
            std::string(description).find(interface) != std::string::npos) {
          ask();
        } else {
          end();
        }
      },
      false);
  return true;
}

void GnomeForeground::ask() {
  if (m_isAsking) {
    m_isAskedAgain = true;
    return;
  }
  m_isAsking = true;
  m_bus->call(
      {shell, path, interface, "Get"}, nullptr, [this](sd_bus_message* answer) { take(answer); },
      false);
}

void GnomeForeground::take(sd_bus_message* answer) {
  m_isAsking = false;
  if (std::exchange(m_isAskedAgain, false)) {
    ask();
    return;
  }
  const char* text = nullptr;
  const bool isTold = answer != nullptr && sd_bus_message_read(answer, "s", &text) > 0;
  m_changed(isTold ? identityOf(text) : std::nullopt);
}

void GnomeForeground::end() {
  if (m_lost) {
    std::exchange(m_lost, nullptr)();
  }
}
