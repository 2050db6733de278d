#include "View/Windows/ChildView.h"

#include <QElapsedTimer>

#include "Kit/Widgets/LXButton.h"
#include "View/Windows/QueuedInput.h"
#include "View/Windows/StatusLine.h"

namespace {

constexpr int footerMargin = 20;
constexpr int footerGap = 8;
constexpr int lineHeight = 4;
// The narrow windows need three lines of words.
constexpr int extraHeight = 7;
// Shorter work leaves no time to click into it.
constexpr int noticedMilliseconds = 100;

}  // namespace

void ChildView::addEndButtons(const EndButton& apply, const EndButton& close,
                              const EndButton& cancel) {
  addButton(apply.frame, apply.tag, "applyBtn", "Apply");
  addButton(close.frame, close.tag, "okBtn", "Close");
  addButton(cancel.frame, cancel.tag, "cancelBtn", "Cancel");
  setEndTags(apply.tag, close.tag, cancel.tag);
  addFooter(apply.frame);
}

void ChildView::addFooter(const QRect& applyFrame) {
  auto* line = new StatusLine(this);
  line->setGeometry(
      QRect(QPoint(footerMargin, applyFrame.top() - extraHeight),
            QPoint(applyFrame.left() - footerGap, applyFrame.bottom() + extraHeight)));
  m_progressLine = new ProgressLine(this);
  m_progressLine->setObjectName(QStringLiteral("progressBar"));
  m_progressLine->setGeometry(0, height() - lineHeight, width(), lineHeight);
}

void ChildView::setEndTags(int apply, int close, int cancel) {
  m_applyTag = apply;
  m_closeTag = close;
  m_cancelTag = cancel;
}

void ChildView::buttonAction(LXButton& sender) {
  if (sender.tag() == m_applyTag) {
    applyEdit();
  } else if (sender.tag() == m_closeTag) {
    keepEdit();
    endWindow(1);
  } else if (sender.tag() == m_cancelTag) {
    cancelAndEnd();
  }
}

void ChildView::undoEdit() {
  QElapsedTimer time;
  time.start();
  cancelEdit();
  if (time.elapsed() > noticedMilliseconds) {
    // A click that waited for this window must not reach the one below.
    queuedinput::drop();
  }
}

void ChildView::cancelAndEnd() {
  undoEdit();
  endWindow(0);
}

void ChildView::endWindow(int endTag) {
  m_endTag = endTag;
  m_hasEnded = true;
  emit ended(endTag);
}

void ChildView::windowCloses() {
  if (m_hasEnded) {
    return;
  }
  m_hasEnded = true;
  m_endTag = 0;
  undoEdit();
}
