#pragma once

#include <QIcon>
#include <filesystem>
#include <string>
#include <vector>

// The programs that the desktop offers in its menus, in the user's language.
namespace installedprograms {

struct Program {
  std::string name;            // as the menus show it: "Blender"
  std::filesystem::path path;  // its desktop entry, which is what the program stores
  QIcon icon;                  // empty where the desktop has none
  bool isRunning = false;
};

// All that the menus show, without the hidden ones, sorted by name.
std::vector<Program> list();

// The name of a program by its path: that of a desktop entry, otherwise the file's name without its
// extension. An empty path has no name.
std::string nameOf(const std::string& path);

}  // namespace installedprograms
