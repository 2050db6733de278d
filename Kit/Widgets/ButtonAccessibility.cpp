#include "Kit/Widgets/ButtonAccessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QAction>
#include <QApplication>

#include "Kit/Widgets/LXButton.h"
#include "Kit/Widgets/LXMenulist.h"
#include "Kit/Widgets/LXNoTitleWindow.h"
#include "Kit/Widgets/MenulistAccessibility.h"

namespace {

// Another window takes all input for now. Clicks and keys would not arrive, so a press from a
// screen reader must not either.
bool isBlocked(const QWidget& widget) {
  const QWidget* modal = QApplication::activeModalWidget();
  return modal != nullptr && modal != widget.window();
}

// Without the keys that a menu shows after a tab.
QString nameOf(const QAction& action) {
  return action.text().section(u'\t', 0, 0);
}

class AccessibleButton final : public QAccessibleWidget {
 public:
  explicit AccessibleButton(LXButton* button) : QAccessibleWidget(button), m_button(*button) {}

  QAccessible::Role role() const override {
    if (m_button.isCheckBox()) {
      return QAccessible::CheckBox;
    }
    return m_button.isStepItem() ? QAccessible::RadioButton : QAccessible::Button;
  }

  // An open list is the child of the button that opened it.
  int childCount() const override { return openList() != nullptr ? 1 : 0; }
  QAccessibleInterface* child(int index) const override {
    return index == 0 ? QAccessible::queryAccessibleInterface(openList()) : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    return child != nullptr && openList() != nullptr && child->object() == openList() ? 0 : -1;
  }

  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    // A button that is only a visual marker is not a control and has no name.
    if (m_button.focusPolicy() == Qt::NoFocus && m_button.accessibleName().isEmpty()) {
      state.invisible = true;
    }
    state.hasPopup = m_button.openedList() != nullptr;
    state.checkable = m_button.isCheckable();
    state.checked = m_button.isChecked();
    state.pressed = m_button.isDown();
    return state;
  }

  QString text(QAccessible::Text kind) const override {
    QString text = QAccessibleWidget::text(kind);
    // The tooltip is the description and usually the name too, which must not be read out twice.
    if (kind == QAccessible::Description && text == QAccessibleWidget::text(QAccessible::Name)) {
      text.clear();
    }
    return text.isEmpty() && kind == QAccessible::Name ? m_button.title() : text;
  }

  QStringList actionNames() const override {
    QStringList names{m_button.isCheckable() ? toggleAction() : pressAction()};
    for (const QAction* action : m_button.actions()) {
      names.append(nameOf(*action));
    }
    return names + QAccessibleWidget::actionNames();
  }

  // Queued, because a press may open a dialog and the screen reader waits for the reply.
  void doAction(const QString& actionName) override {
    if (actionName == pressAction() || actionName == toggleAction()) {
      QMetaObject::invokeMethod(
          &m_button,
          [button = &m_button] {
            if (!isBlocked(*button)) {
              button->click();
            }
          },
          Qt::QueuedConnection);
      return;
    }
    for (QAction* action : m_button.actions()) {
      if (actionName == nameOf(*action)) {
        trigger(*action);
        return;
      }
    }
    QAccessibleWidget::doAction(actionName);
  }

 private:
  void trigger(QAction& action) {
    QMetaObject::invokeMethod(
        &action,
        [button = &m_button, act = &action] {
          if (!isBlocked(*button)) {
            act->trigger();
          }
        },
        Qt::QueuedConnection);
  }

  QWidget* openList() const {
    QWidget* list = m_button.openedList();
    return list != nullptr && list->isVisible() ? list : nullptr;
  }

  LXButton& m_button;
};

// A frameless window is still a window, and a modal one is a dialog.
class AccessibleWindow final : public QAccessibleWidget {
 public:
  explicit AccessibleWindow(LXNoTitleWindow* window) : QAccessibleWidget(window) {}

  QAccessible::Role role() const override {
    return widget()->windowModality() == Qt::NonModal ? QAccessible::Window : QAccessible::Dialog;
  }
};

QAccessibleInterface* make(const QString& /*className*/, QObject* object) {
  if (auto* button = qobject_cast<LXButton*>(object)) {
    return new AccessibleButton(button);
  }
  if (auto* list = qobject_cast<LXMenulist*>(object)) {
    return new AccessibleMenulist(list);
  }
  if (auto* window = qobject_cast<LXNoTitleWindow*>(object)) {
    return new AccessibleWindow(window);
  }
  return nullptr;
}

}  // namespace

void buttonaccessibility::install() {
  QAccessible::installFactory(make);
}
