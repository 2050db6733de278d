#include "Kit/Core/LXLogger.h"

#include <memory>
#include <utility>

#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/spdlog.h>

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
    auto sink =
        std::make_shared<spdlog::sinks::rotating_file_sink_st>(file.string(), fileSize, oldFiles);
    auto logger = std::make_shared<spdlog::logger>("NerinOption", std::move(sink));
    logger->set_pattern("%Y-%m-%d %H:%M:%S.%e [%l] %s:%# %v");
    logger->set_level(spdlog::level::debug);
    logger->flush_on(spdlog::level::warn);
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
