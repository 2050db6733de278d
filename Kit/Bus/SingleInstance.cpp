#include "Kit/Bus/SingleInstance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>
#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <utility>

#include "Kit/Bus/SessionBusAddress.h"
#include "Kit/Bus/SingleInstanceObject.h"

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

namespace {

// A bus that answered its greeting answers calls, too; this is for one that freezes after it.
constexpr milliseconds callLimit{1000};
constexpr milliseconds releaseLimit{200};
constexpr uint doNotQueue = 4;
constexpr uint nameExists = 3;

QDBusMessage callToTheBus(const char* method, const QVariantList& arguments = {}) {
  const QString name = QStringLiteral("org.freedesktop.DBus");
  QDBusMessage call = QDBusMessage::createMethodCall(name, QStringLiteral("/org/freedesktop/DBus"),
                                                     name, QString::fromLatin1(method));
  call.setArguments(arguments);
  return call;
}

// The path of an application's object: its name with slashes.
QString pathOf(const std::string& name) {
  return u'/' + QString::fromStdString(name).replace(u'.', u'/');
}

// A connection of its own, so that closing it gives back its names.
class Connection {
 public:
  explicit Connection(const std::function<bool()>& isStopping)
      : m_name(QStringLiteral("NerinOption-name-%1").arg(++count())) {
    const auto address = findAnsweringBus(SessionBusAddress::ofThisSession(), isStopping);
    if (!address) {
      return;
    }
    m_bus.emplace(QDBusConnection::connectToPeer(QString::fromStdString(address->text), m_name));
    if (!m_bus->isConnected() || !call(callToTheBus("Hello"))) {
      m_bus.reset();
    }
  }
  ~Connection() {
    m_bus.reset();
    QDBusConnection::disconnectFromPeer(m_name);
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  bool isOpen() const { return m_bus.has_value(); }
  QDBusConnection& bus() { return *m_bus; }

  // The first value of the answer, or an empty one for an answer without a value; nothing without
  // an answer.
  std::optional<QVariant> call(const QDBusMessage& message, milliseconds limit = callLimit) {
    const QDBusMessage answer = m_bus->call(message, QDBus::Block, static_cast<int>(limit.count()));
    if (answer.type() != QDBusMessage::ReplyMessage) {
      return std::nullopt;
    }
    return answer.arguments().value(0);
  }

 private:
  static std::atomic<int>& count() {
    static std::atomic<int> connections = 0;
    return connections;
  }

  QString m_name;
  std::optional<QDBusConnection> m_bus;
};

}  // namespace

struct SingleInstance::State {
  State(std::string busName, std::string startToken, SingleInstanceObject::Activation activate)
      : name(std::move(busName)), token(std::move(startToken)), object(std::move(activate)) {}

  void ask();
  void answer(bool isSecond);
  bool isStopping() {
    const std::lock_guard lock(mutex);
    return isEnding;
  }

  const std::string name;
  const std::string token;
  const Clock::time_point begin = Clock::now();
  SingleInstanceObject object;
  std::mutex mutex;
  std::condition_variable changed;
  bool isEnding = false;
  std::optional<bool> answered;
};

void SingleInstance::State::answer(bool isSecond) {
  const std::lock_guard lock(mutex);
  answered = isSecond;
  changed.notify_all();
}

void SingleInstance::State::ask() {
  Connection connection([this] { return isStopping(); });
  if (!connection.isOpen()) {
    answer(false);
    return;
  }
  // The object comes first, so that a start right after this one finds it.
  connection.bus().registerObject(pathOf(name), &object, QDBusConnection::ExportAllSlots);
  const QString busName = QString::fromStdString(name);
  const auto owned = connection.call(callToTheBus("RequestName", {busName, doNotQueue}));
  if (!owned || owned->toUInt() != nameExists) {
    answer(false);
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return isEnding; });
    lock.unlock();
    // The bus notices a closed connection only later, and this program may be started anew at once.
    static_cast<void>(connection.call(callToTheBus("ReleaseName", {busName}), releaseLimit));
    return;
  }
  QDBusMessage activate = QDBusMessage::createMethodCall(
      busName, pathOf(name), QStringLiteral("org.freedesktop.Application"),
      QStringLiteral("Activate"));
  QVariantMap platformData;
  if (!token.empty()) {
    platformData[QStringLiteral("activation-token")] = QString::fromStdString(token);
    platformData[QStringLiteral("desktop-startup-id")] = QString::fromStdString(token);
  }
  activate << platformData;
  // The first one may be busy with the mouse, and acts when it is done: nobody waits for that.
  answer(true);
  connection.bus().send(activate);
  // The bus answers in order, so it has received everything sent before this call.
  static_cast<void>(connection.call(callToTheBus("GetId")));
}

SingleInstance::SingleInstance(std::string name, std::string token,
                               std::function<void(const std::string&)> activate)
    : m_state(std::make_shared<State>(std::move(name), std::move(token), std::move(activate))) {
  m_worker = std::thread([state = m_state] { state->ask(); });
}

SingleInstance::~SingleInstance() {
  bool hasAnswered = false;
  {
    const std::lock_guard lock(m_state->mutex);
    m_state->isEnding = true;
    hasAnswered = m_state->answered.has_value();
    m_state->changed.notify_all();
  }
  if (hasAnswered) {
    m_worker.join();
  } else {
    m_worker.detach();
  }
}

bool SingleInstance::isSecond(milliseconds limit) {
  std::unique_lock lock(m_state->mutex);
  m_state->changed.wait_until(lock, m_state->begin + limit,
                              [this] { return m_state->answered.has_value(); });
  return m_state->answered.value_or(false);
}

bool isOnTheSessionBus(const std::string& name, milliseconds limit) {
  const auto end = Clock::now() + limit;
  Connection connection([end] { return Clock::now() >= end; });
  if (!connection.isOpen()) {
    return false;
  }
  const auto left = std::chrono::duration_cast<milliseconds>(end - Clock::now());
  const auto owned = connection.call(callToTheBus("NameHasOwner", {QString::fromStdString(name)}),
                                     std::max(left, milliseconds(1)));
  return owned && owned->toBool();
}
