#pragma once

#include <cstdint>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "Action/Device/DeviceLink.h"
#include "Action/Library/LibraryLock.h"
#include "Action/Library/ProfieController.h"
#include "Action/Record/Outcome.h"
#include "CommandLine/Output.h"
#include "Kit/Core/LXDeviceRequester.h"
#include "Kit/Device/HidDeviceRequester.h"

struct SessionOptions {
  std::optional<std::string> virtualFile;
  std::optional<std::string> scenario;
  std::optional<std::string> traceFile;
};

// One run of the program: its mouse, its library and its record of failures.
class Session {
 public:
  Session() = default;
  // Waits until the last message to the service is sent.
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  Output output;

  // Installs the platform with the mouse from the options. Throws CommandError.
  void begin(const SessionOptions& options);

  // Loads the catalogues and the library and locks them until the end of the run. Throws
  // CommandError if another program holds the lock or the library cannot be read.
  ProfieController& openLibrary();
  // openLibrary for commands that need the macros: throws CommandError if the macro file is
  // damaged.
  ProfieController& openLibraryWithMacros();
  // Finds the mouse without holding it. Throws CommandError if it is not there.
  void findMouse();
  // Why the USB mouse cannot be used, and what helps; empty if it can, and for a virtual one.
  std::string explainAbsence() const;
  // Holds the mouse until the end of the run, since a command may read, change and write back.
  // Throws CommandError if the mouse is not there, or if another program keeps it.
  void openMouse();
  // Throws CommandError with a message for the user if the operation failed.
  void require(const Outcome& outcome);
  // Call after the command. Throws CommandError if the trace is incomplete.
  void end();
  // Prints each long report to a terminal; `macros` is the number of macros to write.
  void showProgress(std::size_t macros);
  // From now on also gives every line of the trace to `tracer`; an empty one ends that.
  void setTracer(std::function<void(const std::string& line)> tracer) {
    m_tracer = std::move(tracer);
  }

  bool isVirtual() const { return m_isVirtual; }
  // The whole path of the virtual mouse's file; empty for the USB mouse.
  const std::string& virtualFile() const { return m_virtualFile; }

 private:
  void openTrace(const SessionOptions& options);
  std::shared_ptr<LXDeviceRequester> observed(std::shared_ptr<LXDeviceRequester> requester);
  void willSend(const LXDeviceRequest& request);
  void didSend(const LXDeviceRequest& request, bool isDone);
  void traceSleep(std::int64_t milliseconds);
  void trace(const std::string& line);

  librarylock::Handle m_libraryLock;
  std::unique_ptr<NerinAction::MouseHold> m_mouseHold;
  bool m_isVirtual = false;
  std::string m_virtualFile;
  std::shared_ptr<HidDeviceRequester> m_usbMouse;
  std::ofstream m_trace;
  std::string m_traceFile;
  std::function<void(const std::string& line)> m_tracer;
  std::size_t m_failedTransfers = 0;
  bool m_isShowingProgress = false;
  std::size_t m_macros = 0;
  std::size_t m_macrosWritten = 0;
};
