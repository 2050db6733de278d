#pragma once

#include <QFileDialog>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "Tests/Soak/Dice.h"

// Answers the panels of files: with files that are good, broken, huge or no files at all, and with
// places where nothing can be written. It never clicks into a panel, which could rename or delete
// files of this machine.
class FilePanels {
 public:
  // The files lie in `folder`, which is made.
  FilePanels(Dice& dice, std::filesystem::path folder);

  void act(QFileDialog& panel, const std::function<void(const std::string&)>& tell);

 private:
  Dice& m_dice;
  std::filesystem::path m_folder;
  std::vector<std::string> m_files;
};
