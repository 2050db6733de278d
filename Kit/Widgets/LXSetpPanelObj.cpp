#include "Kit/Widgets/LXSetpPanelObj.h"

#include <QApplication>
#include <QKeyEvent>
#include <algorithm>

#include "Kit/Widgets/LXButton.h"

LXSetpPanelObj::LXSetpPanelObj(QObject* parent) : QObject(parent) {}

void LXSetpPanelObj::addItem(LXButton* button, QWidget* panBox) {
  m_items.push_back({button, panBox});
  if (button != nullptr) {
    button->setIsStepItem(true);
    button->installEventFilter(this);
    connect(button, &QAbstractButton::clicked, this,
            [this, button] { selectindex(indexOf(button)); });
  }
  show();
}

void LXSetpPanelObj::selectindex(int index) {
  const int old = m_current;
  if (index < 1 || index > itemCount() || index == old) {
    show();
    return;
  }
  if (m_delegate != nullptr && !m_delegate->shouldSelectIndex(index, old, *this)) {
    show();
    return;
  }
  m_current = index;
  show();
  if (m_delegate != nullptr) {
    m_delegate->onSelectIndex(index, old, *this);
  }
}

void LXSetpPanelObj::resetSetp() {
  m_current = 0;
  show();
}

int LXSetpPanelObj::indexOf(const QObject* button) const {
  const auto item = std::find_if(m_items.begin(), m_items.end(),
                                 [&](const Item& one) { return one.button == button; });
  return item == m_items.end() ? 0 : static_cast<int>(item - m_items.begin()) + 1;
}

LXButton* LXSetpPanelObj::buttonOf(int index) const {
  return index >= 1 && index <= itemCount() ? m_items[static_cast<std::size_t>(index - 1)].button
                                            : nullptr;
}

// Updates buttons and views to match the selection. Tab stops once in the group, on the selected
// button.
void LXSetpPanelObj::show() {
  for (int index = 1; index <= itemCount(); ++index) {
    const Item& item = m_items[static_cast<std::size_t>(index - 1)];
    const bool isSelected = index == m_current;
    if (item.button != nullptr) {
      item.button->setChecked(isSelected);
      const bool isTabStop = isSelected || (m_current == 0 && index == 1);
      item.button->setFocusPolicy(isTabStop ? Qt::StrongFocus : Qt::ClickFocus);
    }
    if (item.panBox != nullptr) {
      item.panBox->setVisible(isSelected);
    }
  }
}

bool LXSetpPanelObj::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress) {
    return QObject::eventFilter(watched, event);
  }
  int step = 0;
  switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Left:
    case Qt::Key_Up:
      step = -1;
      break;
    case Qt::Key_Right:
    case Qt::Key_Down:
      step = 1;
      break;
    default:
      return QObject::eventFilter(watched, event);
  }
  const int next = indexOf(watched) + step;
  const LXButton* wanted = buttonOf(next);
  // A hidden item cannot be chosen.
  if (wanted != nullptr && !wanted->isHidden()) {
    const QWidget* focused = QApplication::focusWidget();
    selectindex(next);
    // The delegate may have refused. The focus goes to the selection unless the delegate has moved
    // it elsewhere.
    LXButton* selected = buttonOf(m_current);
    if (selected != nullptr && QApplication::focusWidget() == focused) {
      selected->setFocus(Qt::TabFocusReason);
    }
  }
  return true;
}
