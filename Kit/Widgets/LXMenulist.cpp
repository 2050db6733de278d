#include "Kit/Widgets/LXMenulist.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QScrollBar>
#include <algorithm>
#include <utility>

namespace {

constexpr int rowHeight = 28;
constexpr int maximumRows = 14;
constexpr int borderWidth = 1;

}  // namespace

LXMenulist::LXMenulist(std::shared_ptr<LXTreeNode> node, int fontSize, QWidget* parent)
    : QListWidget(parent) {
  setWindowFlags(Qt::Popup | Qt::FramelessWindowHint);
  setMouseTracking(true);
  setUniformItemSizes(true);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setTextElideMode(Qt::ElideRight);
  QFont type = font();
  type.setPixelSize(fontSize);
  setFont(type);
  connect(this, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) { choose(item); });
  // Hovering makes an entry current, so that Return chooses it.
  connect(this, &QListWidget::itemEntered, this,
          [this](QListWidgetItem* item) { setCurrentItem(item); });
  setMenuNode(std::move(node));
}

void LXMenulist::setMenuNode(std::shared_ptr<LXTreeNode> node) {
  m_node = std::move(node);
  clear();
  if (!m_node) {
    return;
  }
  for (const auto& child : m_node->children()) {
    const auto title = child->nodeData() ? child->nodeData()->titleStr() : std::string();
    auto* item = new QListWidgetItem(QString::fromStdString(title), this);
    item->setTextAlignment(Qt::AlignCenter);
    item->setSizeHint({0, rowHeight});
    item->setToolTip(item->text());
  }
}

int LXMenulist::fullHeight() const {
  return std::min(count(), maximumRows) * rowHeight + 2 * borderWidth;
}

void LXMenulist::showMenulist(const QPoint& position) {
  if (count() == 0) {
    return;
  }
  QRect place(position, QSize(m_width, fullHeight()));
  const QScreen* screen = QGuiApplication::screenAt(position);
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
  setCurrentRow(0);
  show();
  setFocus(Qt::PopupFocusReason);
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

void LXMenulist::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
      chooseCurrent();
      return;
    case Qt::Key_Escape:
      hideMenulist();
      return;
    default:
      QListWidget::keyPressEvent(event);
  }
}
