#include "Tests/Soak/Wholeness.h"

#include <algorithm>
#include <fstream>
#include <system_error>
#include <vector>

#include "Action/Library/ProfileValue.h"
#include "Action/Wire/MacroImage.h"
#include "Action/Wire/ProfileName.h"

namespace fs = std::filesystem;

namespace {

constexpr std::size_t maximumEvents = 2000;
constexpr std::size_t longestName = 65;

// One line a name.
std::string lineOf(std::string name) {
  std::replace(name.begin(), name.end(), '\n', ' ');
  return name;
}

}  // namespace

Wholeness::Wholeness(fs::path library, fs::path known, VirtualMouse& mouse)
    : m_library(std::move(library)), m_known(std::move(known)), m_mouse(mouse) {
  std::ifstream file(m_known);
  for (std::string name; std::getline(file, name);) {
    m_names.insert(name);
  }
}

std::optional<std::string> Wholeness::profileIn(const fs::path& file) {
  std::error_code error;
  if (file.extension() != ".pro" || !fs::is_regular_file(fs::symlink_status(file, error))) {
    return std::nullopt;
  }
  const auto profile = ProfileValue::initWithWholeFile(file);
  return profile ? std::optional(lineOf(profile->name().value_or(""))) : std::nullopt;
}

std::multiset<std::string> Wholeness::namesOnDisk() const {
  std::multiset<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(m_library, error), end; !error && entry != end;
       entry.increment(error)) {
    if (auto name = profileIn(entry->path())) {
      names.insert(*std::move(name));
    }
  }
  return names;
}

std::optional<std::string> Wholeness::compare(std::multiset<std::string> now,
                                              std::size_t mayBeLost) {
  std::vector<std::string> lost;
  std::set_difference(m_names.begin(), m_names.end(), now.begin(), now.end(),
                      std::back_inserter(lost));
  const auto gained = static_cast<std::ptrdiff_t>(now.size()) -
                      static_cast<std::ptrdiff_t>(m_names.size() - lost.size());
  lost.erase(std::remove_if(lost.begin(), lost.end(),
                            [&](const std::string& name) { return m_touched.contains(name); }),
             lost.end());
  // Another name in the place of one is a profile that was renamed.
  const std::size_t renamed = gained > 0 ? std::min<std::size_t>(1, lost.size()) : 0;
  const bool isWhole = lost.size() <= std::max(renamed, mayBeLost);
  std::string text = "profiles are lost:";
  for (const std::string& name : lost) {
    text += " \"" + name + '"';
  }
  if (now != m_names) {
    std::ofstream file(m_known, std::ios::trunc);
    for (const std::string& name : now) {
      file << name << '\n';
    }
    m_names = std::move(now);
  }
  return isWhole ? std::nullopt : std::optional(text);
}

std::optional<std::string> Wholeness::checkMouse() const {
  if (const auto& faults = m_mouse.faults(); !faults.empty()) {
    const std::string fault = faults.front();
    return "the mouse was told nonsense: " + fault;
  }
  for (int slot = 0; slot < VirtualMouse::slotCount; ++slot) {
    if (m_mouse.slotName(slot).size() > longestName) {
      return "the name in slot " + std::to_string(slot) + " is too long";
    }
  }
  for (int slot = 0; slot < VirtualMouse::macroSlotCount; ++slot) {
    if (m_mouse.macroReport(slot)[0] == 0xB0 &&
        m_mouse.playMacro(slot).events.size() > maximumEvents) {
      return "the macro in place " + std::to_string(slot) + " is too long";
    }
  }
  return std::nullopt;
}

std::optional<std::string> Wholeness::check(bool canDelete, bool isMouseSane) {
  if (!isMouseSane) {
    m_mouse.clearFaults();
  }
  if (auto problem = compare(namesOnDisk(), canDelete ? 1 : 0)) {
    return problem;
  }
  return checkMouse();
}

std::optional<std::string> Wholeness::checkAtStart() {
  // A kill may have come after the deletion of one, and before it was noted.
  return compare(namesOnDisk(), 1);
}
