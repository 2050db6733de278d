#include "Companion/Desktop/RunningPrograms.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include <systemd/sd-bus.h>

using namespace std::chrono_literals;

namespace {

constexpr const char* manager = "org.freedesktop.systemd1";
constexpr const char* path = "/org/freedesktop/systemd1";
constexpr const char* interface = "org.freedesktop.systemd1.Manager";
constexpr auto swarmTime = 100ms;

AppIdentity identityOf(const std::string& unit) {
  AppIdentity identity;
  identity.appId = desktopIdOfUnit(unit);
  identity.unit = unit;
  return identity;
}

std::vector<std::string> unitsIn(sd_bus_message* answer) {
  std::vector<std::string> units;
  sd_bus_message_enter_container(answer, 'a', "(ssssssouso)");
  while (sd_bus_message_enter_container(answer, 'r', "ssssssouso") > 0) {
    const char* name = nullptr;
    if (sd_bus_message_read(answer, "s", &name) > 0) {
      units.emplace_back(name);
    }
    sd_bus_message_skip(answer, "sssssouso");
    sd_bus_message_exit_container(answer);
  }
  return units;
}

bool contains(const std::vector<std::string>& all, const std::string& one) {
  return std::find(all.begin(), all.end(), one) != all.end();
}

}  // namespace

RunningPrograms::RunningPrograms(EventLoop& loop, IsLinked isLinked, Changed changed, Lost lost)
    : m_isLinked(std::move(isLinked)),
      m_changed(std::move(changed)),
      m_lost(std::move(lost)),
      m_askTimer(loop, [this] { ask(); }) {}

RunningPrograms::~RunningPrograms() = default;

std::unique_ptr<RunningPrograms> RunningPrograms::open(EventLoop& loop, IsLinked isLinked,
                                                       Changed changed, Lost lost) {
  auto result = std::unique_ptr<RunningPrograms>(
      new RunningPrograms(loop, std::move(isLinked), std::move(changed), std::move(lost)));
  return result->connect(loop) ? std::move(result) : nullptr;
}

bool RunningPrograms::connect(EventLoop& loop) {
  m_bus = BusConnection::open(loop.handle(), BusConnection::Kind::Session, [this] { end(); });
  if (!m_bus) {
    return false;
  }
  for (const char* member : {"UnitNew", "UnitRemoved"}) {
    m_bus->watch(std::string("type='signal',sender='") + manager + "',interface='" + interface +
                     "',member='" + member + "'",
                 [this](sd_bus_message* signal) {
                   const char* unit = nullptr;
                   if (sd_bus_message_read(signal, "s", &unit) > 0 &&
                       std::string_view(unit).starts_with("app-")) {
                     m_askTimer.startIn(swarmTime);
                   }
                 });
  }
  // Without it the manager tells of no units.
  m_bus->call({manager, path, interface, "Subscribe"}, nullptr, nullptr, false);
  ask();
  return true;
}

void RunningPrograms::ask() {
  m_bus->call(
      {manager, path, interface, "ListUnitsByPatterns"},
      [](sd_bus_message* call) {
        sd_bus_message_append(call, "asas", 2, "active", "activating", 2, "app-*.scope",
                              "app-*.service");
      },
      [this](sd_bus_message* answer) { take(answer); }, false);
}

void RunningPrograms::take(sd_bus_message* answer) {
  if (answer == nullptr) {
    end();
    return;
  }
  const std::vector<std::string> now = unitsIn(answer);
  std::erase_if(m_units, [&](const std::string& unit) { return !contains(now, unit); });
  std::copy_if(now.begin(), now.end(), std::back_inserter(m_units),
               [&](const std::string& unit) { return !contains(m_units, unit); });
  m_isKnown = true;
  linksChanged();
}

void RunningPrograms::linksChanged() {
  if (!m_isKnown) {
    return;
  }
  const auto last = std::find_if(m_units.rbegin(), m_units.rend(), [&](const std::string& unit) {
    return m_isLinked(identityOf(unit));
  });
  m_changed(last != m_units.rend() ? identityOf(*last) : AppIdentity{});
}

void RunningPrograms::end() {
  if (m_lost) {
    std::exchange(m_lost, nullptr)();
  }
}
