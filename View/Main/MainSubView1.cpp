#include "View/Main/MainSubView1.h"

#include <array>

#include "ArtworkFrames.h"
#include "View/Screen/Frames.h"

namespace {

using frames = Artwork::MainViewSub1;

// The wheel has one marker and three captions.
constexpr int wheelPair = 11;
constexpr int firstWheelCaption = 2;
constexpr int lastWheelCaption = 4;

}  // namespace

MainSubView1::MainSubView1(QWidget* parent)
    : ButtonMapView({frames::screenWidth, frames::screenHeight}, map(), parent) {}

ButtonMapView::Map MainSubView1::map() {
  static const std::array<Control, 10> captions{{
      {"leftClickBtn", 140, frameRect(frames::leftClickBtn)},
      {"WhellUpBtn", 141, frameRect(frames::WhellUpBtn)},
      {"WhellBtn", 142, frameRect(frames::WhellBtn)},
      {"WhellDownBtn", 143, frameRect(frames::WhellDownBtn)},
      {"rightBtn", 144, frameRect(frames::rightBtn)},
      {"rightBtn1", 145, frameRect(frames::rightBtn1)},
      {"rightBtn2", 146, frameRect(frames::rightBtn2)},
      {"rightBtn3", 147, frameRect(frames::rightBtn3)},
      {"midleBtn1", 148, frameRect(frames::midleBtn1)},
      {"midleBtn2", 149, frameRect(frames::midleBtn2)},
  }};
  static const std::array<Control, 8> markers{{
      {"leftClickTagBtn", 170, frameRect(frames::leftClickTagBtn)},
      {"rightTagBtn", 174, frameRect(frames::rightTagBtn)},
      {"rightBtnTag1", 175, frameRect(frames::rightBtnTag1)},
      {"rightBtnTag2", 176, frameRect(frames::rightBtnTag2)},
      {"rightBtnTag3", 177, frameRect(frames::rightBtnTag3)},
      {"midleBtnTag1", 178, frameRect(frames::midleBtnTag1)},
      {"midleBtnTag2", 179, frameRect(frames::midleBtnTag2)},
      {"WhellTagBtn", 180, frameRect(frames::WhellTagBtn)},
  }};
  static const auto lines = placesOf<Place>(frames::lines);
  return {"MainViewSub1_Normal.png",
          captions,
          markers,
          frameRect(frames::lineImgView),
          lines,
          140,
          149,
          170,
          180,
          "TopLight",
          {238, 18}};
}

int MainSubView1::markerPairOf(int captionPair) const {
  return captionPair >= firstWheelCaption && captionPair <= lastWheelCaption ? wheelPair
                                                                             : captionPair;
}

void MainSubView1::setCaptionsLit(int pair, bool isLit) {
  if (pair != wheelPair) {
    ButtonMapView::setCaptionsLit(pair, isLit);
    return;
  }
  for (int caption = firstWheelCaption; caption <= lastWheelCaption; ++caption) {
    ButtonMapView::setCaptionsLit(caption, isLit);
  }
}
