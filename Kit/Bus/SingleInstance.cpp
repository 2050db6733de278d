#include "Kit/Bus/SingleInstance.h"

#include <QObject>
#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <utility>

#include <systemd/sd-bus.h>

#include "Kit/Bus/BusConnection.h"
#include "Kit/Bus/BusThread.h"

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

namespace {

constexpr BusConnection::Target theBus(const char* method) {
  return {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method};
}

// What other programs can ask of a running program of a desktop.
constexpr const char* application = "org.freedesktop.Application";
// The last bus call of a program; a bus that does not answer must not keep it.
constexpr milliseconds releaseLimit{200};

// The path of an application's object: its name with slashes.
std::string pathOf(const std::string& name) {
  std::string path = '/' + name;
  std::replace(path.begin(), path.end(), '.', '/');
  return path;
}

// The desktop's permission to come to the front, from the dictionary that stands next.
std::string tokenIn(sd_bus_message* call) {
  std::string token;
  if (sd_bus_message_enter_container(call, 'a', "{sv}") <= 0) {
    return token;
  }
  while (sd_bus_message_enter_container(call, 'e', "sv") > 0) {
    const char* key = nullptr;
    const char* text = nullptr;
    sd_bus_message_read(call, "s", &key);
    const std::string name = key != nullptr ? key : "";
    const bool isToken = name == "activation-token" || name == "desktop-startup-id";
    if (!isToken || sd_bus_message_read(call, "v", "s", &text) <= 0) {
      sd_bus_message_skip(call, "v");
    } else if (name == "activation-token" || token.empty()) {
      token = text;
    }
    sd_bus_message_exit_container(call);
  }
  return token;
}

}  // namespace

// Lives on the thread that created it; what is marked is shared with the thread of the bus.
struct SingleInstance::State {
  State(std::string busName, std::string startToken,
        std::function<void(const std::string&)> whenActivated)
      : name(std::move(busName)),
        token(std::move(startToken)),
        activate(std::move(whenActivated)) {}

  const std::string name;
  const std::string token;
  const std::function<void(const std::string&)> activate;
  const Clock::time_point begin = Clock::now();
  QObject context;  // shared: receives activations on the creator's thread

  std::mutex mutex;
  std::condition_variable changed;  // shared
  std::optional<bool> answered;     // shared: whether this is a second start
  bool isReleased = false;          // shared

  // Last, so that it ends before the rest.
  BusThread thread{[this] { finish(false); }};

  void ask(BusConnection& bus);
  void serve(BusConnection& bus, const char* method, const char* otherArguments);
  void activateFirst(BusConnection& bus);
  void release(BusConnection& bus);
  void finish(bool isSecond);
  void setReleased();
};

void SingleInstance::State::finish(bool isSecond) {
  const std::lock_guard lock(mutex);
  // A bus that is lost later does not make a second start of the first.
  answered = answered.value_or(isSecond);
  isReleased = true;
  changed.notify_all();
}

void SingleInstance::State::serve(BusConnection& bus, const char* method,
                                  const char* otherArguments) {
  bus.serve(pathOf(name), application, method, [this, otherArguments](sd_bus_message* call) {
    if (*otherArguments != '\0') {
      sd_bus_message_skip(call, otherArguments);
    }
    const std::string theirs = tokenIn(call);
    QMetaObject::invokeMethod(
        &context, [this, theirs] { activate(theirs); }, Qt::QueuedConnection);
  });
}

void SingleInstance::State::ask(BusConnection& bus) {
  // The object comes first, so that a start right after this one finds it. Whatever is asked of the
  // program, it comes to the front.
  serve(bus, "Activate", "");
  serve(bus, "Open", "as");
  serve(bus, "ActivateAction", "sav");
  bus.requestName(name, [this, &bus](std::optional<bool> isOurs) {
    if (isOurs.value_or(true)) {
      const std::lock_guard lock(mutex);
      answered = false;
      changed.notify_all();
    } else {
      activateFirst(bus);
    }
  });
}

// The first one may be busy with the mouse, and acts when it is done: nobody waits for that.
void SingleInstance::State::activateFirst(BusConnection& bus) {
  const std::string path = pathOf(name);
  bus.call(
      {name.c_str(), path.c_str(), application, "Activate"},
      [this](sd_bus_message* call) {
        sd_bus_message_open_container(call, 'a', "{sv}");
        if (!token.empty()) {
          sd_bus_message_append(call, "{sv}{sv}", "activation-token", "s", token.c_str(),
                                "desktop-startup-id", "s", token.c_str());
        }
        sd_bus_message_close_container(call);
      },
      nullptr);
  // The bus answers in order, so it has received everything sent before this call.
  bus.call(theBus("GetId"), nullptr, [this](sd_bus_message*) { finish(true); });
}

void SingleInstance::State::release(BusConnection& bus) {
  bus.call(
      theBus("ReleaseName"),
      [this](sd_bus_message* call) { sd_bus_message_append(call, "s", name.c_str()); },
      [this](sd_bus_message*) { finish(false); });
}

SingleInstance::SingleInstance(std::string name, std::string token,
                               std::function<void(const std::string&)> activate)
    : m_state(std::make_unique<State>(std::move(name), std::move(token), std::move(activate))) {
  m_state->thread.give([state = m_state.get()](BusConnection& bus) { state->ask(bus); });
}

SingleInstance::~SingleInstance() {
  std::unique_lock lock(m_state->mutex);
  if (m_state->answered == false) {
    // The bus notices a closed connection only later, and this program may be started anew at once.
    m_state->thread.give([state = m_state.get()](BusConnection& bus) { state->release(bus); });
    m_state->changed.wait_for(lock, releaseLimit, [this] { return m_state->isReleased; });
  }
}

bool SingleInstance::isSecond(milliseconds limit) {
  std::unique_lock lock(m_state->mutex);
  m_state->changed.wait_until(lock, m_state->begin + limit,
                              [this] { return m_state->answered.has_value(); });
  return m_state->answered.value_or(false);
}
