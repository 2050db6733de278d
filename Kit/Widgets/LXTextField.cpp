#include "Kit/Widgets/LXTextField.h"

#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QPalette>

namespace {

// The opacity of a disabled field's text, the same as for a button.
constexpr int disabledAlpha = 96;

}  // namespace

LXTextField::LXTextField(QWidget* parent) : QLineEdit(parent) {
  setFrame(false);
  setTextColor(Qt::white);
  QPalette colors = palette();
  colors.setColor(QPalette::Base, Qt::transparent);
  setPalette(colors);
}

void LXTextField::setTextColor(const QColor& color) {
  QColor disabled = color;
  disabled.setAlpha(disabledAlpha);
  QPalette colors = palette();
  colors.setColor(QPalette::Text, color);
  colors.setColor(QPalette::Disabled, QPalette::Text, disabled);
  setPalette(colors);
}

void LXTextField::setText(const QString& text) {
  QLineEdit::setText(text);
  m_settled = text;
}

void LXTextField::commit() {
  if (isModified() || text() != m_settled) {
    commitNow();
  }
}

void LXTextField::commitNow() {
  setModified(false);
  m_settled = text();
  convert();
  if (m_action) {
    m_action(*this);
  }
}

// A field in which nothing was typed leaves undo and redo to its window.
bool LXTextField::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    const auto* key = static_cast<QKeyEvent*>(event);
    if ((key->matches(QKeySequence::Undo) && !isUndoAvailable()) ||
        (key->matches(QKeySequence::Redo) && !isRedoAvailable())) {
      event->ignore();
      return false;
    }
  }
  return QLineEdit::event(event);
}

void LXTextField::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    if (!isReadOnly()) {
      commitNow();
      emit returnPressed();
    }
    return;
  }
  if (event->key() == Qt::Key_Escape && !isReadOnly() && text() != m_settled) {
    setText(m_settled);
    selectAll();
    return;
  }
  QLineEdit::keyPressEvent(event);
}

// The field's own menu and another window take the focus only temporarily.
void LXTextField::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  if (event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason) {
    return;
  }
  const QWidget* next = QApplication::focusWidget();
  if (next == nullptr || !next->property(leavesTextUncommitted).toBool()) {
    commit();
  }
}
