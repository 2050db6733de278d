#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Kit/Core/LXNotificationCenter.h"

struct sd_bus_message;
struct sd_event;

// A connection to a message bus on the caller's event loop: no thread, no waiting, no wakeup while
// nothing happens. It carries the broadcast notifications and a program's calls to the desktop.
//
// Everything runs on the thread of the event loop. What is posted before the bus has answered is
// sent once it has.
class BusConnection final : public LXNotificationCenter {
 public:
  enum class Kind { Session, System };
  // Where a call goes.
  struct Target {
    const char* service = nullptr;
    const char* path = nullptr;
    const char* interface = nullptr;
    const char* member = nullptr;
  };
  using Fill = std::function<void(sd_bus_message* call)>;
  // Null when the call failed or the service does not exist. Valid only during the call.
  using Answer = std::function<void(sd_bus_message* answer)>;
  // A text that other programs can read.
  using Property = std::pair<std::string, std::function<std::string()>>;

  // Null without such a bus; then `failure` is the error number, EAGAIN if too many programs wait
  // for the bus already. `lost` is called once if the bus ends the connection or never accepts it.
  // `loop` must outlive the connection.
  static std::unique_ptr<BusConnection> open(sd_event* loop, Kind kind, std::function<void()> lost,
                                             int* failure = nullptr);
  ~BusConnection() override;
  BusConnection(const BusConnection&) = delete;
  BusConnection& operator=(const BusConnection&) = delete;

  // Asks for a name, without waiting in a queue for it. `answered` gets whether it is ours; nothing
  // if the bus did not say.
  void requestName(const std::string& name,
                   std::function<void(std::optional<bool> isOurs)> answered);

  void postNotificationName(const std::string& name, const std::string& object,
                            const std::optional<LXUserInfo>& userInfo) override;
  void addObserver(const std::string& name, Observer observer) override;
  void removeObserver(const std::string& name) override;

  // `fill` appends the arguments; both functions may be empty. A service that is not running is
  // started only if `starts`.
  void call(const Target& target, const Fill& fill, Answer answered, bool starts = true);
  // Calls `seen` for every signal that fits the rule, for the life of the connection.
  void watch(const std::string& rule, std::function<void(sd_bus_message* signal)> seen);
  // Shows texts as the properties of an object, for the life of the connection. Call once.
  void publish(const std::string& path, const std::string& interface,
               std::vector<Property> properties);
  // Tells the programs that watch the object that the property has another text.
  void tellChanged(const std::string& property);

  // Lets other programs call `member` of an object of this connection, for its life. The call is
  // answered with nothing.
  void serve(const std::string& path, const std::string& interface, const std::string& member,
             std::function<void(sd_bus_message* call)> called);
  // The address of this connection, which no other one has; empty before the bus has answered.
  std::string uniqueName() const;

  // From now on nobody is called, whatever arrives: for the end of those who would be.
  void forgetEverybody();

  // Waits until everything posted so far is with the bus, up to a fifth of a second: for the last
  // moment of a program.
  void flush();

 private:
  struct State;
  explicit BusConnection(std::unique_ptr<State> state);
  std::unique_ptr<State> m_state;
};
