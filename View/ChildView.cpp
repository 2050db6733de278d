#include "View/ChildView.h"

#include "View/ControlFactory.h"

LXButton* ChildView::addButton(const QRect& frame, int tag, const char* name,
                               const char* tooltipKey) {
  LXButton* button = NerinAction::AddButton(
      frame, [this](LXButton& sender) { buttonAction(sender); }, {}, *this);
  button->setTag(tag);
  NerinAction::initTooltip(*button, QString::fromLatin1(name), tooltipKey);
  return button;
}

void ChildView::cancelAndEnd() {
  cancelEdit();
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
  cancelEdit();
}
