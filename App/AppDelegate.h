#pragma once

#include <QApplication>
#include <memory>
#include <string>

#include "Kit/Widgets/LXNoTitleWindow.h"

class MainView;

// Creates the main window with its view and ends the program with it.
class AppDelegate : public LXWindowDelegate {
 public:
  AppDelegate();
  ~AppDelegate() override;
  AppDelegate(const AppDelegate&) = delete;
  AppDelegate& operator=(const AppDelegate&) = delete;

  // Shows the window before the first transfer to the mouse. The program may have ended when this
  // returns: the user can decline to wait for the mouse.
  void start();
  // Lets the user move the window by its header.
  void applicationDidFinishLaunching();
  // Closing the main window quits.
  static bool applicationShouldTerminateAfterLastWindowClosed() { return true; }
  // No window state is restored.
  static void didDecodeRestorableState() {}
  void showAboutPro();
  void windowWillClose(LXNoTitleWindow& window) override;

  // Shows the window above all others, for the user who started the program a second time. `token`
  // is the desktop's permission for that; it may be empty.
  void bringToFront(const std::string& token);

  LXNoTitleWindow& window() { return *m_window; }

 private:
  std::unique_ptr<LXNoTitleWindow> m_window;
  MainView* m_mainView = nullptr;
};

// Prepares the QApplication of any program of this product: names, colors, accessibility. Call it
// first.
void prepareApplication(QApplication& application);
// Runs the main loop, unless the program has already ended, and returns the exit code.
int runApplication(AppDelegate& delegate);
