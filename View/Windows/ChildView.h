#pragma once

#include <QRect>

#include "View/Screen/TavImageView.h"

// The content of a child window. Its own buttons end it; closing the window in any other way
// cancels the edit.
class ChildView : public TavImageView {
  Q_OBJECT

 public:
  using TavImageView::TavImageView;

  // 1 if a button kept the edit, otherwise 0.
  int endTag() const { return m_endTag; }
  // The window's owner calls this when the window closes.
  void windowCloses();

  // Handles the three end buttons. Subclasses handle the others.
  void buttonAction(LXButton& sender) override;

 signals:
  // The window must close.
  void ended(int endTag);

 protected:
  struct EndButton {
    QRect frame;
    int tag;
  };
  // Adds "Apply", which tries the edit, "Close", which keeps it, and "Cancel".
  void addEndButtons(const EndButton& apply, const EndButton& close, const EndButton& cancel);
  // For a view that creates these buttons itself.
  void setEndTags(int apply, int close, int cancel);

  // Sends the edit to the mouse to try it; the window stays open.
  virtual void applyEdit() {}
  // Keeps the edit. The window closes afterwards.
  virtual void keepEdit() {}
  // Undoes the edit. The window closes afterwards.
  virtual void cancelEdit() {}

  // Called by Cancel: undoes the edit and closes the window.
  void cancelAndEnd();
  // Closes the window without keeping or undoing the edit.
  void endWindow(int endTag);

 private:
  static constexpr int noTag = -1;

  int m_applyTag = noTag;
  int m_closeTag = noTag;
  int m_cancelTag = noTag;
  int m_endTag = 0;
  bool m_hasEnded = false;
};
