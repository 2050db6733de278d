#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Action/EditState.h"
#include "Kit/Desktop/FilePanel.h"
#include "Kit/Widgets/LXButton.h"
#include "Kit/Widgets/LXNoTitleWindow.h"
#include "Tests/Action/ActionTest.h"
#include "View/MainView.h"

// The main window over a virtual mouse. Messages and file panels are answered at once, and kept.
class ViewTest : public ActionTest {
 protected:
  ViewTest();
  ~ViewTest() override;

  // Starts the program with its window.
  void start();
  // Lets what was queued happen.
  static void process();

  MainView& view() { return *m_view; }
  LXNoTitleWindow& window() { return *m_window; }
  LXButton& button(const char* name);
  void click(const char* name) { button(name).click(); }
  void chooseSlot(int number) { click(("profile" + std::to_string(number) + "Btn").c_str()); }
  void typeName(const std::string& name);
  std::string shownName();
  std::string title() { return button("currProfileBtn").title().toStdString(); }
  // As the service tells it.
  void report(std::int32_t type, std::int32_t value = 0);
  // The objects of the messages to the service.
  std::vector<std::string> messages() const;
  bool hasSent(const std::string& part) const;
  // An open child window, or null.
  LXNoTitleWindow* child();

  bool m_answer = true;
  std::function<void()> m_duringQuestion;
  std::vector<std::pair<std::string, bool>> m_asked;
  std::vector<std::string> m_shown;
  std::vector<filepanel::Request> m_panels;
  filepanel::Answer m_chosen;

 private:
  std::unique_ptr<LXNoTitleWindow> m_window;
  MainView* m_view = nullptr;
};
