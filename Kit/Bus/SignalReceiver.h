#pragma once

#include <QDBusMessage>
#include <QObject>
#include <functional>
#include <utility>

// Passes the signals of a connection to a function, on the thread that the receiver lives in.
class SignalReceiver final : public QObject {
  Q_OBJECT

 public:
  explicit SignalReceiver(std::function<void(const QDBusMessage&)> handler)
      : m_handler(std::move(handler)) {}

 public slots:
  void receive(const QDBusMessage& message) { m_handler(message); }

 private:
  std::function<void(const QDBusMessage&)> m_handler;
};
