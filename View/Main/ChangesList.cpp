#include "View/Main/ChangesList.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>

#include "View/Screen/ControlFactory.h"
#include "View/Screen/Pictures.h"
#include "View/Windows/HelpDocument.h"

namespace {

constexpr int listWidth = 616;
constexpr int placeWidth = 176;
constexpr int valueWidth = 130;
constexpr int rowHeight = 40;
constexpr int visibleRows = 9;
constexpr int margin = 12;
constexpr int swatchSize = 14;
constexpr int scrollGap = 8;
constexpr int scrollBarWidth = 8;
constexpr qreal headType = 14;
constexpr qreal textType = 12;
constexpr QColor bright(0xF2, 0xF4, 0xF7);
constexpr QColor dim(0x9A, 0xA3, 0xB2);

QLabel* label(const QString& text, const QColor& color, int weight, int width) {
  auto* made = new QLabel;
  // Names of macros and profiles come from anywhere.
  made->setTextFormat(Qt::PlainText);
  made->setFont(pictures::font(textType, weight));
  QPalette colors = made->palette();
  colors.setColor(QPalette::WindowText, color);
  made->setPalette(colors);
  made->setFixedWidth(width);
  const QString shown = QFontMetrics(made->font()).elidedText(text, Qt::ElideRight, width);
  made->setText(shown);
  made->setAccessibleName(text);
  if (shown != text) {
    made->setToolTip(text.toHtmlEscaped());
  }
  return made;
}

QPixmap swatch(const QColor& color, qreal ratio) {
  QPixmap picture(QSize(swatchSize, swatchSize) * ratio);
  picture.setDevicePixelRatio(ratio);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(dim, 1));
  painter.setBrush(color);
  painter.drawRoundedRect(QRectF(0.5, 0.5, swatchSize - 1, swatchSize - 1), 3, 3);
  return picture;
}

void addValue(QHBoxLayout& row, const QString& text, const std::optional<QColor>& light,
              const QColor& color, qreal ratio) {
  int width = valueWidth;
  if (light) {
    auto* mark = new QLabel;
    mark->setPixmap(swatch(*light, ratio));
    mark->setFixedWidth(swatchSize);
    row.addWidget(mark);
    width -= swatchSize + row.spacing();
  }
  row.addWidget(label(text, color, QFont::Normal, width));
}

}  // namespace

ChangesList::ChangesList(QWidget* parent)
    : QFrame(parent, Qt::Popup), m_scroll(new QScrollArea(this)) {
  setObjectName(QStringLiteral("changesList"));
  helpdocument::serve(*this, "changes");
  // The button that opened the list closes it by the same click.
  setAttribute(Qt::WA_NoMouseReplay);
  setStyleSheet(QStringLiteral(
      "ChangesList { background: #1B1D23; border: 1px solid #343943; border-radius: 8px; }"
      "QScrollArea, QScrollArea > QWidget > QWidget { background: transparent; border: none; }"
      "QScrollBar:vertical { background: transparent; width: 8px; }"
      "QScrollBar::handle:vertical { background: #4A505C; border-radius: 4px; min-height: 24px; }"
      "QScrollBar::add-line, QScrollBar::sub-line { height: 0; }"
      "QPushButton { color: #F2F4F7; background: #22252C; border: 1px solid #343943;"
      "  border-radius: 6px; padding: 0 10px; }"
      "QPushButton:hover { background: #2D313A; border-color: #5A6270; }"
      "QPushButton:pressed { background: #0B0C0F; border-color: #E5262F; }"
      "QPushButton:focus { border: 2px solid #F2F4F7; }"));
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(margin, margin, margin, margin);
  m_heading = label({}, bright, QFont::DemiBold, listWidth - 2 * margin);
  m_heading->setFont(pictures::font(headType, QFont::DemiBold));
  showTexts();
  column->addWidget(m_heading);
  m_scroll->setObjectName(QStringLiteral("changesScroll"));
  m_scroll->setFocusPolicy(Qt::NoFocus);
  m_scroll->setFrameShape(QFrame::NoFrame);
  m_scroll->setWidgetResizable(true);
  m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  column->addWidget(m_scroll);
  setFixedWidth(listWidth);
}

void ChangesList::showTexts() {
  const QString heading = NerinAction::tooltipText("What would Apply change?");
  setWindowTitle(heading);
  setAccessibleName(heading);
  m_heading->setText(heading);
}

QWidget* ChangesList::rowOf(const Row& row, int index) {
  auto* line = new QWidget;
  line->setObjectName(QStringLiteral("change%1").arg(index + 1));
  line->setAccessibleName(row.words);
  line->setFixedHeight(rowHeight);
  auto* parts = new QHBoxLayout(line);
  parts->setContentsMargins(0, 0, scrollGap, 0);
  parts->addWidget(label(row.place, bright, QFont::Medium, placeWidth));
  addValue(*parts, row.before, row.beforeColor, dim, devicePixelRatioF());
  parts->addWidget(label(QStringLiteral("→"), dim, QFont::Normal, swatchSize));
  addValue(*parts, row.after, row.afterColor, bright, devicePixelRatioF());
  parts->addStretch();
  auto* button = new QPushButton(NerinAction::tooltipText("Take back"));
  button->setObjectName(QStringLiteral("takeBack%1").arg(index + 1));
  button->setAccessibleName(button->text() + QStringLiteral(": ") + row.words);
  button->setFont(pictures::font(textType, QFont::DemiBold));
  button->setFixedHeight(rowHeight - 12);
  button->setCursor(Qt::PointingHandCursor);
  // The list is filled anew by it, which deletes the button.
  connect(
      button, &QPushButton::clicked, this, [this, index] { emit takenBack(index); },
      Qt::QueuedConnection);
  parts->addWidget(button);
  m_buttons.push_back(button);
  return line;
}

int ChangesList::focusedRow() const {
  const auto found = std::find(m_buttons.begin(), m_buttons.end(), focusWidget());
  return found == m_buttons.end() ? 0 : static_cast<int>(found - m_buttons.begin());
}

void ChangesList::fill(const std::vector<Row>& rows, const QString& none) {
  const int focused = focusedRow();
  m_buttons.clear();
  auto* content = new QWidget;
  auto* lines = new QVBoxLayout(content);
  lines->setContentsMargins(0, 0, 0, 0);
  lines->setSpacing(0);
  for (int i = 0; i < static_cast<int>(rows.size()); ++i) {
    lines->addWidget(rowOf(rows[static_cast<std::size_t>(i)], i));
  }
  if (rows.empty()) {
    auto* words = label(QString(), dim, QFont::Normal, listWidth - 2 * margin);
    words->setObjectName(QStringLiteral("noChange"));
    words->setWordWrap(true);
    words->setFixedHeight(rowHeight);
    words->setText(none);
    words->setAccessibleName(none);
    lines->addWidget(words);
  }
  // Deletes the rows before.
  m_scroll->setWidget(content);
  // A row is as wide as the language needs, and must not be scrolled to the side. The buttons have
  // their style only now.
  int rowWidth = 0;
  for (const QWidget* button : m_buttons) {
    button->parentWidget()->layout()->invalidate();
    rowWidth = std::max(rowWidth, button->parentWidget()->layout()->minimumSize().width());
  }
  setFixedWidth(std::max(listWidth, rowWidth + 2 * margin + scrollBarWidth));
  const int shown = std::clamp(static_cast<int>(rows.size()), 1, visibleRows);
  m_scroll->setFixedHeight(shown * rowHeight);
  m_scroll->setVerticalScrollBarPolicy(
      static_cast<int>(rows.size()) > shown ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
  const QPoint corner = geometry().bottomRight();
  adjustSize();
  if (isVisible()) {
    move(corner - rect().bottomRight());
  }
  if (rows.empty()) {
    setFocus();
  } else {
    QWidget* next = m_buttons[static_cast<std::size_t>(
        std::min<int>(focused, static_cast<int>(rows.size()) - 1))];
    next->setFocus(Qt::TabFocusReason);
    m_scroll->ensureWidgetVisible(next);
  }
}

void ChangesList::openAbove(const QPoint& corner) {
  const QRect room = (parentWidget() ? parentWidget()->screen() : screen())->availableGeometry();
  QRect place = rect();
  place.moveBottomRight(corner);
  place.moveTop(std::max(place.top(), room.top()));
  place.moveLeft(std::max(place.left(), room.left()));
  move(place.topLeft());
  show();
  if (!m_buttons.empty()) {
    m_buttons.front()->setFocus(Qt::TabFocusReason);
  }
}

void ChangesList::keyPressEvent(QKeyEvent* event) {
  auto* button = qobject_cast<QPushButton*>(focusWidget());
  if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && button != nullptr) {
    // A held key takes back one change, not all of them.
    if (!event->isAutoRepeat()) {
      button->click();
    }
    return;
  }
  QFrame::keyPressEvent(event);
}
