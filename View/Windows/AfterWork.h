#pragma once

#include <QObject>
#include <QTimer>
#include <functional>

// Calls back a moment after the program did something, so that a program that does nothing does not
// wake up either. Steady work is followed by one call a moment.
class AfterWork : public QObject {
 public:
  AfterWork(int milliseconds, std::function<void()> act, QObject* parent);

 private:
  QTimer m_timer;
  // The event loop was woken by this object and by nobody else.
  bool m_isOwnWake = false;
};
