#include "Kit/Widgets/ButtonAccessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include "Kit/Widgets/LXButton.h"

namespace {

class AccessibleButton final : public QAccessibleWidget {
 public:
  explicit AccessibleButton(LXButton* button) : QAccessibleWidget(button), m_button(*button) {}

  QAccessible::Role role() const override {
    if (m_button.isCheckBox()) {
      return QAccessible::CheckBox;
    }
    return m_button.isStepItem() ? QAccessible::RadioButton : QAccessible::Button;
  }

  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.checkable = m_button.isCheckable();
    state.checked = m_button.isChecked();
    state.pressed = m_button.isDown();
    return state;
  }

  QString text(QAccessible::Text kind) const override {
    const QString text = QAccessibleWidget::text(kind);
    return text.isEmpty() && kind == QAccessible::Name ? m_button.title() : text;
  }

  QStringList actionNames() const override {
    QStringList names{m_button.isCheckable() ? toggleAction() : pressAction()};
    return names + QAccessibleWidget::actionNames();
  }

  // Queued, because a press may open a dialog, and the screen reader waits for the answer.
  void doAction(const QString& actionName) override {
    if (actionName == pressAction() || actionName == toggleAction()) {
      QMetaObject::invokeMethod(&m_button, &QAbstractButton::click, Qt::QueuedConnection);
      return;
    }
    QAccessibleWidget::doAction(actionName);
  }

 private:
  LXButton& m_button;
};

QAccessibleInterface* make(const QString& /*className*/, QObject* object) {
  auto* button = qobject_cast<LXButton*>(object);
  return button != nullptr ? new AccessibleButton(button) : nullptr;
}

}  // namespace

void buttonaccessibility::install() {
  QAccessible::installFactory(make);
}
