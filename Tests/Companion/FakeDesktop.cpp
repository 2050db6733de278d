#include "Tests/Companion/FakeDesktop.h"

#include <cstring>
#include <stdexcept>

#include <stdlib.h>

namespace {

constexpr const char* session = "/org/freedesktop/login1/session/auto";
// As real signals have it.
constexpr const char* numberedSession = "/org/freedesktop/login1/session/_31";

int notify(sd_bus_message* call, void* data, sd_bus_error* /*error*/) {
  auto& desktop = *static_cast<FakeDesktop*>(data);
  const char* name = nullptr;
  const char* icon = nullptr;
  const char* summary = nullptr;
  const char* body = nullptr;
  std::uint32_t replaced = 0;
  sd_bus_message_read(call, "susss", &name, &replaced, &icon, &summary, &body);
  desktop.shown.push_back({replaced, summary, body});
  return sd_bus_reply_method_return(call, "u", 41);
}

int readFlag(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/, const char* property,
             sd_bus_message* reply, void* data, sd_bus_error* /*error*/) {
  const bool isLocked = static_cast<FakeDesktop*>(data)->isLocked;
  return sd_bus_message_append(reply, "b",
                               std::strcmp(property, "Active") == 0 || isLocked ? 1 : 0);
}

void readCommand(sd_bus_message* call, std::vector<std::string>& command) {
  const char* program = nullptr;
  sd_bus_message_enter_container(call, 'v', "a(sasb)");
  sd_bus_message_enter_container(call, 'a', "(sasb)");
  sd_bus_message_enter_container(call, 'r', "sasb");
  sd_bus_message_read(call, "s", &program);
  sd_bus_message_enter_container(call, 'a', "s");
  for (const char* word = nullptr; sd_bus_message_read(call, "s", &word) > 0;) {
    command.emplace_back(word);
  }
  sd_bus_message_exit_container(call);
  sd_bus_message_skip(call, "b");
  for (int depth = 0; depth < 3; ++depth) {
    sd_bus_message_exit_container(call);
  }
}

// The library has checked the signature of the call.
int startUnit(sd_bus_message* call, void* data, sd_bus_error* /*error*/) {
  FakeDesktop::Started one;
  const char* unit = nullptr;
  const char* mode = nullptr;
  sd_bus_message_read(call, "ss", &unit, &mode);
  one.unit = unit;
  one.mode = mode;
  sd_bus_message_enter_container(call, 'a', "(sv)");
  while (sd_bus_message_enter_container(call, 'r', "sv") > 0) {
    const char* name = nullptr;
    const char* type = nullptr;
    const char* text = nullptr;
    sd_bus_message_read(call, "s", &name);
    const std::string property = name;
    sd_bus_message_peek_type(call, nullptr, &type);
    if (property == "ExecStart") {
      readCommand(call, one.command);
    } else if (std::strcmp(type, "s") == 0) {
      sd_bus_message_read(call, "v", "s", &text);
      one.texts[property] = text;
    } else {
      sd_bus_message_skip(call, "v");
    }
    sd_bus_message_exit_container(call);
  }
  static_cast<FakeDesktop*>(data)->started.push_back(one);
  return sd_bus_reply_method_return(call, "o", "/org/freedesktop/systemd1/job/1");
}

const sd_bus_vtable manager[] = {SD_BUS_VTABLE_START(0),
                                 SD_BUS_METHOD("StartTransientUnit", "ssa(sv)a(sa(sv))", "o",
                                               startUnit, SD_BUS_VTABLE_UNPRIVILEGED),
                                 SD_BUS_VTABLE_END};
const sd_bus_vtable notifications[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Notify", "susssasa{sv}i", "u", notify, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END};
const sd_bus_vtable login[] = {SD_BUS_VTABLE_START(0),
                               SD_BUS_PROPERTY("LockedHint", "b", readFlag, 0, 0),
                               SD_BUS_PROPERTY("Active", "b", readFlag, 0, 0), SD_BUS_VTABLE_END};

}  // namespace

FakeDesktop::FakeDesktop(EventLoop& loop) {
  // One bus is both of them.
  setenv("DBUS_SYSTEM_BUS_ADDRESS", getenv("DBUS_SESSION_BUS_ADDRESS"), 1);
  if (sd_bus_open_user(&m_bus) < 0 ||
      sd_bus_add_object_vtable(m_bus, nullptr, "/org/freedesktop/Notifications",
                               "org.freedesktop.Notifications", notifications, this) < 0 ||
      sd_bus_add_object_vtable(m_bus, nullptr, session, "org.freedesktop.login1.Session", login,
                               this) < 0 ||
      sd_bus_request_name(m_bus, "org.freedesktop.Notifications", 0) < 0 ||
      sd_bus_request_name(m_bus, "org.freedesktop.login1", 0) < 0 ||
      sd_bus_attach_event(m_bus, loop.handle(), 0) < 0) {
    throw std::runtime_error("no desktop");
  }
}

FakeDesktop::~FakeDesktop() {
  sd_bus_flush_close_unref(m_bus);
  unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
}

void FakeDesktop::becomeServiceManager() {
  if (sd_bus_add_object_vtable(m_bus, nullptr, "/org/freedesktop/systemd1",
                               "org.freedesktop.systemd1.Manager", manager, this) < 0 ||
      sd_bus_request_name(m_bus, "org.freedesktop.systemd1", 0) < 0) {
    throw std::runtime_error("no service manager");
  }
}

void FakeDesktop::setIsLocked(bool locked) {
  isLocked = locked;
  sd_bus_message* signal = nullptr;
  sd_bus_message_new_signal(m_bus, &signal, numberedSession, "org.freedesktop.DBus.Properties",
                            "PropertiesChanged");
  sd_bus_message_append(signal, "sa{sv}as", "org.freedesktop.login1.Session", 0, 1, "LockedHint");
  sd_bus_send(m_bus, signal, nullptr);
  sd_bus_message_unref(signal);
}

void FakeDesktop::sleepAndResume() {
  for (const int isBefore : {1, 0}) {
    sd_bus_emit_signal(m_bus, "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                       "PrepareForSleep", "b", isBefore);
  }
}
