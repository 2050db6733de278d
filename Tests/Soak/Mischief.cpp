#include "Tests/Soak/Mischief.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <limits>
#include <system_error>
#include <vector>

#include <unistd.h>

#include "Action/Library/ProfieController.h"
#include "Action/Library/ProfileValue.h"
#include "Action/Library/SupportFolder.h"
#include "Kit/Core/DurableFile.h"
#include "Tests/Support/Scratch.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* deviceStatus = "NerinDevStatus";
constexpr std::int32_t slotChanged = 1;
constexpr std::int32_t dpiChanged = 2;
constexpr std::int32_t removed = 100;
constexpr std::int32_t attached = 101;
constexpr std::size_t memoryHeader = 16;

std::string bytesOf(ProfileValue& profile) {
  const ConfigBytes bytes = profile.fileBytes();
  return {bytes.data(), bytes.size()};
}

}  // namespace

Mischief::Mischief(Dice& dice, std::shared_ptr<VirtualMouse> mouse,
                   std::shared_ptr<DemoNotificationCenter> center, Wholeness& wholeness)
    : m_dice(dice), m_mouse(std::move(mouse)), m_center(std::move(center)), m_wholeness(wholeness) {
  durable::setFaultInjector([this](const char*) { return diskStep(); });
}

Mischief::~Mischief() {
  durable::setFaultInjector({});
}

int Mischief::diskStep() {
  if (m_killAt > 0 && --m_killAt == 0) {
    ::kill(::getpid(), SIGKILL);
  }
  return m_isDiskFull ? ENOSPC : 0;
}

void Mischief::endAll() {
  m_isDiskFull = false;
  m_killAt = 0;
}

void Mischief::moveMouse(const Tell& tell) {
  if (m_mouse->isAttached()) {
    tell("unplugs the mouse");
    m_mouse->detach();
    if (m_dice.percent(60)) {
      m_center->report(deviceStatus, {{"type", removed}, {"value", 0}});
    }
    return;
  }
  tell("plugs the mouse in");
  m_mouse->attach();
  if (m_dice.percent(60)) {
    m_center->report(deviceStatus, {{"type", attached}, {"value", 0}});
  }
}

void Mischief::report(const Tell& tell) {
  static constexpr std::array<std::int32_t, 10> values{0,
                                                       1,
                                                       9,
                                                       10,
                                                       15,
                                                       -1,
                                                       255,
                                                       4,
                                                       std::numeric_limits<std::int32_t>::max(),
                                                       std::numeric_limits<std::int32_t>::min()};
  static constexpr std::array<std::int32_t, 9> types{
      slotChanged, dpiChanged, removed,
      attached,    0,          -1,
      3,           102,        std::numeric_limits<std::int32_t>::min()};
  switch (m_dice.roll(4)) {
    case 0: {
      const int slot = m_dice.between(0, VirtualMouse::slotCount - 1);
      tell("presses the mouse's button for slot " + std::to_string(slot + 1));
      m_mouse->pressSlotButton(slot);
      m_center->report(deviceStatus, {{"type", slotChanged}, {"value", slot}});
      return;
    }
    case 1: {
      const std::int32_t value = m_dice.of(values);
      tell("reports the DPI level " + std::to_string(value));
      m_center->report(deviceStatus, {{"type", dpiChanged}, {"value", value}});
      return;
    }
    default: {
      LXUserInfo info;
      if (!m_dice.percent(15)) {
        info["type"] = m_dice.of(types);
      }
      if (m_dice.percent(10)) {
        info["type"] = true;
      }
      if (!m_dice.percent(20)) {
        info["value"] = m_dice.of(values);
      }
      if (m_dice.percent(10)) {
        info["value"] = false;
      }
      if (m_dice.percent(10)) {
        info[std::string(500, 'k')] = 1;
      }
      std::string text = "broadcasts";
      for (const auto& [key, value] : info) {
        const auto* number = std::get_if<std::int32_t>(&value);
        text +=
            ' ' + key.substr(0, 8) + '=' + (number != nullptr ? std::to_string(*number) : "flag");
      }
      tell(text);
      m_center->report(m_dice.percent(90) ? deviceStatus : "NerinSettingChange", info);
    }
  }
}

void Mischief::misbehave(const Tell& tell) {
  using Kind = MouseScenario::Kind;
  static constexpr std::array kinds{Kind::Healthy,      Kind::Healthy,       Kind::Healthy,
                                    Kind::Slow,         Kind::AnswersShort,  Kind::AnswersRandom,
                                    Kind::HoldsGarbage, Kind::UnpluggedAfter};
  MouseScenario scenario;
  scenario.kind = m_dice.of(kinds);
  scenario.transfers = static_cast<std::uint32_t>(m_dice.between(0, 60));
  scenario.pause = std::chrono::milliseconds(1);
  tell("gives the mouse mood " + std::to_string(static_cast<int>(scenario.kind)));
  m_mouse->setScenario(scenario);
  // A mouse that is not itself is on slots that it does not have.
  m_isMouseSane = scenario.kind != Kind::HoldsGarbage && scenario.kind != Kind::AnswersRandom &&
                  scenario.kind != Kind::AnswersShort;
  m_mouse->clearFaults();
}

fs::path Mischief::someFile(const fs::path& folder) {
  std::vector<fs::path> files;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code ignored;
    // The memory of the virtual mouse is no file of the program.
    if (fs::is_regular_file(entry->symlink_status(ignored)) &&
        !entry->path().filename().string().starts_with("mouse")) {
      files.push_back(entry->path());
    }
  }
  std::sort(files.begin(), files.end());
  return files.empty() ? fs::path() : m_dice.of(files);
}

void Mischief::breakFile(const fs::path& file, const Tell& tell) {
  if (file.empty()) {
    tell("finds no file to break");
    return;
  }
  std::string bytes = textOfFile(file);
  const std::size_t kind = m_dice.roll(4);
  tell("breaks " + file.filename().string() + " in way " + std::to_string(kind));
  if (const auto profile = Wholeness::profileIn(file)) {
    m_wholeness.wasTouched(*profile);
  }
  std::error_code error;
  switch (kind) {
    case 0:
      bytes.resize(m_dice.roll(bytes.size() + 1));
      break;
    case 1:
      for (int times = 0; times < 6 && !bytes.empty(); ++times) {
        bytes[m_dice.roll(bytes.size())] = static_cast<char>(m_dice.roll(256));
      }
      break;
    case 2:
      bytes.clear();
      break;
    default:
      fs::remove(file, error);
      return;
  }
  // The files of the history are links to those of the library.
  fs::remove(file, error);
  writeText(file, bytes);
}

void Mischief::touchLibrary(const Tell& tell) {
  const fs::path library = ProfieController::getShareProCon().sysProPath();
  const fs::path support = NerinAction::getSysPath();
  const std::size_t kind = m_dice.roll(100);
  if (kind < 35 && m_wholeness.profiles() < 60) {
    const std::string name = "Another's " + std::to_string(m_dice.between(1, 40));
    tell("puts the profile " + name + " into the library");
    ProfileValue profile;
    profile.setProfileId(m_dice.roll(50));
    profile.setName(name);
    // It may take the place of one.
    m_wholeness.wasTouched(name);
    const fs::path file = library / (name + ".pro");
    if (const auto replaced = Wholeness::profileIn(file)) {
      m_wholeness.wasTouched(*replaced);
    }
    std::error_code error;
    fs::create_directories(library, error);
    fs::remove(file, error);
    writeText(file, bytesOf(profile));
  } else if (kind < 75) {
    breakFile(someFile(library), tell);
  } else if (kind < 90) {
    breakFile(someFile(support), tell);
  } else {
    breakFile(someFile(support / "Drafts"), tell);
  }
}

void Mischief::act(const Tell& tell) {
  const std::size_t kind = m_dice.roll(100);
  if (kind < (m_mouse->isAttached() ? 20U : 70U)) {
    moveMouse(tell);
  } else if (kind < 55) {
    report(tell);
  } else if (kind < 70) {
    misbehave(tell);
  } else if (kind < 85) {
    touchLibrary(tell);
  } else if (kind < 95) {
    m_isDiskFull = !m_isDiskFull && m_dice.percent(50);
    tell(m_isDiskFull ? "fills the disk" : "makes room on the disk");
  } else {
    m_hasService = !m_hasService;
    tell(m_hasService ? "starts the service" : "ends the service");
  }
}

void damageMouseMemory(Dice& dice, const fs::path& file) {
  std::string bytes = textOfFile(file);
  if (bytes.size() <= memoryHeader) {
    return;
  }
  for (int times = 0; times < 200; ++times) {
    bytes[memoryHeader + dice.roll(bytes.size() - memoryHeader)] =
        static_cast<char>(dice.roll(256));
  }
  writeText(file, bytes);
}
