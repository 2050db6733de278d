#pragma once

#include <filesystem>
#include <string>
#include <vector>

// How to start what a person put on a button.
struct LaunchPlan {
  std::vector<std::string> command;
  std::string unit;  // the name of the systemd unit that it gets of its own
};

// What kind of file it is, which only a look at the disk tells.
enum class LaunchKind { DesktopEntry, Program, Document };
LaunchKind launchKindOf(const std::filesystem::path& path);

// `number` makes the name of the unit one that was not used before. A desktop entry and a document
// are left to the desktop's own launcher, which knows their rules.
LaunchPlan launchPlanOf(const std::filesystem::path& path, LaunchKind kind,
                        const std::string& number);

// The text as a part of a unit's name: letters, digits and dots stay.
std::string escapedForUnit(const std::string& text);
