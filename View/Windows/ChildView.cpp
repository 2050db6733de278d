#include "View/Windows/ChildView.h"

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
