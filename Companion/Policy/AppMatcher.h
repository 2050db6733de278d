#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

// What a desktop tells of a window's program. Titles of windows are never asked for. Empty members
// are unknown.
struct AppIdentity {
  std::string appId;     // Wayland's application id, or the class of an X11 window
  std::string instance;  // the other half of an X11 window's class
  std::string unit;      // the systemd unit that the process runs in: "app-gnome-gimp-714.scope"
  std::filesystem::path executable;
  int pid = 0;

  bool operator==(const AppIdentity&) const = default;
};

// A program that a person linked, by what it says about itself.
struct LinkedProgram {
  std::filesystem::path path;  // as the preferences have it: a desktop entry, or a program
  std::string name;            // for a person
  // Of a desktop entry.
  std::string desktopId;             // "org.gimp.GIMP"
  std::string windowClass;           // StartupWMClass
  std::string steamGame;             // the number in "steam://rungameid/N"
  std::string flatpakId;             // X-Flatpak
  std::filesystem::path executable;  // the program of its command line, if it is one of its own
};

// Reads a desktop entry's text; `path` names it. Fields of other groups and broken lines are left
// out.
LinkedProgram linkedProgramOf(const std::filesystem::path& path, std::string_view entry);
// A program that is no desktop entry.
LinkedProgram linkedProgramOf(const std::filesystem::path& path);

// Whether the window belongs to the program: by its id or class, else by the unit that the desktop
// started it in, else by its executable.
bool isSameProgram(const LinkedProgram& program, const AppIdentity& identity);

// The desktop id in the name of a unit that a desktop starts programs in ("app-*.scope",
// "app-*@*.service"); empty for any other unit.
std::string desktopIdOfUnit(std::string_view unit);
// The innermost unit in the text of /proc/PID/cgroup; empty if there is none.
std::string unitOfCgroup(std::string_view cgroup);

// Tells windows' programs apart, so that two windows of one are the same.
std::string keyOf(const AppIdentity& identity);
