#pragma once

#include <cstdint>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include "Action/Library/ProfieController.h"
#include "Action/Record/Outcome.h"
#include "CommandLine/Output.h"
#include "Kit/Core/FileLock.h"
#include "Kit/Core/LXDeviceRequester.h"
#include "Kit/Device/HidDeviceRequester.h"

struct SessionOptions {
  std::optional<std::string> virtualFile;
  std::optional<std::string> scenario;
  std::optional<std::string> traceFile;
};

// One run of the program: the mouse it talks to, the library it works on, and what happened on the
// way.
class Session {
 public:
  Session() = default;
  // Waits until the last message to the service is on its way.
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  Output output;

  // Installs the platform, with the mouse that the options name. Throws CommandError.
  void begin(const SessionOptions& options);

  // Loads the catalogues and the library, and keeps other programs out of them until the end.
  // Throws CommandError when another one holds them, or when the library cannot be read.
  ProfieController& openLibrary();
  // The same for what would go wrong without the macros: throws CommandError when their file is
  // damaged.
  ProfieController& openLibraryWithMacros();
  // Waits for nothing: throws CommandError with what was looked for when the mouse is not there.
  void openMouse();
  // Throws CommandError, with what it means for the user, when the operation failed.
  void require(const Outcome& outcome);
  // To be called when the command is done. Throws CommandError when the trace is not whole.
  void end();
  // Says on a terminal what long report is being written; `macros` of them are macros.
  void showProgress(std::size_t macros);

  bool isVirtual() const { return m_isVirtual; }

 private:
  void openTrace(const SessionOptions& options);
  std::shared_ptr<LXDeviceRequester> observed(std::shared_ptr<LXDeviceRequester> requester);
  void willSend(const LXDeviceRequest& request);
  void didSend(const LXDeviceRequest& request, bool isDone);
  void traceSleep(std::int64_t milliseconds);

  std::unique_ptr<FileLock> m_libraryLock;
  bool m_isVirtual = false;
  std::shared_ptr<HidDeviceRequester> m_usbMouse;
  std::ofstream m_trace;
  std::string m_traceFile;
  std::size_t m_failedTransfers = 0;
  bool m_isShowingProgress = false;
  std::size_t m_macros = 0;
  std::size_t m_macrosWritten = 0;
};
