#pragma once

#include "View/Screen/TavImageView.h"

// The content of a child window. It ends by one of its own buttons; a window that is closed in any
// other way cancels the edit.
class ChildView : public TavImageView {
  Q_OBJECT

 public:
  using TavImageView::TavImageView;

  // 1 after the button that keeps the edit, 0 after any other end.
  int endTag() const { return m_endTag; }
  // The window's owner says that the window closes.
  void windowCloses();

 signals:
  // The window is to close.
  void ended(int endTag);

 protected:
  // The Cancel button: undoes the edit and closes the window.
  void cancelAndEnd();
  // Closes the window: what the edit needs for its end is done.
  void endWindow(int endTag);
  // Undoes what Cancel would.
  virtual void cancelEdit() {}

 private:
  int m_endTag = 0;
  bool m_hasEnded = false;
};
