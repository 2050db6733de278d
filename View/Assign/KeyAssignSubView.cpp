#include "View/Assign/KeyAssignSubView.h"

#include <QAccessible>

#include "ArtworkFrames.h"
#include "Kit/Widgets/LXTextField.h"
#include "View/Screen/ControlFactory.h"

namespace {

// Aligns the note with the words in the controls above.
constexpr int textMargin = 12 - LXTextField::ownMargin;

}  // namespace

void KeyAssignSubView::addNoteLine(const QRect& frame) {
  m_noteTxt = NerinAction::AddLabTextField(frame, *this);
  m_noteTxt->setObjectName(QStringLiteral("noteTxt"));
  m_noteTxt->setTextMargins(textMargin, 0, 0, 0);
  m_noteTxt->setTextColor(QColor::fromRgb(Artwork::Color::emberLit));
  m_noteTxt->hide();
}

void KeyAssignSubView::showNote() {
  const QString text = NerinAction::tooltipText(assignmentnotes::textOf(note()));
  const bool isNew = !text.isEmpty() && (m_noteTxt->isHidden() || m_noteTxt->text() != text);
  m_noteTxt->setText(text);
  // The field starts with the first letters where the text does not fit.
  m_noteTxt->setCursorPosition(0);
  m_noteTxt->setAccessibleName(text);
  m_noteTxt->setVisible(!text.isEmpty());
  if (isNew && isVisible()) {
    QAccessibleEvent alert(m_noteTxt, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
  }
}
