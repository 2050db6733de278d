#include "Kit/Bus/SessionBusNotificationCenter.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QThread>
#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <limits>
#include <map>
#include <mutex>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include "Kit/Bus/NotificationSignal.h"
#include "Kit/Bus/SessionBusAddress.h"
#include "Kit/Bus/SignalReceiver.h"
#include "Kit/Core/LXLogger.h"

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

namespace {

constexpr milliseconds maximumSlice{20};
// How long the destructor waits for the worker after the flush.
constexpr milliseconds endLimit{200};
// How long a worker that is to stop waits for an answer that is on its way: Qt loses the memory of
// a call whose connection goes first.
constexpr milliseconds answerLimit{100};

// A request to receive the notifications of other processes.
struct Listen {};

using Order = std::variant<NotificationSignal, Listen>;

QDBusMessage callToTheBus(const char* method) {
  const QString name = QStringLiteral("org.freedesktop.DBus");
  return QDBusMessage::createMethodCall(name, QStringLiteral("/org/freedesktop/DBus"), name,
                                        QString::fromLatin1(method));
}

QString nextConnectionName() {
  static std::atomic<int> count = 0;
  return QStringLiteral("NerinOption-%1").arg(++count);
}

}  // namespace

struct SessionBusNotificationCenter::State {
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<Order> orders;   // not yet taken by the worker
  std::uint64_t given = 0;    // all orders so far
  std::uint64_t settled = 0;  // how many of them the bus has confirmed
  bool isListening = false;
  bool isLost = false;  // there is no bus, or it went away
  bool isStopping = false;
  bool isEnded = false;

  // Recursive, because an observer may add and remove observers.
  std::recursive_mutex observerMutex;
  std::map<std::string, Observer> observers;

  void give(Order order) {
    const std::lock_guard lock(mutex);
    ++given;
    if (!isLost) {
      orders.push_back(std::move(order));
      changed.notify_all();
    }
  }

  bool stopping() {
    const std::lock_guard lock(mutex);
    return isStopping;
  }

  // Waits for orders and takes them all; empty when it is time to stop.
  std::deque<Order> take() {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return isStopping || !orders.empty(); });
    return isStopping ? std::deque<Order>() : std::exchange(orders, {});
  }

  void settle(std::size_t count) {
    const std::lock_guard lock(mutex);
    settled += count;
    changed.notify_all();
  }

  void lose() {
    const std::lock_guard lock(mutex);
    isLost = true;
    orders.clear();
    changed.notify_all();
  }

  void end() {
    const std::lock_guard lock(mutex);
    isEnded = true;
    changed.notify_all();
  }

  void notify(const QDBusMessage& message) {
    const auto signal = NotificationSignal::fromMessage(message);
    if (!signal) {
      return;
    }
    const std::lock_guard lock(observerMutex);
    const auto found = observers.find(signal->name);
    if (found != observers.end()) {
      const Observer observer = found->second;
      observer(signal->object, signal->userInfo.value_or(LXUserInfo()));
    }
  }
};

// The thread of a notification center. Every wait for the bus also checks whether to stop.
//
// The connection is a plain one, on which the greeting of the bus is an ordinary call. For a real
// bus connection the library waits for the greeting in a thread that keeps the process from ending.
class SessionBusNotificationCenter::Worker {
 public:
  explicit Worker(State& state) : m_state(state), m_name(nextConnectionName()) {}

  ~Worker() {
    if (m_reader.isRunning()) {
      m_reader.quit();
      m_reader.wait();
    }
    m_receiver.reset();
    QDBusConnection::disconnectFromPeer(m_name);
  }

  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  void run(const std::vector<SessionBusAddress>& addresses) {
    const auto address = findAnsweringBus(addresses, [this] { return m_state.stopping(); });
    if (!address) {
      return;
    }
    QDBusConnection connection =
        QDBusConnection::connectToPeer(QString::fromStdString(address->text), m_name);
    if (!connection.isConnected() || !isAnswered(connection, "Hello")) {
      return;
    }
    for (auto orders = m_state.take(); !orders.empty(); orders = m_state.take()) {
      for (const Order& order : orders) {
        std::visit([&](const auto& content) { obey(connection, content); }, order);
      }
      // The bus answers in order, so it has received everything sent before this call.
      if (!isAnswered(connection, "GetId")) {
        return;
      }
      m_state.settle(orders.size());
    }
  }

 private:
  State& m_state;
  QString m_name;
  std::unique_ptr<QCoreApplication> m_application;
  QThread m_reader;
  std::unique_ptr<SignalReceiver> m_receiver;

  bool isAnswered(const QDBusConnection& connection, const char* method) {
    const QDBusPendingCall call =
        connection.asyncCall(callToTheBus(method), std::numeric_limits<int>::max());
    std::unique_lock lock(m_state.mutex);
    std::optional<Clock::time_point> lastMoment;
    for (milliseconds slice(1); !call.isFinished(); slice = std::min(2 * slice, maximumSlice)) {
      if (m_state.isStopping) {
        lastMoment = lastMoment.value_or(Clock::now() + answerLimit);
        if (Clock::now() >= *lastMoment) {
          return false;
        }
        m_state.changed.wait_for(lock, slice);
      } else {
        m_state.changed.wait_for(lock, slice, [this] { return m_state.isStopping; });
      }
    }
    return !call.isError();
  }

  static void obey(const QDBusConnection& connection, const NotificationSignal& signal) {
    connection.send(signal.toMessage());
  }

  void obey(QDBusConnection& connection, const Listen&) {
    if (QCoreApplication::instance() == nullptr) {
      // Without an application object no thread receives events.
      static int argumentCount = 1;
      static char programName[] = "NerinOption";
      static char* arguments[] = {programName, nullptr};
      m_application = std::make_unique<QCoreApplication>(argumentCount, arguments);
    }
    m_receiver = std::make_unique<SignalReceiver>(
        [this](const QDBusMessage& message) { m_state.notify(message); });
    m_receiver->moveToThread(&m_reader);
    m_reader.start();
    const QString path = QString::fromLatin1(NotificationSignal::path);
    const QString interface = QString::fromLatin1(NotificationSignal::interface);
    connection.connect(QString(), path, interface, QString(), m_receiver.get(),
                       SLOT(receive(QDBusMessage)));
    QDBusMessage match = callToTheBus("AddMatch");
    match << QStringLiteral("type='signal',path='%1',interface='%2'").arg(path, interface);
    connection.send(match);
  }
};

SessionBusNotificationCenter::SessionBusNotificationCenter() : m_state(std::make_shared<State>()) {
  m_worker = std::thread([state = m_state, addresses = SessionBusAddress::ofThisSession()] {
    Worker(*state).run(addresses);
    state->lose();
    state->end();
  });
}

SessionBusNotificationCenter::~SessionBusNotificationCenter() {
  flush();
  {
    const std::lock_guard lock(m_state->observerMutex);
    m_state->observers.clear();
  }
  std::unique_lock lock(m_state->mutex);
  m_state->isStopping = true;
  m_state->changed.notify_all();
  const bool isEnded = m_state->changed.wait_for(lock, endLimit, [&] { return m_state->isEnded; });
  lock.unlock();
  if (isEnded) {
    m_worker.join();
  } else {
    m_worker.detach();
  }
}

void SessionBusNotificationCenter::postNotificationName(const std::string& name,
                                                        const std::string& object,
                                                        const std::optional<LXUserInfo>& userInfo) {
  if (!NotificationSignal::isValidName(name)) {
    LXLogger::warning("not a valid name of a notification: \"" + name + "\"");
    return;
  }
  m_state->give(NotificationSignal{name, object, userInfo});
}

void SessionBusNotificationCenter::addObserver(const std::string& name, Observer observer) {
  {
    const std::lock_guard lock(m_state->observerMutex);
    m_state->observers[name] = std::move(observer);
  }
  {
    const std::lock_guard lock(m_state->mutex);
    if (std::exchange(m_state->isListening, true)) {
      return;
    }
  }
  m_state->give(Listen{});
}

void SessionBusNotificationCenter::removeObserver(const std::string& name) {
  const std::lock_guard lock(m_state->observerMutex);
  m_state->observers.erase(name);
}

bool SessionBusNotificationCenter::flush(milliseconds limit) {
  std::unique_lock lock(m_state->mutex);
  const std::uint64_t wanted = m_state->given;
  const auto isSettled = [&] { return m_state->settled >= wanted; };
  m_state->changed.wait_for(lock, limit, [&] { return isSettled() || m_state->isLost; });
  return isSettled();
}
