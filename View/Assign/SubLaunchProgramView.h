#pragma once

#include <string>

#include "View/Assign/KeyAssignSubView.h"

class LXTextField;

// Assigns a program that the button launches.
class SubLaunchProgramView : public KeyAssignSubView {
  Q_OBJECT

 public:
  static constexpr int TagLaunch = 310;

  explicit SubLaunchProgramView(QWidget* parent);

  void fillSettingData() override;
  void saveData() override;
  void buttonAction(LXButton& sender) override;
  // What was chosen since the view was filled; empty for nothing.
  const std::string& currLaunchPath() const { return m_currLaunchPath; }

 protected:
  void initData() override;
  void initControls() override;

 private:
  void choose();
  void showPath(const QString& path);

  LXTextField* m_pathTxt = nullptr;
  std::string m_currLaunchPath;
};
