// What concerns the companion: teaching it buttons, and what keeps things from working.

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Action/Catalogue/CatalogueFile.h"
#include "Action/Edit/Descriptions.h"
#include "Action/Edit/Drafts.h"
#include "Action/Library/SupportFolder.h"
#include "Action/NerinAction.h"
#include "Action/Service/LearnedButtons.h"
#include "CommandLine/CommandError.h"
#include "CommandLine/Commands.h"
#include "Kit/Bus/BusQuestion.h"
#include "Kit/Bus/CompanionAddress.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Device/HidInputReports.h"
#include "Kit/Device/HidNodes.h"

namespace fs = std::filesystem;

namespace {

constexpr int buttonCount = 16;
constexpr std::chrono::milliseconds answerLimit(300);
constexpr const char* ruleName = "60-nerin.rules";

// --- Learning ------------------------------------------------------------------------------------

void say(const std::string& line) {
  std::cerr << line << std::endl;
}

std::string instructionFor(ButtonLesson::Step step, int button) {
  switch (step) {
    case ButtonLesson::Step::Silence:
      return "Leave the mouse alone for two seconds.";
    case ButtonLesson::Step::Presses:
      return "Press button " + std::to_string(button) + " (" +
             descriptions::buttonName(static_cast<std::size_t>(button - 1)) + ") three times.";
    case ButtonLesson::Step::Other:
      return "Now press another button of the mouse once.";
    case ButtonLesson::Step::Done:
    case ButtonLesson::Step::SendsNothing:
    case ButtonLesson::Step::NoDifference:
      break;
  }
  return {};
}

// Waits for reports, or until the lesson has to go on.
void waitFor(const HidInputReports& reports, ButtonLesson::Time until) {
  std::vector<pollfd> entries;
  for (const int descriptor : reports.descriptors()) {
    entries.push_back({descriptor, POLLIN, 0});
  }
  const auto left =
      std::chrono::ceil<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
  ::poll(entries.data(), entries.size(), static_cast<int>(std::max<long>(left.count(), 0)));
}

ButtonLesson teach(int button) {
  HidInputReports reports(NerinAction::mouseVid, NerinAction::mousePid);
  if (reports.descriptors().empty()) {
    throw CommandError(ExitCode::Failed, reports.hasAny()
                                             ? "the reports of the mouse may not be read"
                                             : "This mouse sends nothing of its buttons to the "
                                               "computer.");
  }
  ButtonLesson lesson(std::chrono::steady_clock::now());
  auto told = ButtonLesson::Step::Done;
  while (!lesson.isOver()) {
    if (told != lesson.step()) {
      told = lesson.step();
      say(instructionFor(told, button));
    }
    waitFor(reports, lesson.due());
    const auto now = std::chrono::steady_clock::now();
    for (const HidInputReport& report : reports.take()) {
      lesson.heard(report.interfaceNumber, report.bytes, now);
    }
    if (reports.descriptors().empty()) {
      throw CommandError(ExitCode::NoMouse, "the mouse went away");
    }
    lesson.pass(now);
  }
  return lesson;
}

void learn(Session& session, int button) {
  if (button < 1 || button > buttonCount) {
    throw CommandError(ExitCode::Usage, "the buttons are 1 to 16");
  }
  if (session.isVirtual()) {
    throw CommandError(ExitCode::Failed, "the buttons of a virtual mouse send nothing");
  }
  session.findMouse();
  const ButtonLesson lesson = teach(button);
  if (lesson.step() == ButtonLesson::Step::SendsNothing) {
    throw CommandError(ExitCode::Failed, "This button sends nothing to the computer.");
  }
  if (lesson.step() == ButtonLesson::Step::NoDifference) {
    throw CommandError(ExitCode::Failed,
                       "The two buttons send the same, so that they cannot be told apart.");
  }
  if (!learnedbuttons::keep(button - 1, lesson.pattern())) {
    throw CommandError(ExitCode::Failed, "the button could not be stored in the preferences");
  }
  session.output.print(
      {"button " + std::to_string(button) + " is known: " + lesson.pattern().text()},
      {{"button", button}, {"pattern", lesson.pattern().text()}});
}

// --- What keeps things from working --------------------------------------------------------------

std::string variable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

Finding nodeFinding(const HidNode& node) {
  const bool isOpen = ::access(node.path.c_str(), R_OK | W_OK) == 0;
  return {"interface " + std::to_string(node.interfaceNumber), isOpen,
          node.path + (isOpen ? " may be read and written" : " may not be read and written")};
}

Finding ruleFinding() {
  for (const char* folder :
       {"/etc/udev/rules.d", "/run/udev/rules.d", "/usr/local/lib/udev/rules.d",
        "/usr/lib/udev/rules.d", "/lib/udev/rules.d"}) {
    std::error_code error;
    if (fs::exists(fs::path(folder) / ruleName, error)) {
      return {"udev rule", true, std::string(folder) + "/" + ruleName};
    }
  }
  return {"udev rule", false,
          std::string("not installed: copy ") +
              (LXPlatform::current().resourceFolder / ruleName).string() +
              " to /etc/udev/rules.d, then: sudo udevadm control --reload && sudo udevadm trigger"};
}

std::string nameOfProcess(long pid) {
  std::ifstream file("/proc/" + std::to_string(pid) + "/comm");
  std::string name;
  std::getline(file, name);
  return printable(name.empty() ? "an unknown program" : name);
}

// Who holds the lock that the file stands for; nothing if nobody does. The kernel lists locks as
// "1: FLOCK ADVISORY WRITE PID MAJOR:MINOR:INODE 0 EOF".
std::optional<std::string> holderOf(const fs::path& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) {
    return std::nullopt;
  }
  std::ifstream locks("/proc/locks");
  for (std::string line; std::getline(locks, line);) {
    std::istringstream words(line);
    std::string number;
    std::string kind;
    std::string way;
    std::string mode;
    std::string place;
    long pid = 0;
    words >> number >> kind >> way >> mode >> pid >> place;
    const bool isIt = place.ends_with(":" + std::to_string(status.st_ino));
    if (words && kind == "FLOCK" && isIt && pid != ::getpid()) {
      return nameOfProcess(pid) + " (process " + std::to_string(pid) + ")";
    }
  }
  return std::nullopt;
}

void addMouse(Session& session, std::vector<Finding>& findings) {
  NerinAction::startListenDev();
  const bool isThere = NerinAction::checkListenDev();
  if (session.isVirtual()) {
    findings.push_back({"mouse", isThere, isThere ? "virtual" : "virtual, and not plugged in"});
    return;
  }
  std::string absence = session.explainAbsence();
  std::replace(absence.begin(), absence.end(), '\n', ' ');
  findings.push_back({"mouse", isThere, isThere ? "there, and open" : absence});
  const auto nodes = findHidNodes(NerinAction::mouseVid, NerinAction::mousePid);
  std::transform(nodes.begin(), nodes.end(), std::back_inserter(findings), nodeFinding);
  findings.push_back(ruleFinding());
  if (!nodes.empty()) {
    const HidInputReports reports(NerinAction::mouseVid, NerinAction::mousePid);
    findings.push_back({"reports", reports.hasAny(),
                        reports.hasAny() ? "the mouse tells when something happens at it"
                                         : "the mouse does not tell what happens at it: its slot "
                                           "button and launch buttons go unnoticed"});
  }
  std::error_code error;
  const fs::path runtime = LXPlatform::current().runtimeFolder;
  for (fs::directory_iterator entry(runtime, error), end; !error && entry != end;
       entry.increment(error)) {
    const auto holder = holderOf(entry->path());
    if (entry->path().filename().string().starts_with("mouse-") && holder) {
      findings.push_back({"in use", false, "by " + *holder + "; it should let go soon"});
    }
  }
}

void addFiles(std::vector<Finding>& findings) {
  const fs::path support = NerinAction::getSysPath();
  std::error_code error;
  const fs::directory_iterator profiles(support / "Profiles", error);
  findings.push_back({"library", !error || error == std::errc::no_such_file_or_directory,
                      error == std::errc::no_such_file_or_directory ? "empty so far"
                      : error ? (support / "Profiles").string() + ": " + error.message()
                              : (support / "Profiles").string()});
  if (fs::exists(support / "MenuInfo.xml", error)) {
    CatalogueFile catalogue;
    const bool isFine = catalogue.load() && catalogue.section("MacroList");
    findings.push_back({"macros", isFine,
                        (support / "MenuInfo.xml").string() +
                            (isFine ? "" : " is damaged; the next start of the window mends it")});
  }
  for (int slot = 0; slot < ProfieController::slotCount; ++slot) {
    if (NerinAction::isApplyUnfinished(slot)) {
      findings.push_back({"slot " + std::to_string(slot + 1), false,
                          "an Apply was interrupted; finish it with: nerinctl finish " +
                              std::to_string(slot + 1)});
    }
  }
}

void addCompanion(std::vector<Finding>& findings) {
  const std::string desktop = variable("XDG_CURRENT_DESKTOP");
  const std::string type = variable("XDG_SESSION_TYPE");
  findings.push_back(
      {"desktop", true,
       printable((desktop.empty() ? "unknown" : desktop) + (type.empty() ? "" : " on " + type))});
  const auto foreground = askCompanion(companionaddress::foreground);
  findings.push_back({"companion", foreground.has_value(),
                      foreground ? "runs"
                                 : "does not run: slots do not follow programs, buttons launch "
                                   "nothing, nothing is shown; start it with: nerin-companion"});
  if (foreground) {
    const bool tells = *foreground != "none";
    findings.push_back({"focus", tells,
                        tells ? printable(*foreground)
                              : "this desktop does not tell programs which window is in front"});
    findings.push_back(
        {"slot now", true,
         printable(askCompanion(companionaddress::explanation).value_or("unknown"))});
  }
}

void doctor(Session& session) {
  const std::vector<Finding> findings = findingsOf(session);
  std::vector<std::vector<std::string>> rows;
  Json document = Json::array();
  rows.reserve(findings.size());
  for (const Finding& finding : findings) {
    rows.push_back({finding.isFine ? "ok" : "!", finding.subject, finding.text});
    document.push_back(
        {{"subject", finding.subject}, {"ok", finding.isFine}, {"text", finding.text}});
  }
  session.output.print(table(rows), document);
}

}  // namespace

std::vector<Finding> findingsOf(Session& session) {
  std::vector<Finding> findings;
  addMouse(session, findings);
  addFiles(findings);
  addCompanion(findings);
  return findings;
}

std::optional<std::string> askCompanion(const char* property) {
  return askSessionBus(
      {companionaddress::service, companionaddress::path, companionaddress::interface, property},
      answerLimit);
}

void addCompanionCommands(GrammarCommand program, Command& chosen) {
  GrammarCommand command = program.addCommand(
      "learn", "Show the companion what a button sends, so that it launches the button's program",
      "learn 7");
  auto button = std::make_shared<int>();
  command.addOption("button", *button, "The button, 1 to 16").required();
  command.onGiven(
      [&chosen, button] { chosen = [=](Session& session) { learn(session, *button); }; });
  program.addCommand("doctor", "What is there, what is missing, and what to do about it", "doctor")
      .onGiven([&chosen] { chosen = doctor; });
  addReportCommand(program, chosen);
}
