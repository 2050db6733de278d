#include "View/Main/ButtonMapView.h"

#include "Kit/Widgets/LXImageView.h"
#include "View/Main/MapLights.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Pictures.h"

namespace {

constexpr int captionPad = 8;

QString text(std::string_view view) {
  return QString::fromUtf8(view.data(), static_cast<qsizetype>(view.size()));
}

}  // namespace

ButtonMapView::ButtonMapView(const QSize& frame, Map map, QWidget* parent)
    : TavImageView(frame, parent), m_map(map) {}

void ButtonMapView::initData() {
  setBgColor(Qt::black);
  setImageByName(QString::fromLatin1(m_map.picture));
}

void ButtonMapView::initControls() {
  m_lineImgView = new LXImageView(this);
  m_lineImgView->setGeometry(m_map.lineFrame);
  m_lineImgView->setObjectName(QStringLiteral("lineImgView"));
  // The pictures are as large as the map, so keep and repaint only the part with the line.
  for (const Place& line : m_map.lines) {
    m_lineImages.push_back(
        pictures::load(text(line.name) + QStringLiteral(".png")).slice(line.frame));
  }
  for (const Control& control : m_map.markers) {
    LXButton* marker = addButton(control);
    // A marker only points, so it takes no focus and has no text for screen readers.
    marker->setFocusPolicy(Qt::NoFocus);
  }
  for (const Control& control : m_map.captions) {
    LXButton* caption = addButton(control);
    caption->setBtnColor(Qt::white);
    caption->setLeftPad(captionPad);
    caption->setRightPad(captionPad);
  }
  // Over the markers, which show their own part of the drawing.
  m_lights = new MapLights(QString::fromLatin1(m_map.lights), m_map.lightsPlace, this);
  m_lights->setGeometry(0, 0, width(), height());
}

void ButtonMapView::showLights(const _Nerin_PROFILE& profile) {
  m_lights->show(profile);
}

LXButton* ButtonMapView::addButton(const Control& control) {
  LXButton* button = NerinAction::AddButton(
      control.frame, [this](LXButton& sender) { buttonAction(sender); }, {}, *this);
  button->setObjectName(text(control.name));
  button->setTag(control.tag);
  button->setLXBtnDelege(this);
  return button;
}

void ButtonMapView::buttonAction(LXButton& sender) {
  if (m_delegate != nullptr) {
    m_delegate->buttonAction(sender);
  }
}

LXButton* ButtonMapView::getBtnByTag(int tag) const {
  for (LXButton* button : findChildren<LXButton*>(Qt::FindDirectChildrenOnly)) {
    if (button->tag() == tag) {
      return button;
    }
  }
  return nullptr;
}

std::vector<LXButton*> ButtonMapView::captions() const {
  std::vector<LXButton*> all;
  for (int tag = m_map.firstCaptionTag; tag <= m_map.lastCaptionTag; ++tag) {
    if (LXButton* caption = getBtnByTag(tag)) {
      all.push_back(caption);
    }
  }
  return all;
}

void ButtonMapView::onMouseEvent(LXButton& button, QEvent& /*event*/, int type) {
  if (type == Entered) {
    setLightSelImage(button, true);
  } else if (type == Left) {
    setLightSelImage(button, false);
  }
}

void ButtonMapView::onFocusShown(LXButton& button, bool isShown) {
  const int tag = button.tag();
  if (tag < m_map.firstCaptionTag || tag > m_map.lastCaptionTag) {
    return;
  }
  const int pair = tag - m_map.firstCaptionTag + 1;
  setMarkerLit(pair, isShown);
  m_focusedBtn = isShown ? pair : 0;
  setLineImage();
}

void ButtonMapView::setMarkerLit(int captionPair, bool isLit) {
  if (LXButton* marker = getBtnByTag(m_map.firstMarkerTag + markerPairOf(captionPair) - 1)) {
    isLit ? marker->setOverImagePro() : marker->setExitImagePro();
  }
}

void ButtonMapView::setLightSelImage(LXButton& button, bool showTag) {
  const int tag = button.tag();
  m_currSelectedBtn = 0;
  if (tag >= m_map.firstCaptionTag && tag <= m_map.lastCaptionTag) {
    m_currSelectedBtn = tag - m_map.firstCaptionTag + 1;
  } else if (tag >= m_map.firstMarkerTag && tag <= m_map.lastMarkerTag) {
    m_currSelectedBtn = tag - m_map.firstMarkerTag + 1;
    setCaptionsLit(m_currSelectedBtn, showTag);
  }
  if (!showTag) {
    m_currSelectedBtn = 0;
  }
  setLineImage();
}

void ButtonMapView::setCaptionsLit(int pair, bool isLit) {
  if (LXButton* caption = getBtnByTag(m_map.firstCaptionTag + pair - 1)) {
    isLit ? caption->setOverImagePro() : caption->setExitImagePro();
  }
}

void ButtonMapView::setLineImage() {
  const int shown = shownPair();
  if (shown < 1 || static_cast<std::size_t>(shown) > m_map.lines.size()) {
    m_lineImgView->setImage({});
    return;
  }
  const auto pair = static_cast<std::size_t>(shown - 1);
  m_lineImgView->setImage(m_lineImages[pair],
                          m_map.lines[pair].frame.topLeft() - m_lineImgView->pos());
}
