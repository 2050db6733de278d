#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "Action/Record/Records.h"
#include "Kit/Widgets/LXButton.h"
#include "View/Screen/TavImageView.h"

class LXImageView;
class MapLights;

// A picture of the mouse with a caption button and a marker for each of its buttons. Hovering one
// of a pair draws the line between them. The base of MainSubView1 and MainSubView2.
class ButtonMapView : public TavImageView, public LXButtonDelegate {
  Q_OBJECT

 public:
  // Gets the clicks. Not owned.
  void setDelegate(TavImageView* delegate) { m_delegate = delegate; }

  void buttonAction(LXButton& sender) override;
  // In the order of the tags.
  std::vector<LXButton*> captions() const;
  // The first button with that tag, or null.
  LXButton* getBtnByTag(int tag) const;
  void onMouseEvent(LXButton& button, QEvent& event, int type) override;
  // A caption with the keyboard draws its line and lights its marker while the pointer is on no
  // other pair.
  void onFocusShown(LXButton& button, bool isShown) override;
  // Turns the highlight of the button's pair on or off.
  void setLightSelImage(LXButton& button, bool showTag);
  void setLineImage();
  // Shows the lights in the colors of the profile.
  void showLights(const _Nerin_PROFILE& profile);
  // The hovered pair, from 1; 0 for none. A focused one does not count.
  int currSelectedBtn() const { return m_currSelectedBtn; }
  LXImageView* lineImgView() const { return m_lineImgView; }

 protected:
  // A named rectangle in the drawing.
  struct Place {
    std::string_view name;
    QRect frame;
  };
  struct Control {
    std::string_view name;
    int tag;
    QRect frame;
  };
  struct Map {
    const char* picture;
    std::span<const Control> captions;
    std::span<const Control> markers;
    QRect lineFrame;
    std::span<const Place> lines;  // one for each pair
    int firstCaptionTag;
    int lastCaptionTag;
    int firstMarkerTag;
    int lastMarkerTag;
    const char* lights;  // the stem of their pictures
    QPoint lightsPlace;
  };

  ButtonMapView(const QSize& frame, Map map, QWidget* parent);

  void initData() override;
  void initControls() override;
  // The pair whose marker is that of a caption's pair.
  virtual int markerPairOf(int captionPair) const { return captionPair; }
  // Turns the captions of a marker on or off.
  virtual void setCaptionsLit(int pair, bool isLit);

 private:
  LXButton* addButton(const Control& control);
  // The line of this pair is shown.
  int shownPair() const { return m_currSelectedBtn != 0 ? m_currSelectedBtn : m_focusedBtn; }
  void setMarkerLit(int captionPair, bool isLit);

  Map m_map;
  TavImageView* m_delegate = nullptr;
  LXImageView* m_lineImgView = nullptr;
  MapLights* m_lights = nullptr;
  std::vector<LXImage> m_lineImages;  // one for each pair
  int m_currSelectedBtn = 0;
  int m_focusedBtn = 0;  // the pair whose caption shows the focus, from 1; 0 for none
};
