#include "Companion/Policy/LaunchPlan.h"

#include <string_view>
#include <system_error>

#include <unistd.h>

namespace fs = std::filesystem;

LaunchKind launchKindOf(const fs::path& path) {
  if (path.extension() == ".desktop") {
    return LaunchKind::DesktopEntry;
  }
  std::error_code error;
  const bool isProgram = fs::is_regular_file(path, error) && ::access(path.c_str(), X_OK) == 0;
  return isProgram ? LaunchKind::Program : LaunchKind::Document;
}

LaunchPlan launchPlanOf(const fs::path& path, LaunchKind kind, const std::string& number) {
  LaunchPlan plan;
  if (kind == LaunchKind::Program) {
    plan.command = {path.string()};
  } else {
    plan.command = {"gio", kind == LaunchKind::DesktopEntry ? "launch" : "open", path.string()};
  }
  plan.unit = "app-nerin-" + escapedForUnit(path.stem().string()) + "@" + number + ".service";
  return plan;
}

std::string escapedForUnit(const std::string& text) {
  constexpr std::string_view digits = "0123456789abcdef";
  constexpr std::string_view plain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.";
  std::string result;
  for (const char character : text) {
    // A name must not begin with a dot.
    if (plain.find(character) != std::string_view::npos && !(result.empty() && character == '.')) {
      result += character;
      continue;
    }
    const auto byte = static_cast<unsigned char>(character);
    result += "\\x";
    result += digits[byte >> 4U];
    result += digits[byte & 0x0FU];
  }
  return result;
}
