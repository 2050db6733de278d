#include "View/Main/MainSubView2.h"

#include <array>

#include "ArtworkFrames.h"
#include "View/Screen/Frames.h"

namespace {

using frames = Artwork::MainViewSub2;

}  // namespace

MainSubView2::MainSubView2(QWidget* parent)
    : ButtonMapView({frames::screenWidth, frames::screenHeight}, map(), parent) {}

ButtonMapView::Map MainSubView2::map() {
  static const std::array<Control, 6> captions{{
      {"leftBtn1", 150, frameRect(frames::leftBtn1)},
      {"leftBtn2", 151, frameRect(frames::leftBtn2)},
      {"leftBtn3", 152, frameRect(frames::leftBtn3)},
      {"leftBtn4", 153, frameRect(frames::leftBtn4)},
      {"bomBtn1", 154, frameRect(frames::bomBtn1)},
      {"bomBtn2", 155, frameRect(frames::bomBtn2)},
  }};
  static const std::array<Control, 6> markers{{
      {"leftBtnTag1", 157, frameRect(frames::leftBtnTag1)},
      {"leftBtnTag2", 158, frameRect(frames::leftBtnTag2)},
      {"leftBtnTag3", 159, frameRect(frames::leftBtnTag3)},
      {"leftBtnTag4", 160, frameRect(frames::leftBtnTag4)},
      {"bomBtnTag1", 161, frameRect(frames::bomBtnTag1)},
      {"bomBtnTag2", 162, frameRect(frames::bomBtnTag2)},
  }};
  static const auto lines = placesOf<Place>(frames::lines);
  return {"MainViewSub2_Normal.png",
          captions,
          markers,
          frameRect(frames::lineImgView),
          lines,
          150,
          155,
          157,
          162,
          "SideLight",
          {98, 118}};
}
