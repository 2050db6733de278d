#include "View/Screen/TavImageView.h"

#include <QEvent>
#include <QFileInfo>
#include <QLineEdit>
#include <QPaintEvent>
#include <QPainter>

#include "View/Screen/ControlFactory.h"
#include "View/Screen/Pictures.h"

TavImageView::TavImageView(const QSize& frame, QWidget* parent)
    : QWidget(parent), m_frmHeight(frame.height()) {
  resize(frame);
}

void TavImageView::construct() {
  constructControls();
  finishConstruction();
}

void TavImageView::constructControls() {
  initData();
  initControls();
}

void TavImageView::finishConstruction() {
  refreshData();
  m_isConstructed = true;
  viewDidMoveToSuperview();
}

void TavImageView::setImageByName(const QString& name) {
  if (name.isEmpty()) {
    return;
  }
  m_bgImage = pictures::load(name);
  const QFileInfo file(name);
  const qsizetype underscore = name.indexOf(u'_');
  const QString stem = underscore < 0 ? file.completeBaseName() : name.left(underscore);
  const QString extension = file.suffix();
  m_overImage = getImageByName(stem, QStringLiteral("Over"), extension);
  m_downImage = getImageByName(stem, QStringLiteral("Down"), extension);
  m_disableImage = getImageByName(stem, QStringLiteral("Disable"), extension);
  m_activeImage = getImageByName(stem, QStringLiteral("Active"), extension);
  update();
}

LXImage TavImageView::getImageByName(const QString& stem, const QString& tag,
                                     const QString& exeStr) {
  return pictures::load(stem + u'_' + tag + u'.' + exeStr);
}

void TavImageView::setBgColor(const QColor& color) {
  m_bgColor = color;
  update();
}

void TavImageView::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  painter.fillRect(event->rect(), m_bgColor);
  // Draw only what changed: the picture is large, a hovered button small.
  m_bgImage.drawPart(painter, event->rect());
  // The picture contains the frames of the fields.
  for (const auto* field : findChildren<QLineEdit*>(Qt::FindDirectChildrenOnly)) {
    if (!field->isEnabled() && field->isVisible() && event->rect().intersects(field->geometry())) {
      m_disableImage.slice(field->geometry()).draw(painter, field->pos());
    }
  }
}

bool TavImageView::event(QEvent* event) {
  if (event->type() == QEvent::ParentChange) {
    viewDidMoveToSuperview();
  }
  return QWidget::event(event);
}

void TavImageView::viewDidMoveToSuperview() {
  if (!m_isConstructed) {
    return;
  }
  const bool isPlaced = parentWidget() != nullptr;
  if (isPlaced && !m_isAddNotify) {
    m_isAddNotify = true;
    initNotify();
  } else if (!isPlaced && m_isAddNotify) {
    m_isAddNotify = false;
    deallocNotify();
  }
}

LXButton* TavImageView::addButton(const QRect& frame, int tag, const char* name,
                                  const char* tooltipKey) {
  LXButton* button = NerinAction::AddButton(
      frame, [this](LXButton& sender) { buttonAction(sender); }, {}, *this);
  button->setTag(tag);
  NerinAction::initTooltip(*button, QString::fromLatin1(name), tooltipKey);
  return button;
}

LXButton* TavImageView::addCheckBox(const QRect& frame, int tag, const char* name,
                                    const char* tooltipKey) {
  LXButton* box = addButton(frame, tag, name, tooltipKey);
  box->setIsCheckBox(true);
  return box;
}
