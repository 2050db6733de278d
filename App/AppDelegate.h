#pragma once

#include <QApplication>
#include <memory>

#include "Kit/Widgets/LXNoTitleWindow.h"

class MainView;

// Makes the main window with its view and ends the program with it.
class AppDelegate : public LXWindowDelegate {
 public:
  AppDelegate();
  ~AppDelegate() override;
  AppDelegate(const AppDelegate&) = delete;
  AppDelegate& operator=(const AppDelegate&) = delete;

  // The window is seen before the mouse is asked for anything. The program may have ended when
  // this returns: the user can decline to wait for the mouse.
  void start();
  // The window can be moved by its header.
  void applicationDidFinishLaunching();
  // Closing the main window quits.
  static bool applicationShouldTerminateAfterLastWindowClosed() { return true; }
  // No window state is restored.
  static void didDecodeRestorableState() {}
  void showAboutPro();
  void windowWillClose(LXNoTitleWindow& window) override;

  LXNoTitleWindow& window() { return *m_window; }

 private:
  std::unique_ptr<LXNoTitleWindow> m_window;
  MainView* m_mainView = nullptr;
};

// What a program of this product does with its QApplication before anything else: names, colours,
// accessibility.
void prepareApplication(QApplication& application);
// Runs the main loop, unless the program has ended at its start. The exit code.
int runApplication(AppDelegate& delegate);
