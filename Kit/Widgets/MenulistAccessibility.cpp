#include "Kit/Widgets/MenulistAccessibility.h"

#include <QPointer>

#include "Kit/Widgets/LXMenulist.h"

namespace {

class AccessibleEntry final : public QAccessibleInterface, public QAccessibleActionInterface {
 public:
  AccessibleEntry(LXMenulist* list, int row) : m_list(list), m_row(row) {}

  int row() const { return m_row; }

  bool isValid() const override { return m_list != nullptr && m_row < m_list->count(); }
  QObject* object() const override { return nullptr; }
  QWindow* window() const override { return m_list ? m_list->windowHandle() : nullptr; }
  QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }
  QAccessibleInterface* parent() const override {
    return QAccessible::queryAccessibleInterface(m_list);
  }
  QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
  void setText(QAccessible::Text /*kind*/, const QString& /*text*/) override {}
  QAccessible::Role role() const override { return QAccessible::ListItem; }

  QString text(QAccessible::Text kind) const override {
    return isValid() && kind == QAccessible::Name ? m_list->item(m_row)->text() : QString();
  }

  QRect rect() const override {
    if (!isValid()) {
      return {};
    }
    const QRect place = m_list->visualItemRect(m_list->item(m_row));
    return {m_list->viewport()->mapToGlobal(place.topLeft()), place.size()};
  }

  QAccessible::State state() const override {
    QAccessible::State state;
    state.invalid = !isValid();
    state.invisible = !isValid() || !m_list->isVisible() || m_list->isRowHidden(m_row);
    state.focusable = true;
    state.selectable = true;
    state.selected = isValid() && m_list->currentRow() == m_row;
    state.focused = state.selected && m_list->hasFocus();
    return state;
  }

  void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                : nullptr;
  }
  QStringList actionNames() const override { return {pressAction()}; }
  QStringList keyBindingsForAction(const QString& /*actionName*/) const override { return {}; }
  // Queued, because a choice may open a dialog and the screen reader waits for the reply.
  void doAction(const QString& actionName) override {
    if (isValid() && actionName == pressAction()) {
      m_list->setCurrentRow(m_row);
      QMetaObject::invokeMethod(m_list, &LXMenulist::chooseCurrent, Qt::QueuedConnection);
    }
  }

 private:
  QPointer<LXMenulist> m_list;
  int m_row;
};

}  // namespace

AccessibleMenulist::AccessibleMenulist(LXMenulist* list)
    : QAccessibleWidget(list, QAccessible::List), m_list(*list) {}

AccessibleMenulist::~AccessibleMenulist() {
  for (const QAccessible::Id id : m_entries) {
    if (id != 0) {
      QAccessible::deleteAccessibleInterface(id);
    }
  }
}

QAccessibleInterface* AccessibleMenulist::parent() const {
  return m_list.opener() != nullptr ? QAccessible::queryAccessibleInterface(m_list.opener())
                                    : QAccessibleWidget::parent();
}

int AccessibleMenulist::childCount() const {
  return m_list.count();
}

QAccessibleInterface* AccessibleMenulist::child(int index) const {
  if (index < 0 || index >= m_list.count()) {
    return nullptr;
  }
  const auto row = static_cast<std::size_t>(index);
  if (m_entries.size() <= row) {
    m_entries.resize(row + 1);
  }
  if (m_entries[row] == 0) {
    m_entries[row] = QAccessible::registerAccessibleInterface(new AccessibleEntry(&m_list, index));
  }
  return QAccessible::accessibleInterface(m_entries[row]);
}

int AccessibleMenulist::indexOfChild(const QAccessibleInterface* child) const {
  const auto* entry = dynamic_cast<const AccessibleEntry*>(child);
  return entry != nullptr ? entry->row() : -1;
}

QAccessibleInterface* AccessibleMenulist::childAt(int x, int y) const {
  return child(m_list.row(m_list.itemAt(m_list.viewport()->mapFromGlobal(QPoint(x, y)))));
}

QAccessibleInterface* AccessibleMenulist::focusChild() const {
  return m_list.hasFocus() ? child(m_list.currentRow()) : nullptr;
}

QString AccessibleMenulist::text(QAccessible::Text kind) const {
  // Without entries the list still says what to do.
  if (kind == QAccessible::Description && !m_list.note().isEmpty()) {
    return m_list.note();
  }
  return kind == QAccessible::Name && m_list.opener() != nullptr ? m_list.opener()->accessibleName()
                                                                 : QAccessibleWidget::text(kind);
}
