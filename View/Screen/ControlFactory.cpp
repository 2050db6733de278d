#include "View/Screen/ControlFactory.h"

#include <QPointer>
#include <utility>

#include "Action/Texts/TooltipManager.h"
#include "Kit/Widgets/LXMenulist.h"
#include "View/Screen/FullStops.h"
#include "View/Screen/Pictures.h"
#include "View/Screen/TavImageView.h"

namespace {

// The property of a button with the key of its tooltip.
constexpr const char* textKey = "textKey";

constexpr qreal captionSize = 12;
constexpr int menuFontSize = 12;
constexpr int listTitleLeftPad = 12;
constexpr int listTitleRightPad = 32;

QFont arial(int pixels) {
  QFont font(QStringLiteral("Arial"));
  font.setPixelSize(pixels);
  return font;
}

// Near-white text on dark gray, the selected entry on dark red, inside a red border.
const char* const menuStyle =
    "QListWidget { color: white; background: #393939; border: 1px solid #7D0608; outline: 0; }"
    "QListWidget::item { border: 0; }"
    "QListWidget::item:selected { color: white; background: #7D0608; }"
    "#filterLbl { color: white; background: #22252C; border-bottom: 1px solid #7D0608;"
    "  padding: 0 12px; }"
    "QScrollBar:vertical { background: #393939; width: 8px; }"
    "QScrollBar::handle:vertical { background: #9AA3B2; border-radius: 4px; min-height: 24px; }"
    "QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0; }";

}  // namespace

LXButton* NerinAction::AddButton(const QRect& frame, LXButton::Action setAction,
                                 LXButton::Action setRightAction, TavImageView& parView) {
  auto* button = new LXButton(&parView);
  button->setGeometry(frame);
  button->setImages({GetImageFromRect(parView.bgImage(), frame),
                     GetImageFromRect(parView.overImage(), frame),
                     GetImageFromRect(parView.downImage(), frame),
                     GetImageFromRect(parView.disableImage(), frame),
                     // Only buttons that can be selected or checked show this picture.
                     parView.activeImage().slice(frame, false)});
  button->setBtnFont(pictures::font(captionSize, QFont::Normal));
  button->setAction(std::move(setAction));
  button->setRightAction(std::move(setRightAction));
  return button;
}

LXButton* NerinAction::AddCheckBox(const QRect& frame, LXButton::Action setAction,
                                   LXButton::Action setRightAction, TavImageView& parView) {
  LXButton* button = AddButton(frame, std::move(setAction), std::move(setRightAction), parView);
  button->setIsCheckBox(true);
  return button;
}

void NerinAction::setBtnNoanomaly(LXButton& button, const QString& imageName,
                                  const TavImageView& parView) {
  if (imageName.isEmpty()) {
    return;
  }
  button.setIsNoanomaly(true);
  const QString extension = QStringLiteral("png");
  const auto image = [&](const char* state) {
    return parView.getImageByName(imageName, QString::fromLatin1(state), extension);
  };
  button.setImages({image("Normal"), image("Over"), image("Down"), image("Disable"), {}});
}

LXTextField* NerinAction::AddTextField(const QRect& frame, QWidget& parView, int pixels) {
  auto* field = new LXTextField(&parView);
  field->setGeometry(frame);
  field->setFont(arial(pixels));
  return field;
}

LXTextField* NerinAction::AddLabTextField(const QRect& frame, QWidget& parView) {
  LXTextField* field = AddTextField(frame, parView);
  field->setReadOnly(true);
  field->setFocusPolicy(Qt::NoFocus);
  field->setAttribute(Qt::WA_TransparentForMouseEvents);
  return field;
}

LXNumberTextField* NerinAction::AddNumTextField(const QRect& frame, TavImageView& parView,
                                                int maxNum, int minNum, int maxLen, bool hasNeg) {
  auto* field = new LXNumberTextField(&parView);
  field->setGeometry(frame);
  field->setMaxNum(maxNum);
  field->setMinNum(minNum);
  field->setMaxLenth(maxLen);
  field->setHasNegative(hasNeg);
  // A field also loses the focus while its view is destroyed; then there is no view to call.
  field->setAction([view = QPointer<TavImageView>(&parView), field](LXTextField&) {
    if (view) {
      view->onNumTextChange(*field);
    }
  });
  field->resetFormat();
  return field;
}

LXProgressBar* NerinAction::AddProBar(const QRect& frame, LXProgressBar::Action setAction,
                                      TavImageView& parView, LXImage sliderImg, int maxV,
                                      int minV) {
  auto* bar = new LXProgressBar(&parView);
  bar->setGeometry(frame);
  bar->setBarStyle(1);
  bar->setBackgroundImage(GetImageFromRect(parView.bgImage(), frame));
  bar->setOverImage(GetImageFromRect(parView.bgImage(), frame));
  bar->setIndicateImage(std::move(sliderImg));
  bar->setMaxValue(maxV);
  bar->setMinValue(minV);
  bar->setChangeAction(std::move(setAction));
  return bar;
}

LXImage NerinAction::GetImageFromRect(const LXImage& image, const QRect& srcRect) {
  return image.slice(srcRect);
}

void NerinAction::refreshMenuListData(std::unique_ptr<LXMenulist>& menuList,
                                      LXMenulistDelegate* delegate,
                                      const std::shared_ptr<LXTreeNode>& node, int width) {
  if (!node) {
    return;
  }
  if (menuList) {
    menuList->setMenuNode(node);
    return;
  }
  menuList = std::make_unique<LXMenulist>(node, menuFontSize);
  menuList->setStyleSheet(QString::fromLatin1(menuStyle));
  menuList->setDelegate(delegate);
  menuList->setMenuWidth(width);
  menuList->setEmptyText(tooltipText("There is nothing to choose from yet."));
  menuList->setNoMatchText(tooltipText("No entry matches."));
}

void NerinAction::showMenulistWithBtn(LXButton& button, LXMenulist* menuList,
                                      std::optional<int> currentRow) {
  if (menuList == nullptr) {
    return;
  }
  if (menuList->isShowMenu() && menuList->opener() == &button) {
    menuList->hideMenulist();
    return;
  }
  menuList->setOpener(&button);
  button.setOpenedList(menuList);
  // Below the button, so that the current choice stays visible.
  menuList->showMenulist(button.mapToGlobal(QPoint(0, button.height())),
                         currentRow.value_or(menuList->rowOf(button.title())));
}

LXButton* NerinAction::addListButton(const QRect& frame, TavImageView& parView, int tag,
                                     const QString& name, const std::string& nameKey) {
  LXButton* button = AddButton(
      frame, [&parView](LXButton& sender) { parView.buttonAction(sender); }, {}, parView);
  button->setTag(tag);
  initTooltip(*button, name, "NoTooltip");
  button->setAccessibleName(tooltipText(nameKey));
  button->setBtnTextAlignment(Qt::AlignLeft);
  button->setLeftPad(listTitleLeftPad);
  button->setRightPad(listTitleRightPad);
  return button;
}

QString NerinAction::tooltipText(const std::string& key) {
  return fullstops::completed(
      QString::fromStdString(TooltipManager::shareTooltipManager().getTooltip(key).value_or(key)));
}

void NerinAction::initTooltip(LXButton& button, const QString& name,
                              const std::string& tooltipKey) {
  button.setObjectName(name);
  button.setProperty(textKey, QString::fromStdString(tooltipKey));
  button.setToolTip(tooltipText(tooltipKey));
}

void NerinAction::refreshTooltips(const QWidget& parent) {
  for (LXButton* button : parent.findChildren<LXButton*>()) {
    const QVariant key = button->property(textKey);
    if (key.isValid()) {
      button->setToolTip(tooltipText(key.toString().toStdString()));
    }
  }
}
