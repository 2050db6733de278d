#include "View/Windows/LocalNotifications.h"

#include <utility>

LocalNotifications& LocalNotifications::shared() {
  static LocalNotifications notifications;
  return notifications;
}

void LocalNotifications::observe(const QString& name, const QObject* observer,
                                 std::function<void()> action) {
  connect(this, &LocalNotifications::posted, observer,
          [name, action = std::move(action)](const QString& postedName) {
            if (postedName == name) {
              action();
            }
          });
}

void NerinAction::sendFinishWinMsg(int type, const std::optional<QString>& value) {
  LocalNotifications::shared().post(notifyCloseWindow, type, value);
}
