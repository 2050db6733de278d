#include "Companion/Service/Links.h"

#include <algorithm>
#include <fstream>
#include <string>
#include <system_error>

#include "Action/Service/DaemonMessages.h"

namespace fs = std::filesystem;

namespace {

// A desktop entry with all its languages has some ten kilobytes.
constexpr std::size_t longestEntry = 1 << 20;

LinkedProgram load(const fs::path& path) {
  if (path.extension() == ".desktop") {
    std::ifstream file(path, std::ios::binary);
    std::string text(longestEntry, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(std::max<std::streamsize>(file.gcount(), 0)));
    return linkedProgramOf(path, text);
  }
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  LinkedProgram program = linkedProgramOf(error ? path : real);
  program.name = path.stem().string();
  return program;
}

}  // namespace

void Links::reload() {
  for (std::size_t slot = 0; slot < slotCount; ++slot) {
    const auto path = NerinAction::daemonGetLinkAppPath(static_cast<int>(slot));
    m_programs[slot].reset();
    if (path && !path->empty()) {
      m_programs[slot] = load(*path);
    }
  }
}

bool Links::isEmpty() const {
  return std::none_of(m_programs.begin(), m_programs.end(),
                      [](const auto& program) { return program.has_value(); });
}

std::optional<Links::Match> Links::find(const AppIdentity& identity,
                                        std::optional<int> preferred) const {
  std::optional<Match> found;
  for (std::size_t slot = 0; slot < slotCount; ++slot) {
    const auto& program = m_programs[slot];
    if (!program || !isSameProgram(*program, identity)) {
      continue;
    }
    const int number = static_cast<int>(slot);
    if (!found || number == preferred) {
      found = Match{number, program->name};
    }
  }
  return found;
}
