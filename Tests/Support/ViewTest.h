#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Action/Record/EditState.h"
#include "Kit/Desktop/FilePanel.h"
#include "Kit/Widgets/LXButton.h"
#include "Kit/Widgets/LXNoTitleWindow.h"
#include "Tests/Support/ActionTest.h"
#include "View/Main/MainView.h"

class LXMenulist;
class LXTextField;
class PopDialogView;

// The main window with a virtual mouse. Answers messages and file panels at once and records them.
class ViewTest : public ActionTest {
 protected:
  ViewTest();
  ~ViewTest() override;

  // Ends the program. Messages and file panels are still answered.
  void endProgram();
  // Starts the program with its window.
  void start();
  // Ends the program if necessary and starts it again with the same home and mouse.
  void startAgain();
  // Processes all queued events.
  static void process();

  MainView& view() { return *m_view; }
  LXNoTitleWindow& window() { return *m_window; }
  void destroyWindow() { m_window.reset(); }
  LXButton& button(const char* name);
  void click(const char* name) { button(name).click(); }
  void chooseSlot(int number) { click(("profile" + std::to_string(number) + "Btn").c_str()); }
  LXTextField& nameField();
  // Types the name and commits it.
  void typeName(const std::string& name);
  std::string shownName();
  // What the line in the footer says.
  std::string status();
  // Uses what the line offers.
  void takeOffer();
  std::string title() { return button("currProfileBtn").title().toStdString(); }
  QAction& menuItem(const char* name);
  // The open list of profiles, or null.
  static LXMenulist* openList();
  // Sends a report as the service does.
  void report(std::int32_t type, std::int32_t value = 0);
  // The objects of the messages to the service.
  std::vector<std::string> messages() const;
  bool hasSent(const std::string& part) const;
  // An open child window, or null.
  LXNoTitleWindow* child();

  // Clicks like a user: through the window system, which knows the blocked windows.
  static void clickThroughWindow(QWidget& widget, Qt::MouseButton button = Qt::LeftButton);
  // From now on, messages are shown. Calls `act` with the next one.
  static void onDialog(std::function<void(LXNoTitleWindow&, PopDialogView&)> act);

  bool m_answer = true;
  std::function<void()> m_duringQuestion;
  std::function<void()> m_duringPanel;
  std::vector<std::pair<std::string, bool>> m_asked;
  std::vector<std::string> m_shown;
  std::vector<std::string> m_opened;
  std::vector<filepanel::Request> m_panels;
  filepanel::Answer m_chosen;

 private:
  void installSeams();

  std::unique_ptr<LXNoTitleWindow> m_window;
  MainView* m_view = nullptr;
};
