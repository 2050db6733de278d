#include "View/PlainChildView.h"

#include <QPainter>

#include "ArtworkFrames.h"
#include "View/ControlFactory.h"
#include "View/Pictures.h"

namespace {

constexpr QColor colorOf(std::uint32_t rgb) {
  return {static_cast<int>(rgb >> 16U), static_cast<int>(rgb >> 8U & 0xFFU),
          static_cast<int>(rgb & 0xFFU)};
}

constexpr int margin = 24;
constexpr QSize closeSize(112, 40);
constexpr int titleSize = 15;

}  // namespace

PlainChildView::PlainChildView(const QSize& frame, const QString& title)
    : TavImageView(frame), m_title(title) {
  setBgColor(colorOf(Artwork::Colour::graphite));
}

void PlainChildView::initControls() {
  const QRect frame(
      QPoint(width() - margin - closeSize.width(), height() - margin - closeSize.height()),
      closeSize);
  LXButton* button = NerinAction::AddButton(
      frame, [this](LXButton&) { window()->close(); }, {}, *this);
  NerinAction::initTooltip(*button, QStringLiteral("closeBtn"), "Close");
  button->setTitle(button->toolTip());
}

void PlainChildView::paintEvent(QPaintEvent* event) {
  TavImageView::paintEvent(event);
  QPainter painter(this);
  painter.setPen(colorOf(Artwork::Colour::hairline));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
  painter.drawRect(
      QRect(QPoint(width() - margin - closeSize.width(), height() - margin - closeSize.height()),
            closeSize));
  painter.setPen(colorOf(Artwork::Colour::snow));
  painter.setFont(pictures::font(titleSize, QFont::DemiBold));
  painter.drawText(rect().adjusted(margin, margin, -margin, -margin),
                   static_cast<int>(Qt::AlignLeft | Qt::AlignTop), m_title);
}
