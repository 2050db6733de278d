#include "Companion/Desktop/Launcher.h"

#include <array>
#include <cstdlib>

#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include "Kit/Core/LXLogger.h"

namespace {

// What a program needs to find its display, where the service manager was not told.
constexpr std::array displayVariables{"DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY",
                                      "XDG_CURRENT_DESKTOP"};

// One property of a unit: a text under a name.
void appendText(sd_bus_message* call, const char* name, const char* text) {
  sd_bus_message_append(call, "(sv)", name, "s", text);
}

void appendCommand(sd_bus_message* call, const std::vector<std::string>& command) {
  sd_bus_message_open_container(call, 'r', "sv");
  sd_bus_message_append(call, "s", "ExecStart");
  sd_bus_message_open_container(call, 'v', "a(sasb)");
  sd_bus_message_open_container(call, 'a', "(sasb)");
  sd_bus_message_open_container(call, 'r', "sasb");
  sd_bus_message_append(call, "s", command.front().c_str());
  sd_bus_message_open_container(call, 'a', "s");
  for (const std::string& word : command) {
    sd_bus_message_append(call, "s", word.c_str());
  }
  sd_bus_message_close_container(call);
  sd_bus_message_append(call, "b", 0);
  for (int depth = 0; depth < 4; ++depth) {
    sd_bus_message_close_container(call);
  }
}

void appendEnvironment(sd_bus_message* call) {
  sd_bus_message_open_container(call, 'r', "sv");
  sd_bus_message_append(call, "s", "Environment");
  sd_bus_message_open_container(call, 'v', "as");
  sd_bus_message_open_container(call, 'a', "s");
  for (const char* variable : displayVariables) {
    if (const char* value = std::getenv(variable)) {
      sd_bus_message_append(call, "s", (std::string(variable) + "=" + value).c_str());
    }
  }
  for (int depth = 0; depth < 3; ++depth) {
    sd_bus_message_close_container(call);
  }
}

void fill(sd_bus_message* call, const LaunchPlan& plan) {
  sd_bus_message_append(call, "ss", plan.unit.c_str(), "fail");
  sd_bus_message_open_container(call, 'a', "(sv)");
  appendText(call, "Description", ("Started by a mouse button: " + plan.command.back()).c_str());
  // A launcher that ends at once must not take the program with it.
  appendText(call, "ExitType", "cgroup");
  appendText(call, "CollectMode", "inactive-or-failed");
  appendText(call, "Slice", "app.slice");
  appendEnvironment(call);
  appendCommand(call, plan.command);
  sd_bus_message_close_container(call);
  sd_bus_message_append(call, "a(sa(sv))", 0);
}

// The grandchild belongs to nobody, so that nobody has to wait for its end.
void startDetached(const std::vector<std::string>& command) {
  std::vector<char*> words;
  words.reserve(command.size() + 1);
  for (const std::string& word : command) {
    words.push_back(const_cast<char*>(word.c_str()));
  }
  words.push_back(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    ::setsid();
    if (::fork() == 0) {
      // The program must get the signals that this one takes from its loop.
      sigset_t none;
      ::sigemptyset(&none);
      ::sigprocmask(SIG_SETMASK, &none, nullptr);
      ::execvp(words[0], words.data());
      ::_exit(127);
    }
    ::_exit(0);
  }
  if (child > 0) {
    ::waitpid(child, nullptr, 0);
  } else {
    LXLogger::warning(command.back() + " cannot be started");
  }
}

}  // namespace

void Launcher::launch(const std::filesystem::path& path) {
  start(launchPlanOf(path, launchKindOf(path),
                     std::to_string(::getpid()) + "-" + std::to_string(++m_count)));
}

void Launcher::start(const LaunchPlan& plan) {
  m_bus.call(
      {"org.freedesktop.systemd1", "/org/freedesktop/systemd1", "org.freedesktop.systemd1.Manager",
       "StartTransientUnit"},
      [&](sd_bus_message* call) { fill(call, plan); },
      [command = plan.command](sd_bus_message* answer) {
        if (answer == nullptr) {
          startDetached(command);
        }
      },
      false);
}
