#include "Companion/Policy/AppMatcher.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>

namespace fs = std::filesystem;

namespace {

// Programs that run others: their executable says nothing about what they run.
constexpr std::array<std::string_view, 16> runners{
    "sh",   "bash", "dash",    "env",   "python", "python3", "perl", "ruby",
    "java", "node", "flatpak", "steam", "snap",   "wine",    "gjs",  "electron"};

bool isRunner(const fs::path& program) {
  std::string name = program.filename().string();
  // "python3.11" runs others as "python3" does.
  name.resize(std::min(name.size(), name.find('.')));
  return std::find(runners.begin(), runners.end(), name) != runners.end();
}

std::string lowered(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return result;
}

bool isSameText(std::string_view one, std::string_view other) {
  return !one.empty() && lowered(one) == lowered(other);
}

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::string_view takeLine(std::string_view& rest) {
  const auto end = rest.find('\n');
  const std::string_view line = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  return line;
}

// The first word of a command line that is the program: quotes are taken off, and what "env" sets
// is passed over.
std::string programOf(std::string_view command) {
  std::string word;
  while (!command.empty()) {
    command = trimmed(command);
    const bool isQuoted = !command.empty() && command.front() == '"';
    command.remove_prefix(isQuoted ? 1 : 0);
    const auto end = command.find_first_of(isQuoted ? "\"" : " \t");
    word = command.substr(0, end);
    command.remove_prefix(end == std::string_view::npos ? command.size() : end + 1);
    const bool isSetting = word.find('=') != std::string::npos;
    if (word != "env" && !word.ends_with("/env") && !isSetting) {
      return word;
    }
  }
  return {};
}

std::string steamGameOf(std::string_view command) {
  constexpr std::string_view mark = "steam://rungameid/";
  const auto place = command.find(mark);
  if (place == std::string_view::npos) {
    return {};
  }
  const std::string_view number = command.substr(place + mark.size());
  return std::string(number.substr(0, number.find_first_not_of("0123456789")));
}

bool isInPath(const fs::path& program, const fs::path& executable) {
  return program.is_absolute() ? program == executable
                               : program.filename() == executable.filename();
}

// The names under which the program's windows may go.
bool isNamedLike(const LinkedProgram& program, std::string_view id) {
  if (id.empty()) {
    return false;
  }
  if (isSameText(program.windowClass, id) || isSameText(program.desktopId, id) ||
      isSameText(program.flatpakId, id)) {
    return true;
  }
  // "org.gimp.GIMP" shows windows of the class "gimp".
  const auto dot = program.desktopId.rfind('.');
  if (dot != std::string::npos && isSameText(program.desktopId.substr(dot + 1), id)) {
    return true;
  }
  return !program.steamGame.empty() && isSameText("steam_app_" + program.steamGame, id);
}

std::string unescaped(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    if (text.size() >= 4 && text.substr(0, 2) == "\\x") {
      const auto digit = [](char letter) {
        const auto place = std::string_view("0123456789abcdef").find(letter);
        return place == std::string_view::npos ? -1 : static_cast<int>(place);
      };
      const int high = digit(text[2]);
      const int low = digit(text[3]);
      if (high >= 0 && low >= 0) {
        result += static_cast<char>(high * 16 + low);
        text.remove_prefix(4);
        continue;
      }
    }
    result += text.front();
    text.remove_prefix(1);
  }
  return result;
}

}  // namespace

LinkedProgram linkedProgramOf(const fs::path& path, std::string_view entry) {
  LinkedProgram program{.path = path,
                        .name = path.stem().string(),
                        .desktopId = path.stem().string(),
                        .windowClass = {},
                        .steamGame = {},
                        .flatpakId = {},
                        .executable = {}};
  bool isInGroup = false;
  while (!entry.empty()) {
    const std::string_view line = trimmed(takeLine(entry));
    if (line.starts_with('[')) {
      isInGroup = line == "[Desktop Entry]";
      continue;
    }
    const auto sign = line.find('=');
    if (!isInGroup || sign == std::string_view::npos) {
      continue;
    }
    const std::string_view key = trimmed(line.substr(0, sign));
    const std::string_view value = trimmed(line.substr(sign + 1));
    if (key == "Name" && !value.empty()) {
      program.name = value;
    } else if (key == "StartupWMClass") {
      program.windowClass = value;
    } else if (key == "X-Flatpak") {
      program.flatpakId = value;
    } else if (key == "Exec") {
      program.steamGame = steamGameOf(value);
      const fs::path executable = programOf(value);
      if (!isRunner(executable)) {
        program.executable = executable;
      }
    }
  }
  return program;
}

LinkedProgram linkedProgramOf(const fs::path& path) {
  return {.path = path,
          .name = path.stem().string(),
          .desktopId = {},
          .windowClass = {},
          .steamGame = {},
          .flatpakId = {},
          .executable = path};
}

bool isSameProgram(const LinkedProgram& program, const AppIdentity& identity) {
  if (isNamedLike(program, identity.appId) || isNamedLike(program, identity.instance)) {
    return true;
  }
  const std::string desktopId = desktopIdOfUnit(identity.unit);
  if (!desktopId.empty() &&
      (isSameText(desktopId, program.desktopId) || isSameText(desktopId, program.flatpakId))) {
    return true;
  }
  return !program.executable.empty() && !identity.executable.empty() &&
         isInPath(program.executable, identity.executable);
}

std::string desktopIdOfUnit(std::string_view unit) {
  constexpr std::string_view scope = ".scope";
  constexpr std::string_view service = ".service";
  if (!unit.starts_with("app-")) {
    return {};
  }
  if (unit.ends_with(scope)) {
    // "app-LAUNCHER-ID-RANDOM.scope", the launcher being left out at will.
    unit.remove_suffix(scope.size());
    const auto end = unit.rfind('-');
    if (end < 4) {
      return {};
    }
    unit = unit.substr(0, end);
  } else if (unit.ends_with(service)) {
    // "app-LAUNCHER-ID@RANDOM.service"
    unit.remove_suffix(service.size());
    unit = unit.substr(0, unit.find('@'));
  } else {
    return {};
  }
  // A hyphen inside the id is escaped, so that the last part is the id.
  return unescaped(unit.substr(unit.rfind('-') + 1));
}

std::string unitOfCgroup(std::string_view cgroup) {
  std::string unit;
  while (!cgroup.empty()) {
    std::string_view line = takeLine(cgroup);
    // "0::/user.slice/…/app-x.scope"; only the unified hierarchy tells of units.
    if (!line.starts_with("0::")) {
      continue;
    }
    line.remove_prefix(3);
    while (!line.empty()) {
      const auto end = line.find('/');
      const std::string_view part = line.substr(0, end);
      if (part.ends_with(".scope") || part.ends_with(".service")) {
        unit = part;
      }
      line.remove_prefix(end == std::string_view::npos ? line.size() : end + 1);
    }
  }
  return unit;
}

std::string keyOf(const AppIdentity& identity) {
  if (!identity.appId.empty()) {
    return lowered(identity.appId);
  }
  return identity.executable.empty() ? "pid " + std::to_string(identity.pid)
                                     : identity.executable.string();
}
