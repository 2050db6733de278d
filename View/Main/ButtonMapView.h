#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "Kit/Widgets/LXButton.h"
#include "View/Screen/TavImageView.h"

class LXImageView;

// A picture of the mouse with a caption button and a marker for each of its buttons. Hovering one
// of a pair draws the line between them. What MainSubView1 and MainSubView2 share.
class ButtonMapView : public TavImageView, public LXButtonDelegate {
  Q_OBJECT

 public:
  // Where clicks are sent. Not owned.
  void setDelegate(TavImageView* delegate) { m_delegate = delegate; }

  void buttonAction(LXButton& sender) override;
  // The first button of that tag, or null.
  LXButton* getBtnByTag(int tag) const;
  void onMouseEvent(LXButton& button, QEvent& event, int type) override;
  // Shows or ends the highlight of the pair that the button belongs to.
  void setLightSelImage(LXButton& button, bool showTag);
  void setLineImage();
  // The hovered pair, from 1; 0 for none.
  int currSelectedBtn() const { return m_currSelectedBtn; }
  LXImageView* lineImgView() const { return m_lineImgView; }

 protected:
  // A rectangle in the drawing.
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
  };

  ButtonMapView(const QSize& frame, Map map, QWidget* parent);

  void initData() override;
  void initControls() override;
  // The captions that a marker lights.
  virtual void setCaptionsLit(int pair, bool isLit);

 private:
  LXButton* addButton(const Control& control);

  Map m_map;
  TavImageView* m_delegate = nullptr;
  LXImageView* m_lineImgView = nullptr;
  std::vector<LXImage> m_lineImages;  // one for each pair
  int m_currSelectedBtn = 0;
};
