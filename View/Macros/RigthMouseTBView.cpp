#include "View/Macros/RigthMouseTBView.h"

#include <QApplication>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <algorithm>
#include <utility>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "ArtworkFrames.h"
#include "Kit/Core/LXKey.h"
#include "Kit/Widgets/LXButton.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Pictures.h"

namespace {

constexpr int commandHeight = 20;
constexpr int iconColumnWidth = 28;
constexpr int delayColumnWidth = 88;
constexpr int delayIcon = 3;
constexpr int typeSize = 12;

QString keyName(std::int32_t keyCode) {
  switch (keyCode) {
    case 120:
      return NerinAction::tooltipText("L Button");
    case 121:
      return NerinAction::tooltipText("R Button");
    case 122:
      return NerinAction::tooltipText("M Button");
    default:
      return QString::fromStdString(LXKey::getStrByKeycode(keyCode));
  }
}

// The text of the catalogue with the key in its place.
QString filledIn(const char* format, const QString& key) {
  return NerinAction::tooltipText(format).replace(QStringLiteral("%@"), key);
}
constexpr QColor chosenColor(0x45, 0x0A, 0x0C);

// Keeps the icons of the selected command untinted: in the selection color they would be invisible.
// Draws the rows that are chosen with the selected one.
class CommandDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    const auto* commands = qobject_cast<const MacroCommandModel*>(index.model());
    if (commands != nullptr && commands->isChosen(index.row())) {
      painter->fillRect(option.rect, chosenColor);
    }
    QStyledItemDelegate::paint(painter, option, index);
  }

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    const auto picture = index.data(Qt::DecorationRole).value<QPixmap>();
    if (!picture.isNull()) {
      option->icon.addPixmap(picture, QIcon::Selected);
    }
  }
};

}  // namespace

MacroCommandModel::MacroCommandModel(QObject* parent) : QAbstractTableModel(parent) {
  for (const char* name : {"MacroIconKeyDown", "MacroIconKeyUp", "MacroIconCommand",
                           "MacroIconDelay", "MacroIconMouseDown", "MacroIconMouseUp"}) {
    m_icons.push_back(pictures::load(QString::fromLatin1(name) + QStringLiteral(".png")));
  }
}

void MacroCommandModel::setCommands(const Commands* commands) {
  beginResetModel();
  m_commands = commands;
  endResetModel();
}

void MacroCommandModel::setChosenRows(int first, int last) {
  m_firstChosen = first;
  m_lastChosen = last;
  if (rowCount() > 0) {
    emit dataChanged(index(0, 0), index(rowCount() - 1, columns - 1), {Qt::BackgroundRole});
  }
}

void MacroCommandModel::reloadData() {
  beginResetModel();
  endResetModel();
}

QString MacroCommandModel::milliseconds(std::int64_t count) {
  return QStringLiteral("%1 %2").arg(count).arg(NerinAction::tooltipText("ms"));
}

QString MacroCommandModel::describe(const MacroKeyInfo& command) {
  QString key = keyName(command.keyCode());
  switch (command.keyFlag()) {
    case MacroKeyInfo::KeyPress:
      return filledIn("Press %@", key);
    case MacroKeyInfo::KeyRelease:
      return filledIn("Release %@", key);
    case MacroKeyInfo::Function:
      return QString::fromStdString(
          NerinAction::getMacroMenuNameById(command.keyCode()).value_or(""));
    case MacroKeyInfo::MousePress:
      return filledIn("%@ Down", key);
    case MacroKeyInfo::MouseRelease:
      return filledIn("%@ Up", key);
    default:
      return key;
  }
}

QString MacroCommandModel::keyWords(const MacroKeyInfo& command) {
  return command.keyFlag() == MacroKeyInfo::Function ? describe(command)
                                                     : keyName(command.keyCode());
}

int MacroCommandModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() || m_commands == nullptr ? 0 : static_cast<int>(m_commands->size());
}

int MacroCommandModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(columns);
}

QPixmap MacroCommandModel::icon(int index) const {
  return index >= 0 && index < static_cast<int>(m_icons.size())
             ? m_icons[static_cast<std::size_t>(index)].pixmap()
             : QPixmap();
}

QVariant MacroCommandModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) {
    return {};
  }
  const MacroKeyInfo& command = *(*m_commands)[static_cast<std::size_t>(index.row())];
  if (role == Qt::DecorationRole && index.column() == CommandImage) {
    return icon(command.keyFlag());
  }
  if (role == Qt::DecorationRole && index.column() == DelayImage) {
    return icon(delayIcon);
  }
  const bool isWords = role == Qt::DisplayRole || role == Qt::AccessibleTextRole;
  if (isWords && index.column() == Command) {
    return describe(command);
  }
  if (isWords && index.column() == Delay) {
    return milliseconds(command.delay());
  }
  if (role == Qt::EditRole && (index.column() == Command || index.column() == Delay)) {
    return QString::number(command.delay());
  }
  return {};
}

Qt::ItemFlags MacroCommandModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
  const bool isText = index.column() == Command || index.column() == Delay;
  return isText ? flags | Qt::ItemIsEditable : flags;
}

bool MacroCommandModel::setData(const QModelIndex& /*index*/, const QVariant& /*value*/,
                                int /*role*/) {
  return false;
}

RigthMouseTBView::RigthMouseTBView(QWidget* parent) : QTableView(parent) {
  horizontalHeader()->hide();
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setDefaultSectionSize(commandHeight);
  setShowGrid(false);
  setFrameShape(QFrame::NoFrame);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
  setTabKeyNavigation(false);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFont(pictures::font(typeSize, QFont::Normal));
  setStyleSheet(QStringLiteral(
      "QTableView { color: white; background: black; outline: 0; }"
      "QTableView::item { border: 0; padding: 0 4px; }"
      "QTableView::item:selected { color: white; background: #7D0608; }"
      "QLineEdit { color: white; background: #22252C; border: 0; }"
      "QScrollBar:vertical { background: black; width: 8px; }"
      "QScrollBar::handle:vertical { background: #9AA3B2; border-radius: 4px; min-height: 24px; }"
      "QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0; }"));
  auto* commands = new MacroCommandModel(this);
  setModel(commands);
  setItemDelegate(new CommandDelegate(this));
  horizontalHeader()->setMinimumSectionSize(iconColumnWidth);
  setColumnWidth(MacroCommandModel::CommandImage, iconColumnWidth);
  setColumnWidth(MacroCommandModel::DelayImage, iconColumnWidth);
  setColumnWidth(MacroCommandModel::Delay, delayColumnWidth);
  horizontalHeader()->setSectionResizeMode(MacroCommandModel::Command, QHeaderView::Stretch);
}

bool RigthMouseTBView::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
  const bool isRefused = m_delegate != nullptr && !m_delegate->textShouldBeginEditing(*this);
  return !isRefused && QTableView::edit(index, trigger, event);
}

void RigthMouseTBView::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
  if (m_delegate == nullptr || m_delegate->textShouldEndEditing(*this)) {
    QTableView::closeEditor(editor, hint);
  }
}

QItemSelectionModel::SelectionFlags RigthMouseTBView::selectionCommand(
    const QModelIndex& index, const QEvent* /*event*/) const {
  return index.isValid() ? QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows
                         : QItemSelectionModel::SelectionFlags(QItemSelectionModel::NoUpdate);
}

void RigthMouseTBView::selectionChanged(const QItemSelection& selected,
                                        const QItemSelection& deselected) {
  QTableView::selectionChanged(selected, deselected);
  const QModelIndexList chosen = selectionModel()->selectedIndexes();
  if (!chosen.isEmpty() && chosen.front().row() != currentIndex().row()) {
    selectionModel()->setCurrentIndex(chosen.front(), QItemSelectionModel::NoUpdate);
  }
}

void RigthMouseTBView::sendMouseMove(QMouseEvent& event, bool isDown) {
  if (m_delegate != nullptr) {
    m_delegate->onMouseEvent(*this, event, LXButtonDelegate::pressType(event, isDown));
  }
}

void RigthMouseTBView::mousePressEvent(QMouseEvent* event) {
  sendMouseMove(*event, true);
  if (m_isCaptureMouseEvent) {
    event->accept();
  } else if (event->button() == Qt::RightButton) {
    // Rows ignore the right button.
    event->ignore();
  } else {
    m_pressedAt = event->position().toPoint();
    const bool isLeft = event->button() == Qt::LeftButton;
    m_draggedRow = isLeft ? rowAt(m_pressedAt.y()) : none;
    const QScopedValueRollback extending(m_isExtending,
                                         event->modifiers().testFlag(Qt::ShiftModifier));
    QTableView::mousePressEvent(event);
    event->accept();
  }
}

void RigthMouseTBView::mouseReleaseEvent(QMouseEvent* event) {
  sendMouseMove(*event, false);
  if (m_isCaptureMouseEvent) {
    return;
  }
  QTableView::mouseReleaseEvent(event);
  const int row = m_draggedRow;
  const int gap = m_dropGap;
  endDrag();
  if (gap != none && m_delegate != nullptr) {
    m_delegate->onRowDragged(*this, row, gap);
  }
}

// Moves the line that shows where the row would be dropped, and the rows at the edges.
void RigthMouseTBView::drag(const QPoint& point) {
  if (m_dropGap == none &&
      (point - m_pressedAt).manhattanLength() < QApplication::startDragDistance()) {
    return;
  }
  const int step = point.y() < 0 ? -1 : point.y() >= viewport()->height() ? 1 : 0;
  verticalScrollBar()->setValue(verticalScrollBar()->value() +
                                step * verticalScrollBar()->singleStep());
  const int y = std::clamp(point.y(), 0, viewport()->height() - 1);
  const int row = rowAt(y);
  const int count = model()->rowCount();
  m_dropGap = row < 0 ? count : row + (y >= rowViewportPosition(row) + commandHeight / 2 ? 1 : 0);
  viewport()->update();
}

void RigthMouseTBView::endDrag() {
  m_draggedRow = none;
  m_dropGap = none;
  viewport()->update();
}

void RigthMouseTBView::keyPressEvent(QKeyEvent* event) {
  if (m_dropGap != none && event->key() == Qt::Key_Escape) {
    endDrag();
  } else if (m_delegate == nullptr || !m_delegate->onKey(*this, *event)) {
    const QScopedValueRollback extending(m_isExtending,
                                         event->modifiers().testFlag(Qt::ShiftModifier));
    QTableView::keyPressEvent(event);
  }
}

void RigthMouseTBView::paintEvent(QPaintEvent* event) {
  QTableView::paintEvent(event);
  if (m_dropGap == none) {
    return;
  }
  constexpr int thickness = 2;
  const int y = m_dropGap < model()->rowCount()
                    ? rowViewportPosition(m_dropGap)
                    : rowViewportPosition(m_dropGap - 1) + commandHeight;
  QPainter(viewport())
      .fillRect(0, std::max(0, y - thickness / 2), viewport()->width(), thickness,
                QColor::fromRgb(Artwork::Color::emberLit));
}

// Treats a double click as a second press.
void RigthMouseTBView::mouseDoubleClickEvent(QMouseEvent* event) {
  if (m_isCaptureMouseEvent) {
    mousePressEvent(event);
  } else {
    QTableView::mouseDoubleClickEvent(event);
  }
}

void RigthMouseTBView::mouseMoveEvent(QMouseEvent* event) {
  if (m_isCaptureMouseEvent) {
    return;
  }
  if (m_draggedRow != none && event->buttons().testFlag(Qt::LeftButton)) {
    drag(event->position().toPoint());
  } else {
    QTableView::mouseMoveEvent(event);
  }
}
