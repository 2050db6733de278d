#pragma once

#include <QRect>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "Kit/Core/LXTreeNode.h"
#include "Kit/Widgets/LXButton.h"
#include "Kit/Widgets/LXNumberTextField.h"
#include "Kit/Widgets/LXProgressBar.h"
#include "Kit/Widgets/LXTextField.h"

class LXMenulist;
class LXMenulistDelegate;
class TavImageView;

// Makes the controls of the screens. Frames are in the parent's coordinates; the parent owns what
// is made for it.
namespace NerinAction {

// A button that shows the slices of the parent's pictures under it, as they are now: give the
// parent its pictures first.
LXButton* AddButton(const QRect& frame, LXButton::Action setAction, LXButton::Action setRightAction,
                    TavImageView& parView);
LXButton* AddCheckBox(const QRect& frame, LXButton::Action setAction,
                      LXButton::Action setRightAction, TavImageView& parView);
// Gives a button pictures of its own, named after their state. An empty name changes nothing.
void setBtnNoanomaly(LXButton& button, const QString& imageName, const TavImageView& parView);
// In type of this many pixels.
LXTextField* AddTextField(const QRect& frame, QWidget& parView, int pixels = 12);
// A text that cannot be edited.
LXTextField* AddLabTextField(const QRect& frame, QWidget& parView);
// Its commits reach the parent's onNumTextChange.
LXNumberTextField* AddNumTextField(const QRect& frame, TavImageView& parView, int maxNum,
                                   int minNum, int maxLen, bool hasNeg);
LXProgressBar* AddProBar(const QRect& frame, LXProgressBar::Action setAction, TavImageView& parView,
                         LXImage sliderImg, int maxV, int minV);
// A picture of the rectangle's size with that part of the source.
LXImage GetImageFromRect(const LXImage& image, const QRect& srcRect);

// A button of the view's own dispatch that opens a list and shows what is chosen in it: its title
// leaves room for the arrow. `nameKey` is the text by which it is called, for who does not see it.
LXButton* addListButton(const QRect& frame, TavImageView& parView, int tag, const QString& name,
                        const std::string& nameKey);

// Fills the list, and makes it at the first call; later calls change neither delegate nor width.
// Without a node nothing happens.
void refreshMenuListData(std::unique_ptr<LXMenulist>& menuList, LXMenulistDelegate* delegate,
                         const std::shared_ptr<LXTreeNode>& node, int width);
// Opens the list where the button is.
void showMenulistWithBtn(LXButton& button, LXMenulist* menuList);

// The text in the user's language; the key itself where there is none.
QString tooltipText(const std::string& key);

// Gives the control its name for the program and its tooltip, which is also what it is called
// where nobody sees it.
void initTooltip(LXButton& button, const QString& name, const std::string& tooltipKey);

}  // namespace NerinAction
