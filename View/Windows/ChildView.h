#pragma once

#include <QRect>
#include <optional>
#include <string>

#include "Action/Record/Records.h"
#include "View/Screen/TavImageView.h"
#include "View/Windows/TransferProgress.h"

// The content of a child window. Its own buttons end it; closing the window in any other way
// cancels the edit.
class ChildView : public TavImageView {
  Q_OBJECT

 public:
  using TavImageView::TavImageView;

  // 1 if a button kept the edit, otherwise 0.
  int endTag() const { return m_endTag; }
  // The window is to close. True if the view ended only what it was doing, such as a
  // recording; then the window stays, and nothing is lost.
  virtual bool staysOpen() { return false; }
  // The window's owner calls this when the window closes.
  void windowCloses();
  // The profile with what the user has changed in this window so far, to be kept as a draft. No
  // value for a window that does not change the profile before it closes.
  virtual std::optional<_Nerin_PROFILE> workingProfile() { return std::nullopt; }

  // The chapter of the help about this window.
  virtual std::string helpChapter() const = 0;

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
  // Adds "Apply", which tries the edit, "Close", which keeps it, and "Cancel", and the footer.
  void addEndButtons(const EndButton& apply, const EndButton& close, const EndButton& cancel);
  // For a view that creates these buttons itself.
  void setEndTags(int apply, int close, int cancel);
  // Adds the status line, left of the button "Apply", and the progress line.
  void addFooter(const QRect& applyFrame);
  // Shows the wait cursor and the progress line while so many reports are written.
  TransferProgress transfers(int reports) { return {m_progressLine, reports}; }

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
  void undoEdit();

  static constexpr int noTag = -1;

  ProgressLine* m_progressLine = nullptr;
  int m_applyTag = noTag;
  int m_closeTag = noTag;
  int m_cancelTag = noTag;
  int m_endTag = 0;
  bool m_hasEnded = false;
};
