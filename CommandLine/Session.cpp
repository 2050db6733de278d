#include "CommandLine/Session.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <system_error>
#include <thread>

#include <unistd.h>

#include "Action/Catalogue/CatalogueFile.h"
#include "Action/Edit/Drafts.h"
#include "Action/NerinAction.h"
#include "Action/Texts/CatalogueUpdate.h"
#include "Action/Texts/TooltipManager.h"
#include "CommandLine/CommandError.h"
#include "Kit/Bus/SessionBusNotificationCenter.h"
#include "Kit/Core/Hex.h"
#include "Kit/Core/HostEnvironment.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Core/ObservedDeviceRequester.h"
#include "VirtualMouse/ReplayedMouse.h"
#include "VirtualMouse/VirtualDeviceRequester.h"

namespace {

// Long enough for another command to finish, short enough for the user to wait.
constexpr std::chrono::seconds lockLimit(5);

bool isWrite(const LXDeviceRequest& request) {
  return (request.bmRequestType & 0x80U) == 0;
}

// The mouse of a report or a trace; null if the file is something else.
std::shared_ptr<LXDeviceRequester> replayedMouse(const std::string& path) {
  constexpr std::size_t longestReport = 16U << 20U;
  std::ifstream file(path, std::ios::binary);
  std::string text(64, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(file.gcount()));
  if (!ReplayedMouse::isReplayable(text)) {
    return nullptr;
  }
  std::error_code error;
  if (std::filesystem::file_size(path, error) > longestReport) {
    throw CommandError(ExitCode::Failed, "the report is too long: " + printable(path));
  }
  text.append(std::istreambuf_iterator<char>(file), {});
  return std::make_shared<ReplayedMouse>(text);
}

std::shared_ptr<LXDeviceRequester> virtualMouse(const SessionOptions& options) {
  MouseScenario scenario;
  if (options.scenario) {
    const auto parsed = MouseScenario::parse(*options.scenario);
    if (!parsed) {
      throw CommandError(ExitCode::Usage, "no such scenario: " + printable(*options.scenario));
    }
    scenario = *parsed;
  }
  if (auto replayed = replayedMouse(*options.virtualFile)) {
    if (options.scenario) {
      throw CommandError(ExitCode::Usage, "a report has its own scenario");
    }
    return replayed;
  }
  try {
    auto mouse = std::make_shared<VirtualMouse>(std::filesystem::path(*options.virtualFile));
    mouse->setScenario(scenario);
    return std::make_shared<VirtualDeviceRequester>(std::move(mouse));
  } catch (const std::exception& error) {
    throw CommandError(ExitCode::Failed, "the virtual mouse " + printable(*options.virtualFile) +
                                             " cannot be used: " + error.what());
  }
}

}  // namespace

Session::~Session() {
  m_mouseHold.reset();
  // The platform refers to this session.
  NerinAction::sysDeviceReq->reset();
  LXPlatform::install({});
}

void Session::begin(const SessionOptions& options) {
  m_isVirtual = options.virtualFile.has_value();
  if (options.scenario && !m_isVirtual) {
    throw CommandError(ExitCode::Usage, "--scenario needs --virtual");
  }
  std::shared_ptr<LXDeviceRequester> requester;
  if (m_isVirtual) {
    requester = virtualMouse(options);
    m_virtualFile = std::filesystem::absolute(*options.virtualFile).string();
  } else {
    m_usbMouse = std::make_shared<HidDeviceRequester>();
    requester = m_usbMouse;
  }
  // Now the file of the virtual mouse exists, so the trace cannot overwrite it.
  if (options.traceFile) {
    openTrace(options);
  }
  LXPlatform platform;
  platform.homeFolder = hostenvironment::homeFolder();
  platform.userFolders = hostenvironment::userFolders(platform.bundleIdentifier);
  if (!m_isVirtual) {
    platform.runtimeFolder = hostenvironment::runtimeFolder();
  }
  platform.mouseWait = lockLimit;
  platform.resourceFolder = hostenvironment::resourceFolder();
  platform.preferredLanguage = hostenvironment::preferredLanguage();
  platform.deviceRequester = observed(std::move(requester));
  platform.notificationCenter = std::make_shared<SessionBusNotificationCenter>();
  platform.sleep = [this](std::chrono::microseconds time) {
    traceSleep(std::chrono::duration_cast<std::chrono::milliseconds>(time).count());
    std::this_thread::sleep_for(time);
  };
  LXPlatform::install(std::move(platform));
}

void Session::openTrace(const SessionOptions& options) {
  m_traceFile = *options.traceFile;
  std::error_code error;
  if (m_isVirtual && std::filesystem::equivalent(m_traceFile, *options.virtualFile, error)) {
    throw CommandError(ExitCode::Usage, "the trace would overwrite the virtual mouse");
  }
  m_trace.open(m_traceFile, std::ios::trunc);
  if (!m_trace) {
    throw CommandError(ExitCode::Failed, "the trace cannot be written: " + printable(m_traceFile));
  }
}

void Session::end() {
  if (m_trace.is_open() && !m_trace.flush()) {
    throw CommandError(ExitCode::Failed,
                       "done, but the trace could not be written to " + printable(m_traceFile));
  }
}

std::shared_ptr<LXDeviceRequester> Session::observed(std::shared_ptr<LXDeviceRequester> requester) {
  ObservedDeviceRequester::Observer observer;
  observer.willSend = [this](const LXDeviceRequest& request) { willSend(request); };
  observer.didSend = [this](const LXDeviceRequest& request, bool isDone) {
    didSend(request, isDone);
  };
  return std::make_shared<ObservedDeviceRequester>(std::move(requester), std::move(observer));
}

ProfieController& Session::openLibrary() {
  const std::filesystem::path support = NerinAction::getSysPath();
  std::error_code error;
  if (!std::filesystem::is_directory(support, error)) {
    throw CommandError(ExitCode::Failed,
                       "the folder cannot be made: " + printable(support.string()));
  }
  m_libraryLock = librarylock::acquire(lockLimit);
  if (!m_libraryLock) {
    throw CommandError(ExitCode::Failed, "the library is in use by another program");
  }
  NerinAction::leaveDraftsAlone();
  NerinAction::bringCataloguesUpToDate();
  NerinAction::initMenuList();
  NerinAction::refreshMenuList();
  ProfieController& library = ProfieController::getShareProCon();
  // Saving the library would delete files that cannot be listed.
  const std::filesystem::directory_iterator files(library.sysProPath(), error);
  if (error) {
    throw CommandError(ExitCode::Failed, "the library " + printable(library.sysProPath().string()) +
                                             " cannot be read: " + error.message());
  }
  return library;
}

ProfieController& Session::openLibraryWithMacros() {
  ProfieController& library = openLibrary();
  CatalogueFile catalogue;
  if (!catalogue.load() || !catalogue.section("MacroList")) {
    const std::filesystem::path file =
        std::filesystem::path(NerinAction::getSysPath()) / "MenuInfo.xml";
    std::error_code error;
    throw CommandError(ExitCode::Failed,
                       "the macros cannot be read from " + printable(file.string()));
  }
  return library;
}

void Session::findMouse() {
  NerinAction::startListenDev();
  if (!NerinAction::checkListenDev()) {
    throw CommandError(ExitCode::NoMouse, m_usbMouse ? m_usbMouse->explainAbsence()
                                                     : "the virtual mouse is not plugged in");
  }
}

std::string Session::explainAbsence() const {
  return m_usbMouse ? m_usbMouse->explainAbsence() : "";
}

void Session::openMouse() {
  findMouse();
  m_mouseHold = std::make_unique<NerinAction::MouseHold>();
  if (NerinAction::MouseHold::error()) {
    throw CommandError(ExitCode::Failed, "another program is using the mouse");
  }
}

void Session::require(const Outcome& outcome) {
  const auto& failure = outcome.failure();
  if (!failure) {
    return;
  }
  if (failure->step == SlotStep::SaveLibrary) {
    throw CommandError(ExitCode::Failed,
                       "the mouse has the profile, but the library could not be "
                       "saved: " +
                           failure->error.message());
  }
  if (failure->step == SlotStep::SavePreferences) {
    throw CommandError(ExitCode::Failed,
                       "done, but the linked program could not be stored in the preferences");
  }
  if (!NerinAction::checkListenDev()) {
    throw CommandError(ExitCode::NoMouse, "the mouse went away before everything was done");
  }
  throw CommandError(ExitCode::Failed, "the mouse did not answer as it should (failed transfers: " +
                                           std::to_string(m_failedTransfers) + ")");
}

void Session::showProgress(std::size_t macros) {
  m_isShowingProgress = ::isatty(STDERR_FILENO) != 0;
  m_macros = macros;
}

void Session::willSend(const LXDeviceRequest& request) {
  if (!m_isShowingProgress || !isWrite(request) || request.wIndex != 1) {
    return;
  }
  switch (request.wValue & 0xFFU) {
    case 4:
      std::cerr << "writing macro " << ++m_macrosWritten << " of " << m_macros << '\n';
      break;
    case 5:
      std::cerr << "writing image\n";
      break;
    case 6:
      std::cerr << "writing name\n";
      break;
    default:
      break;
  }
}

void Session::didSend(const LXDeviceRequest& request, bool isDone) {
  if (!isDone || request.wLenDone < request.data.size()) {
    ++m_failedTransfers;
  }
  char head[32];
  std::snprintf(head, sizeof head, "%s %04x %u ", isWrite(request) ? "SET" : "GET",
                static_cast<unsigned>(request.wValue), static_cast<unsigned>(request.wIndex));
  trace(head + hexText(request.data) + (isDone ? "" : " failed"));
}

void Session::traceSleep(std::int64_t milliseconds) {
  trace("SLEEP " + std::to_string(milliseconds));
}

void Session::trace(const std::string& line) {
  if (m_trace.is_open()) {
    m_trace << line << std::endl;
  }
  if (m_tracer) {
    m_tracer(line);
  }
}
