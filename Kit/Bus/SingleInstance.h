#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

// Makes sure that a program runs once in a session: the first start owns the name on the session
// bus, a later one asks it to come to the front. Without a bus every start is the first.
//
// The bus is asked on a thread, while the program prepares itself.
class SingleInstance {
 public:
  // Begins to ask for `name`, such as "com.corvex.NerinOption". `token` is the desktop's permission
  // to come to the front, which a second start hands over. `activate` gets the token of a later
  // start, on the thread that created this object, from its event loop. Needs a QCoreApplication.
  SingleInstance(std::string name, std::string token,
                 std::function<void(const std::string& token)> activate);
  // Gives the name back.
  ~SingleInstance();
  SingleInstance(const SingleInstance&) = delete;
  SingleInstance& operator=(const SingleInstance&) = delete;

  // Whether the program runs already, and has been asked to come to the front. Waits for the answer
  // of the bus, up to `limit` since the construction; without one this is the first start.
  bool isSecond(std::chrono::milliseconds limit = std::chrono::milliseconds(300));

 private:
  struct State;
  std::unique_ptr<State> m_state;
};
