#include "View/Main/SlotReasonLine.h"

#include "Kit/Core/LXPlatform.h"
#include "View/Screen/ControlFactory.h"
#include "View/Windows/StatusLine.h"

namespace {

void askService() {
  LXPlatform::current().notificationCenter->postNotificationName(slotreason::question, "",
                                                                 std::nullopt);
}

}  // namespace

SlotReasonLine::SlotReasonLine(StatusLine& line, QObject* parent) : QObject(parent), m_line(line) {
  const LXPlatform& platform = LXPlatform::current();
  // Arrives on any thread.
  platform.notificationCenter->addObserver(
      slotreason::notification, [this](const std::string& object, const LXUserInfo& userInfo) {
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
  m_serviceWatch = platform.watchService([this](bool isThere) { follow(isThere); });
  askService();
}

SlotReasonLine::~SlotReasonLine() {
  LXPlatform::current().notificationCenter->removeObserver(slotreason::notification);
}

void SlotReasonLine::follow(bool isServiceThere) {
  m_reason.reset();
  showText();
  if (isServiceThere) {
    // What it tells of itself may have arrived before the news that it is there.
    askService();
  }
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
