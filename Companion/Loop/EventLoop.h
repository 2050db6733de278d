#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

struct sd_event;
struct sd_event_source;

// The loop of a program that waits for descriptors, times and signals, and does nothing in between.
// All callbacks run on its thread.
class EventLoop {
 public:
  using Time = std::chrono::steady_clock::time_point;

  EventLoop();
  ~EventLoop();
  EventLoop(const EventLoop&) = delete;
  EventLoop& operator=(const EventLoop&) = delete;

  sd_event* handle() const { return m_event; }

  // Works until exit(); returns the code given to it.
  int run();
  void exit(int code);
  // Works until `isDone`, which is asked after every event. False after `limit`.
  bool runUntil(const std::function<bool()>& isDone, std::chrono::milliseconds limit);
  // SIGTERM and SIGINT end run() with 0.
  void exitOnSignals();

  // What the loop waits for, as long as this lives. It must go before the loop does, and before a
  // descriptor is closed.
  class Watch;
  // Calls whenever the descriptor is readable. Null if it cannot be waited for.
  std::unique_ptr<Watch> watch(int descriptor, std::function<void()> whenReadable);

  // Calls after files in the folder were written, replaced or removed. Null if the folder cannot be
  // watched.
  std::unique_ptr<Watch> watchFolder(const std::filesystem::path& folder,
                                     std::function<void()> whenChanged);
  // The same for one file, which need not exist; its folder must.
  std::unique_ptr<Watch> watchFile(const std::filesystem::path& file,
                                   std::function<void()> whenChanged);

  // A time at which to call, once; starting it again moves the time.
  class Timer {
   public:
    Timer(EventLoop& loop, std::function<void()> whenDue);
    ~Timer();
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    void startAt(Time time);
    void startIn(std::chrono::milliseconds time);
    void stop();

   private:
    std::unique_ptr<Watch> m_watch;
  };

 private:
  // With an empty name: all files of the folder.
  std::unique_ptr<Watch> watchNames(const std::filesystem::path& folder, const std::string& name,
                                    std::function<void()> whenChanged);

  sd_event* m_event = nullptr;
};

class EventLoop::Watch {
 public:
  explicit Watch(std::function<void()> act);
  ~Watch();
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

 private:
  friend class EventLoop;

  std::function<void()> m_act;
  sd_event_source* m_source = nullptr;
  int m_ownDescriptor = -1;
};
