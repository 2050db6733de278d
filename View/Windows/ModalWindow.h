#pragma once

#include "Kit/Widgets/LXNoTitleWindow.h"

class ChildView;

// A window over another one, which takes no input until this one closes. Reports of the mouse still
// arrive: removing the mouse closes all windows.
class ModalWindow : public LXNoTitleWindow {
  Q_OBJECT

 public:
  // Owns the constructed view and takes its size. `over` is the parent window. The user can drag
  // the window by a strip at its top, `dragHeight` high.
  ModalWindow(ChildView* view, int dragHeight, const QString& title, QWidget* over);

  // Shows the window until the view ends, and returns its end code; 0 if the window was closed, or
  // if it was destroyed with its parent.
  int run();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  ChildView* m_view;
};
