#pragma once

#include <filesystem>
#include <optional>
#include <set>
#include <string>

#include "VirtualMouse/VirtualMouse.h"

// What must be whole after every step: the library's files, and what the mouse was told.
class Wholeness {
 public:
  // `known` is a file that keeps from start to start what the library held.
  Wholeness(std::filesystem::path library, std::filesystem::path known, VirtualMouse& mouse);

  // What is wrong, in words; nothing while all is whole. `canDelete`: what the user just did may
  // have deleted a profile. `isMouseSane`: the mouse can tell what it is told.
  std::optional<std::string> check(bool canDelete, bool isMouseSane);
  // The same for what an earlier start, which may have been killed, has left.
  std::optional<std::string> checkAtStart();

  // Somebody else changed, broke or removed the file of this profile.
  void wasTouched(const std::string& profile) { m_touched.insert(profile); }
  // The name of the profile in a file; nothing if it is no whole profile.
  static std::optional<std::string> profileIn(const std::filesystem::path& file);
  std::size_t profiles() const { return m_names.size(); }

 private:
  std::multiset<std::string> namesOnDisk() const;
  std::optional<std::string> compare(std::multiset<std::string> now, std::size_t mayBeLost);
  std::optional<std::string> checkMouse() const;

  std::filesystem::path m_library;
  std::filesystem::path m_known;
  VirtualMouse& m_mouse;
  std::multiset<std::string> m_names;
  std::set<std::string> m_touched;
};
