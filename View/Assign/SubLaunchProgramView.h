#pragma once

#include <string>

#include "View/Assign/KeyAssignSubView.h"

class LXTextField;

// Assigns a program to launch.
class SubLaunchProgramView : public KeyAssignSubView {
  Q_OBJECT

 public:
  static constexpr int TagLaunch = 310;

  explicit SubLaunchProgramView(QWidget* parent);

  void fillSettingData() override;
  void saveData() override;
  void buttonAction(LXButton& sender) override;
  assignmentnotes::Note note() const override;
  // The choice since the view was filled; empty when there is none.
  const std::string& currLaunchPath() const { return m_currLaunchPath; }

 protected:
  void initData() override;
  void initControls() override;

 private:
  void choose();
  // Shows the program's name.
  void showProgram(const std::string& path);

  LXTextField* m_pathTxt = nullptr;
  std::string m_shownPath;
  std::string m_currLaunchPath;
};
