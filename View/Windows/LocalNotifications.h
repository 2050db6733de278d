#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <optional>

// Notifications inside the program.
class LocalNotifications : public QObject {
  Q_OBJECT

 public:
  static LocalNotifications& shared();

  void post(const QString& name) { emit posted(name, {}, {}); }
  void post(const QString& name, int type, const std::optional<QString>& value) {
    emit posted(name, type, value);
  }
  // Runs the action at every post of `name`, until the observer is disconnected or destroyed.
  void observe(const QString& name, const QObject* observer, std::function<void()> action);

 signals:
  void posted(const QString& name, std::optional<int> type, std::optional<QString> value);
};

namespace NerinAction {

inline const QString notifyCloseWindow = QStringLiteral("Notify_CloseWindow_Event");
inline const QString notifyOutPlus = QStringLiteral("Notify_OutPlus");
inline const QString notifyOutPlusEnd = QStringLiteral("Notify_OutPlusEnd");
inline const QString notifyShowTip = QStringLiteral("LXNotifyShowTipNameStr");
inline const QString notifyHideTip = QStringLiteral("LXNotifyHideTipNameStr");

// Tells the owner of a child window how the window ended.
void sendFinishWinMsg(int type, const std::optional<QString>& value);

}  // namespace NerinAction
