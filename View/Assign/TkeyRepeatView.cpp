#include "View/Assign/TkeyRepeatView.h"

#include "ArtworkFrames.h"
#include "Kit/Widgets/LXButton.h"
#include "Kit/Widgets/LXNumberTextField.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Frames.h"
#include "View/Windows/LocalNotifications.h"

namespace {

using frames = Artwork::TkeyRepeatView;

constexpr int countDigits = 4;

}  // namespace

TkeyRepeatView::TkeyRepeatView() : ChildView({frames::screenWidth, frames::screenHeight}) {}

void TkeyRepeatView::initData() {
  setImageByName(QStringLiteral("TkeyRepeatView_Normal.png"));
}

void TkeyRepeatView::initControls() {
  m_repeatEdt = NerinAction::AddNumTextField(frameRect(frames::repeatEdt), *this,
                                             static_cast<int>(maximumCount), 0, countDigits, false);
  m_repeatEdt->setObjectName(QStringLiteral("repeatEdt"));
  m_repeatEdt->setAccessibleName(NerinAction::tooltipText("Repeat count"));
  m_repeatEdt->setAlignment(Qt::AlignCenter);
  m_repeatEdt->setStep(1);
  connect(m_repeatEdt, &QLineEdit::returnPressed, this, &TkeyRepeatView::confirm);
  addButton(frameRect(frames::okBtn), TagOk, "okBtn", "YES");
  addButton(frameRect(frames::cancelBtn), TagCancel, "cancelBtn", "NO");
  setRepeatCount(m_repeatCount);
}

void TkeyRepeatView::initNotify() {
  LocalNotifications::shared().observe(NerinAction::notifyOutPlus, this, [this] { endWindow(0); });
}

void TkeyRepeatView::deallocNotify() {
  disconnect(&LocalNotifications::shared(), nullptr, this, nullptr);
}

void TkeyRepeatView::setRepeatCount(int repeatCount) {
  m_repeatCount = repeatCount;
  if (m_repeatEdt != nullptr) {
    m_repeatEdt->setValue(repeatCount);
  }
}

void TkeyRepeatView::makeTxtFirstRes() {
  m_repeatEdt->setFocus(Qt::OtherFocusReason);
  m_repeatEdt->selectAll();
}

void TkeyRepeatView::confirm() {
  m_repeatCount = m_repeatEdt->value();
  endWindow(1);
}

void TkeyRepeatView::buttonAction(LXButton& sender) {
  if (sender.tag() == TagOk) {
    confirm();
  } else if (sender.tag() == TagCancel) {
    endWindow(0);
  }
}
