#pragma once

#include <QRect>

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

  // Does what the three buttons stand for; others are a subclass's.
  void buttonAction(LXButton& sender) override;

 signals:
  // The window is to close.
  void ended(int endTag);

 protected:
  struct EndButton {
    QRect frame;
    int tag;
  };
  // Adds "Apply", which tries the edit, "Close", which keeps it, and "Cancel".
  void addEndButtons(const EndButton& apply, const EndButton& close, const EndButton& cancel);
  // The same for a view that makes its buttons itself.
  void setEndTags(int apply, int close, int cancel);

  // Sends the edit to the mouse to try it; the window stays.
  virtual void applyEdit() {}
  // Keeps the edit. The window closes afterwards.
  virtual void keepEdit() {}
  // Undoes the edit. The window closes afterwards.
  virtual void cancelEdit() {}

  // The Cancel button: undoes the edit and closes the window.
  void cancelAndEnd();
  // Closes the window: what the edit needs for its end is done.
  void endWindow(int endTag);

 private:
  static constexpr int noTag = -1;

  int m_applyTag = noTag;
  int m_closeTag = noTag;
  int m_cancelTag = noTag;
  int m_endTag = 0;
  bool m_hasEnded = false;
};
