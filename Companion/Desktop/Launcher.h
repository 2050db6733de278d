#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "Companion/Policy/LaunchPlan.h"
#include "Kit/Bus/BusConnection.h"

// Starts programs that outlive this one: each in a unit of its own, or where the session has no
// service manager, as a process that belongs to nobody.
class Launcher {
 public:
  explicit Launcher(BusConnection& bus) : m_bus(bus) {}

  // Starts what the path names: a desktop entry, a program, or a document with its program.
  void launch(const std::filesystem::path& path);
  void start(const LaunchPlan& plan);

 private:
  BusConnection& m_bus;
  int m_count = 0;
};
