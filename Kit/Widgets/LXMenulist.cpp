#include "Kit/Widgets/LXMenulist.h"

#include <QCursor>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QToolTip>
#include <algorithm>
#include <utility>

#include "Kit/Widgets/PlainTip.h"

namespace {

constexpr int rowHeight = 28;
constexpr int maximumRows = 14;
constexpr int borderWidth = 1;
constexpr int notePad = 12;
constexpr int lineInset = 12;
constexpr QColor lineColor(0x5A, 0x62, 0x70);
constexpr QColor noteColor(0xC3, 0xC9, 0xD4);
// Whether a line follows the entry.
constexpr int lineRole = Qt::UserRole;

class EntryDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    QStyledItemDelegate::paint(painter, option, index);
    if (index.data(lineRole).toBool()) {
      const QRect line(option.rect.left() + lineInset, option.rect.bottom(),
                       option.rect.width() - 2 * lineInset, 1);
      painter->fillRect(line, lineColor);
    }
  }
};

bool isTyped(const QString& text) {
  return !text.isEmpty() &&
         std::all_of(text.begin(), text.end(), [](QChar one) { return one.isPrint(); });
}

}  // namespace

LXMenulist::LXMenulist(std::shared_ptr<LXTreeNode> node, int fontSize, QWidget* parent)
    : QListWidget(parent), m_filterLbl(new QLabel(this)) {
  setWindowFlags(Qt::Popup | Qt::FramelessWindowHint);
  setMouseTracking(true);
  setUniformItemSizes(true);
  setAttribute(Qt::WA_InputMethodEnabled);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setTextElideMode(Qt::ElideRight);
  setItemDelegate(new EntryDelegate(this));
  QFont type = font();
  type.setPixelSize(fontSize);
  setFont(type);
  m_filterLbl->setObjectName(QStringLiteral("filterLbl"));
  m_filterLbl->setTextFormat(Qt::PlainText);
  m_filterLbl->hide();
  connect(this, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) { choose(item); });
  // Hovering makes an entry current, so that Return chooses it.
  connect(this, &QListWidget::itemEntered, this,
          [this](QListWidgetItem* item) { setCurrentItem(item); });
  setMenuNode(std::move(node));
}

// An open list may be filled anew, when another program changes what it shows.
void LXMenulist::setMenuNode(std::shared_ptr<LXTreeNode> node) {
  const QListWidgetItem* before = isVisible() ? currentItem() : nullptr;
  const QString kept = before != nullptr ? before->text() : QString();
  m_node = std::move(node);
  clear();
  if (m_node) {
    for (const auto& child : m_node->children()) {
      const auto& entry = child->nodeData();
      auto* item =
          new QListWidgetItem(entry ? QString::fromStdString(entry->titleStr()) : QString(), this);
      item->setTextAlignment(Qt::AlignCenter);
      item->setSizeHint({0, rowHeight});
      item->setData(lineRole, entry && entry->isLineAfter() && child != m_node->children().back());
    }
  }
  if (isVisible()) {
    setFilter(m_filter);
    makeCurrent(rowOf(kept));
  }
}

int LXMenulist::rowOf(const QString& title) const {
  const auto found = title.isEmpty() ? QList<QListWidgetItem*>()
                                     : findItems(title, Qt::MatchExactly | Qt::MatchCaseSensitive);
  return found.isEmpty() ? noRow : row(found.constFirst());
}

int LXMenulist::shownRows() const {
  int shown = 0;
  for (int i = 0; i < count(); ++i) {
    shown += isRowHidden(i) ? 0 : 1;
  }
  return shown;
}

QString LXMenulist::note() const {
  if (count() == 0) {
    return m_emptyText;
  }
  return shownRows() == 0 ? m_noMatchText : QString();
}

int LXMenulist::noteHeight() const {
  const QRect room(0, 0, m_width - 2 * (borderWidth + notePad), QWIDGETSIZE_MAX);
  const int words =
      fontMetrics().boundingRect(room, Qt::AlignCenter | Qt::TextWordWrap, note()).height();
  return std::max(rowHeight, words + 2 * notePad);
}

int LXMenulist::fullHeight() const {
  const int rows = shownRows();
  return (rows == 0 ? noteHeight() : std::min(rows, maximumRows) * rowHeight) +
         (m_filter.isEmpty() ? 0 : rowHeight) + 2 * borderWidth;
}

void LXMenulist::place() {
  QRect place(m_wantedPosition, QSize(m_width, fullHeight()));
  const QScreen* screen = QGuiApplication::screenAt(m_wantedPosition);
  if (screen == nullptr) {
    screen = QGuiApplication::primaryScreen();
  }
  if (screen != nullptr) {
    const QRect room = screen->availableGeometry();
    place.moveRight(std::min(place.right(), room.right()));
    place.moveBottom(std::min(place.bottom(), room.bottom()));
    place.moveLeft(std::max(place.left(), room.left()));
    place.moveTop(std::max(place.top(), room.top()));
  }
  setGeometry(place);
}

void LXMenulist::showMenulist(const QPoint& position, int currentRow) {
  m_wantedPosition = position;
  m_pointerAtStart = QCursor::pos();
  m_rowAtStart = currentRow;
  setAttribute(Qt::WA_NoMouseReplay, false);
  setFilter({});
  makeCurrent(currentRow);
  show();
  setFocus(Qt::PopupFocusReason);
  // The focus makes the first entry current in a list that has no current one.
  makeCurrent(currentRow);
}

void LXMenulist::makeCurrent(int row) {
  if (row < 0 || row >= count() || isRowHidden(row)) {
    clearSelection();
    setCurrentRow(noRow);
    return;
  }
  setCurrentRow(row);
  scrollToItem(item(row), PositionAtCenter);
}

// Shows the entries that hold the words, and makes the best one current: the one whose title begins
// with them, or else the first.
void LXMenulist::setFilter(const QString& filter) {
  m_filter = filter;
  int best = noRow;
  bool isBestAtStart = false;
  for (int i = 0; i < count(); ++i) {
    const QString title = item(i)->text();
    const bool isShown = title.contains(filter, Qt::CaseInsensitive);
    setRowHidden(i, !isShown);
    const bool isAtStart = title.startsWith(filter, Qt::CaseInsensitive);
    if (isShown && (best == noRow || (isAtStart && !isBestAtStart))) {
      best = i;
      isBestAtStart = isAtStart;
    }
  }
  const bool isFiltered = !filter.isEmpty();
  setViewportMargins(0, isFiltered ? rowHeight : 0, 0, 0);
  m_filterLbl->setText(filter);
  m_filterLbl->setGeometry(borderWidth, borderWidth, m_width - 2 * borderWidth, rowHeight);
  m_filterLbl->setVisible(isFiltered);
  place();
  makeCurrent(isFiltered ? best : m_rowAtStart);
  viewport()->update();
}

void LXMenulist::choose(const QListWidgetItem* item) {
  const int index = row(item);
  hideMenulist();
  const auto& nodes = m_node->children();
  if (index < 0 || static_cast<std::size_t>(index) >= nodes.size() || m_delegate == nullptr) {
    return;
  }
  // The delegate may refill the menu.
  const std::shared_ptr<LXTreeNode> chosen = nodes[static_cast<std::size_t>(index)];
  m_delegate->onMenulistSelected(*this, chosen);
}

void LXMenulist::chooseCurrent() {
  if (isVisible() && currentItem() != nullptr) {
    choose(currentItem());
  }
}

bool LXMenulist::event(QEvent* event) {
  if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick) {
    const auto* press = static_cast<QMouseEvent*>(event);
    if (!rect().contains(press->position().toPoint())) {
      const QPoint place = press->globalPosition().toPoint();
      // The opener would open the list again.
      setAttribute(Qt::WA_NoMouseReplay,
                   m_opener && m_opener->rect().contains(m_opener->mapFromGlobal(place)));
      hideMenulist();
      event->accept();
      return true;
    }
  }
  return QListWidget::event(event);
}

bool LXMenulist::viewportEvent(QEvent* event) {
  if (event->type() != QEvent::ToolTip) {
    return QListWidget::viewportEvent(event);
  }
  const auto* help = static_cast<QHelpEvent*>(event);
  const QListWidgetItem* under = itemAt(help->pos());
  const bool isCut =
      under != nullptr && fontMetrics().horizontalAdvance(under->text()) +
                                  2 * style()->pixelMetric(QStyle::PM_FocusFrameHMargin) >
                              viewport()->width();
  QToolTip::showText(help->globalPos(), isCut ? plainTip(under->text()) : QString(), this);
  return true;
}

void LXMenulist::paintEvent(QPaintEvent* event) {
  QListWidget::paintEvent(event);
  const QString words = note();
  if (!words.isEmpty()) {
    QPainter painter(viewport());
    painter.setFont(font());
    painter.setPen(noteColor);
    painter.drawText(viewport()->rect().adjusted(notePad, 0, -notePad, 0),
                     Qt::AlignCenter | Qt::TextWordWrap, words);
  }
}

// A list that opens under a resting pointer keeps its current entry.
void LXMenulist::mouseMoveEvent(QMouseEvent* event) {
  if (event->globalPosition().toPoint() != m_pointerAtStart) {
    QListWidget::mouseMoveEvent(event);
  }
}

void LXMenulist::moveCurrent(int key) {
  const bool isUp = key == Qt::Key_Up;
  for (int i = 0; i < count(); ++i) {
    const int one = isUp ? count() - 1 - i : i;
    if (!isRowHidden(one)) {
      makeCurrent(one);
      return;
    }
  }
}

void LXMenulist::keyPressEvent(QKeyEvent* event) {
  const bool isSpaceTyped = event->key() == Qt::Key_Space && !m_filter.isEmpty();
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
      if (isSpaceTyped) {
        break;
      }
      // The key that opened the list may still be held.
      if (event->isAutoRepeat()) {
        return;
      }
      if (m_returnKeeps && currentRow() != noRow && currentRow() == m_rowAtStart) {
        hideMenulist();
      } else {
        chooseCurrent();
      }
      return;
    case Qt::Key_Escape:
      if (event->isAutoRepeat()) {
        return;
      }
      if (m_filter.isEmpty()) {
        hideMenulist();
      } else {
        setFilter({});
      }
      return;
    case Qt::Key_Backspace:
      setFilter(m_filter.chopped(std::min<qsizetype>(1, m_filter.size())));
      return;
    case Qt::Key_Up:
    case Qt::Key_Down:
      if (currentRow() == noRow) {
        moveCurrent(event->key());
        return;
      }
      break;
    default:
      break;
  }
  constexpr Qt::KeyboardModifiers commands =
      Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
  if (isTyped(event->text()) && !(event->modifiers() & commands)) {
    setFilter(m_filter + event->text());
    return;
  }
  QListWidget::keyPressEvent(event);
}

void LXMenulist::inputMethodEvent(QInputMethodEvent* event) {
  if (isTyped(event->commitString())) {
    setFilter(m_filter + event->commitString());
  }
  event->accept();
}
