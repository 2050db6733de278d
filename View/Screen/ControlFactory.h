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

// Creates the controls of the screens. Frames are in the parent's coordinates; the parent owns the
// controls.
namespace NerinAction {

// Creates a button that shows its part of the parent's pictures. The parent must already have its
// pictures.
LXButton* AddButton(const QRect& frame, LXButton::Action setAction, LXButton::Action setRightAction,
                    TavImageView& parView);
LXButton* AddCheckBox(const QRect& frame, LXButton::Action setAction,
                      LXButton::Action setRightAction, TavImageView& parView);
// Gives a button its own pictures, named by state. An empty name changes nothing.
void setBtnNoanomaly(LXButton& button, const QString& imageName, const TavImageView& parView);
// `pixels` is the type size.
LXTextField* AddTextField(const QRect& frame, QWidget& parView, int pixels = 12);
// Creates a text that cannot be edited.
LXTextField* AddLabTextField(const QRect& frame, QWidget& parView);
// Its commits call the parent's onNumTextChange.
LXNumberTextField* AddNumTextField(const QRect& frame, TavImageView& parView, int maxNum,
                                   int minNum, int maxLen, bool hasNeg);
LXProgressBar* AddProBar(const QRect& frame, LXProgressBar::Action setAction, TavImageView& parView,
                         LXImage sliderImg, int maxV, int minV);
// A picture of the size of `srcRect`, with that part of the source.
LXImage GetImageFromRect(const LXImage& image, const QRect& srcRect);

// Creates a button that opens a list and shows the choice; its title leaves room for the arrow.
// `nameKey` is the text for screen readers.
LXButton* addListButton(const QRect& frame, TavImageView& parView, int tag, const QString& name,
                        const std::string& nameKey);

// Fills the list; the first call creates it. Later calls keep the delegate and the width. Without a
// node, nothing happens.
void refreshMenuListData(std::unique_ptr<LXMenulist>& menuList, LXMenulistDelegate* delegate,
                         const std::shared_ptr<LXTreeNode>& node, int width);
// Opens the list at the button, or closes it if this button has it open. `currentRow` is the
// current choice; without it, the entry that has the button's title is.
void showMenulistWithBtn(LXButton& button, LXMenulist* menuList,
                         std::optional<int> currentRow = std::nullopt);

// The text in the user's language; the key itself if there is no text. See FullStops.h for its end.
QString tooltipText(const std::string& key);

// Sets the control's object name and its tooltip, which is also the text for screen readers.
void initTooltip(LXButton& button, const QString& name, const std::string& tooltipKey);
// Says the tooltips of all buttons in the widget again, in the language of now.
void refreshTooltips(const QWidget& parent);

}  // namespace NerinAction
