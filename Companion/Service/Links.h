#pragma once

#include <array>
#include <optional>

#include "Companion/Policy/AppMatcher.h"

// The programs that a person linked to slots, from the preference file and nowhere else.
class Links {
 public:
  static constexpr std::size_t slotCount = 10;

  // Reads the preferences and the desktop entries again.
  void reload();
  bool isEmpty() const;
  // The slot of the program, and its name for a person. Of several slots, `preferred` if it is one
  // of them, else the lowest.
  struct Match {
    int slot = 0;
    std::string name;
  };
  std::optional<Match> find(const AppIdentity& identity, std::optional<int> preferred) const;

 private:
  std::array<std::optional<LinkedProgram>, slotCount> m_programs;
};
