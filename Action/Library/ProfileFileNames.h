#pragma once

#include <optional>
#include <set>
#include <string>

// Gives each profile of a folder a unique file name, made from its name. Maps only what a file
// system would refuse or read as a path.
class ProfileFileNames {
 public:
  static constexpr const char* extension = "pro";

  // The next profile's file name, different from all before it. The same names in the same order
  // give the same file names.
  std::string next(const std::optional<std::string>& profileName);

 private:
  std::set<std::string> m_given;
};
