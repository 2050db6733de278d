#include "View/LocalNotifications.h"

LocalNotifications& LocalNotifications::shared() {
  static LocalNotifications notifications;
  return notifications;
}

void NerinAction::sendFinishWinMsg(int type, const std::optional<QString>& value) {
  LocalNotifications::shared().post(notifyCloseWindow, type, value);
}
