#include "Kit/Core/LXLogger.h"

#include <memory>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/spdlog.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Kit/Core/UserFolders.h"

namespace {

constexpr std::size_t fileSize = std::size_t{1024} * 1024;
constexpr std::size_t oldFiles = 2;

struct Log {
  std::shared_ptr<spdlog::logger> file;
  LXLogger::Level level = LXLogger::Level::Debug;
  LXLogger::Observer observer;
};

Log& theLog() {
  static Log log;
  return log;
}

spdlog::level::level_enum levelOf(LXLogger::Level level) {
  switch (level) {
    case LXLogger::Level::Debug:
      return spdlog::level::debug;
    case LXLogger::Level::Warning:
      return spdlog::level::warn;
    case LXLogger::Level::Error:
      break;
  }
  return spdlog::level::err;
}

// The log names files and profiles of the user, so nobody else may read it: a file is made so, and
// one of an older version becomes so.
void makePrivate(const std::filesystem::path& file, int flags) {
  constexpr mode_t ownersOnly = 0600;
  const int descriptor =
      ::open(file.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC | flags, ownersOnly);
  if (descriptor >= 0) {
    static_cast<void>(::fchmod(descriptor, ownersOnly));
    ::close(descriptor);
  }
}

// Called before the log is opened at first, and anew after each rotation.
void prepareFile(const std::filesystem::path& file) {
  UserFolders::make(file.parent_path());
  makePrivate(file, O_CREAT);
}

void write(LXLogger::Level level, std::string_view line, const LXSourcePlace& where) {
  Log& log = theLog();
  if (log.observer) {
    log.observer(level, line);
  }
  if (log.file && level >= log.level) {
    const spdlog::source_loc place{where.file, where.line, ""};
    log.file->log(place, levelOf(level), spdlog::string_view_t(line.data(), line.size()));
  }
}

}  // namespace

void LXLogger::debug(std::string_view line, LXSourcePlace where) {
  write(Level::Debug, line, where);
}

void LXLogger::warning(std::string_view line, LXSourcePlace where) {
  write(Level::Warning, line, where);
}

void LXLogger::error(std::string_view line, LXSourcePlace where) {
  write(Level::Error, line, where);
}

void LXLogger::setLevel(Level level) {
  theLog().level = level;
}

void LXLogger::setFile(const std::filesystem::path& file) {
  theLog().file.reset();
  if (file.empty()) {
    return;
  }
  try {
    using Sink = spdlog::sinks::rotating_file_sink_st;
    for (std::size_t old = 1; old <= oldFiles; ++old) {
      makePrivate(Sink::calc_filename(file.string(), old), 0);
    }
    spdlog::file_event_handlers events;
    events.before_open = [](const spdlog::filename_t& name) { prepareFile(name); };
    auto sink = std::make_shared<Sink>(file.string(), fileSize, oldFiles, false, events);
    auto logger = std::make_shared<spdlog::logger>("NerinOption", std::move(sink));
    logger->set_pattern("%Y-%m-%d %H:%M:%S.%e [%l] %s:%# %v");
    logger->set_level(spdlog::level::debug);
    // The last lines before a kill are the ones that explain it.
    logger->flush_on(spdlog::level::debug);
    // A full disk must not cause an exception or a line on the user's terminal.
    logger->set_error_handler([](const std::string&) {});
    theLog().file = std::move(logger);
  } catch (const spdlog::spdlog_ex&) {
    theLog().file.reset();
  }
}

void LXLogger::setObserver(Observer observer) {
  theLog().observer = std::move(observer);
}
