#include "View/Main/SlotReasonLine.h"

#include "Kit/Core/LXPlatform.h"
#include "View/Screen/ControlFactory.h"
#include "View/Windows/StatusLine.h"

SlotReasonLine::SlotReasonLine(StatusLine& line, QObject* parent) : QObject(parent), m_line(line) {
  auto& center = *LXPlatform::current().notificationCenter;
  // Arrives on any thread.
  center.addObserver(slotreason::notification,
                     [this](const std::string& object, const LXUserInfo& userInfo) {
                       const auto reason = slotreason::reasonOf(object, userInfo);
                       if (!reason) {
                         return;
                       }
                       QMetaObject::invokeMethod(
                           this,
                           [this, reason] {
                             m_reason = reason;
                             showText();
                           },
                           Qt::QueuedConnection);
                     });
  center.postNotificationName(slotreason::question, "", std::nullopt);
}

SlotReasonLine::~SlotReasonLine() {
  LXPlatform::current().notificationCenter->removeObserver(slotreason::notification);
}

void SlotReasonLine::showText() {
  const bool isShown = m_reason && slotreason::concernsProgram(*m_reason);
  m_line.setStanding(isShown ? QString::fromStdString(slotreason::sentenceOf(
                                   *m_reason,
                                   [](const std::string& name) {
                                     return NerinAction::tooltipText(name).toStdString();
                                   }))
                             : QString());
}
