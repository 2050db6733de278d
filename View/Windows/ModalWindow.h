#pragma once

#include "Kit/Widgets/LXNoTitleWindow.h"

class ChildView;

// A window over another one, which takes no input until this one ends. What the mouse reports
// reaches the program meanwhile: its removal ends all windows.
class ModalWindow : public LXNoTitleWindow {
  Q_OBJECT

 public:
  // Owns the constructed view and takes its size. `over` is the window that it belongs to, and goes
  // with. Can be dragged by the strip of that height at its top.
  ModalWindow(ChildView* view, int dragHeight, const QString& title, QWidget* over);

  // Shows the window until the view ends, and gives the code with which it did; 0 for a window that
  // was closed. It may be destroyed meanwhile, with the window under it: also 0.
  int run();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  ChildView* m_view;
};
