#pragma once

#include <memory>

#include "Kit/Widgets/LXNoTitleWindow.h"

// The About window. One instance serves the whole program.
class AboutConnortller : public LXWindowDelegate {
 public:
  // Creates it on the first call.
  static AboutConnortller& shareAboutController();

  AboutConnortller();
  AboutConnortller(const AboutConnortller&) = delete;
  AboutConnortller& operator=(const AboutConnortller&) = delete;

  // Shows the window over another one and returns after it was closed. While it is open, a second
  // call only brings it to the front.
  void runModal(const QWidget* over);
  void windowWillClose(LXNoTitleWindow& window) override;
  LXNoTitleWindow& window() { return m_window; }

 private:
  class Content;

  // Says the texts in the language of now.
  void showTexts();

  LXNoTitleWindow m_window;
  class QLabel* m_version = nullptr;
  class QLabel* m_line = nullptr;
  class QPushButton* m_close = nullptr;
  class QEventLoop* m_loop = nullptr;
};
