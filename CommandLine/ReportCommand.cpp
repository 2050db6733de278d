// What a person sends along with a question: what the doctor says, and what the mouse answered.

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include <sys/utsname.h>

#include "Action/Device/SlotTransfer.h"
#include "Action/NerinAction.h"
#include "CommandLine/CommandError.h"
#include "CommandLine/Commands.h"
#include "Kit/Core/LXPlatform.h"
#include "VirtualMouse/ReplayedMouse.h"

namespace {

// In the memory of a slot: the low half is the active DPI level.
constexpr std::uint32_t levelAddress = 258;
// It names the program in front, which is nobody's business.
constexpr const char* sentenceSubject = "slot now";

std::string withoutHome(std::string text) {
  const std::string home = LXPlatform::current().homeFolder.string();
  if (home.size() < 2) {
    return text;
  }
  for (auto place = text.find(home); place != std::string::npos; place = text.find(home, place)) {
    text.replace(place, home.size(), "~");
  }
  return text;
}

std::string systemText() {
  utsname system{};
  if (::uname(&system) != 0) {
    return "unknown";
  }
  return std::string(system.sysname) + " " + system.release + " " + system.machine;
}

// Asks what the program asks when it reads the slots, without the macros. A mouse that does not
// answer is what the report is for.
void readAll() {
  const auto active = NerinAction::getProfileIndexByDevice();
  if (active.outcome.isDone()) {
    static_cast<void>(
        NerinAction::getAdrrDataWithAddr(NerinAction::getOffsetAdrBy(levelAddress, active.value)));
  }
  for (std::uint8_t slot = 0; slot < ProfieController::slotCount; ++slot) {
    static_cast<void>(NerinAction::getFWProfileName(slot));
    static_cast<void>(NerinAction::readProfileImage(slot));
  }
}

void report(Session& session, const std::string& path) {
  std::error_code error;
  if (session.isVirtual() && std::filesystem::equivalent(path, session.virtualFile(), error)) {
    throw CommandError(ExitCode::Usage, "the report would overwrite the virtual mouse");
  }
  std::string text = std::string(ReplayedMouse::reportHeading) + "\n";
  text += std::string("NerinOption ") + NERIN_VERSION + " on " + systemText() + "\n\n[doctor]\n";
  std::size_t troubles = 0;
  for (const Finding& finding : findingsOf(session)) {
    if (finding.subject != sentenceSubject) {
      text += std::string(finding.isFine ? "ok  " : "!   ") + finding.subject + ": " +
              withoutHome(finding.text) + "\n";
    }
    troubles += finding.isFine ? 0 : 1;
  }
  text += std::string("\n") + ReplayedMouse::traceHeading + "\n";
  std::size_t transfers = 0;
  if (NerinAction::checkListenDev()) {
    session.openMouse();
    session.setTracer([&](const std::string& line) {
      text += line + "\n";
      ++transfers;
    });
    readAll();
    session.setTracer(nullptr);
  }
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << text;
  file.close();
  if (!file) {
    throw CommandError(ExitCode::Failed, "the report cannot be written: " + printable(path));
  }
  session.output.print({"report written to " + printable(path)},
                       {{"file", path}, {"troubles", troubles}, {"transfers", transfers}});
}

}  // namespace

void addReportCommand(GrammarCommand program, Command& chosen) {
  addWithWord(
      program, chosen, "report",
      "Write into a file what the doctor says and what the mouse answers. In it are the "
      "names of its profiles, their lights, DPI levels and button assignments; no macro, no "
      "key that is pressed, no program in front and no name of your home folder. "
      "--virtual FILE then answers as this mouse did",
      "report mouse-report.txt", "file", report);
}
