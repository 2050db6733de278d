#include "VirtualMouse/VirtualMouse.h"

#include <algorithm>
#include <random>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

#include "VirtualMouse/MouseFirmware.h"
#include "VirtualMouse/MouseMemory.h"

namespace {

void requireBelow(int count, int slot) {
  if (slot < 0 || slot >= count) {
    throw std::out_of_range("the mouse has no slot " + std::to_string(slot));
  }
}

}  // namespace

struct VirtualMouse::State {
  std::function<void()> presenceObserver;
  std::filesystem::path file;
  MouseMemory kept;
  MousePowerFile powerFile;
  std::optional<MouseMemory> garbage;
  MouseFirmware firmware;
  MouseScenario scenario;
  std::uint32_t transfersLeft = 0;
  bool isPluggedIn = true;
  std::uint64_t attachments = 1;
  std::minstd_rand noise;
  std::deque<TransferRecord> transcript;
  std::size_t transcriptLimit = VirtualMouse::transcriptLimit;
  // The memory holds no whole image, but imageReport() must return a view of one.
  std::array<std::array<std::uint8_t, imageReportSize>, slotCount> images{};

  MouseMemory& memory() { return garbage ? *garbage : kept; }

  void unplug() {
    isPluggedIn = false;
    losePower();
    tellPresence();
  }

  void losePower() {
    firmware.losePower();
    changeAtTheMouse([this](MouseMemory&) { powerFile.write(firmware.power()); });
  }

  // Does something in one turn of this program at the mouse.
  template <typename Act>
  auto withPower(const Act& act) {
    auto before = firmware.power();
    powerFile.read(before);
    firmware.setPower(before);
    const auto result = act();
    if (firmware.power() != before) {
      powerFile.write(firmware.power());
    }
    return result;
  }

  void tellPresence() const {
    if (presenceObserver) {
      presenceObserver();
    }
  }

  // Changes the memory from the mouse's side, where no transfer can report a failure.
  template <typename Change>
  void changeAtTheMouse(const Change& change) {
    try {
      const MouseMemory::Turn turn(kept);
      change(memory());
    } catch (const std::system_error& error) {
      firmware.addFault(error.what());
    }
  }

  void record(TransferRecord transfer) {
    while (!transcript.empty() && transcript.size() >= transcriptLimit) {
      transcript.pop_front();
    }
    transcript.push_back(std::move(transfer));
  }

  TransferStatus perform(const SetupPacket& setup, std::span<const std::uint8_t> sent,
                         std::vector<std::uint8_t>& answer);
};

TransferStatus VirtualMouse::State::perform(const SetupPacket& setup,
                                            std::span<const std::uint8_t> sent,
                                            std::vector<std::uint8_t>& answer) {
  TransferStatus status = TransferStatus::Stalled;
  try {
    const MouseMemory::Turn turn(kept);
    if ((setup.requestType & 0x80U) == 0) {
      return withPower([&] { return firmware.receive(memory(), setup, sent); });
    }
    status = withPower([&] { return firmware.answer(memory(), setup, answer); });
  } catch (const std::system_error& error) {
    firmware.addFault(error.what());
    return TransferStatus::Stalled;
  }
  if (scenario.kind == MouseScenario::Kind::AnswersShort) {
    answer.resize(std::min(answer.size(), shortAnswerSize));
  } else if (scenario.kind == MouseScenario::Kind::AnswersRandom) {
    std::generate(answer.begin(), answer.end(),
                  [this] { return static_cast<std::uint8_t>(noise() >> 8U); });
  }
  return status;
}

VirtualMouse::VirtualMouse() : m_state(std::make_unique<State>()) {
  fillAsDelivered(m_state->kept);
}

VirtualMouse::VirtualMouse(const std::filesystem::path& memoryFile) : VirtualMouse() {
  m_state->kept.keepIn(memoryFile);
  m_state->file = memoryFile;
  std::filesystem::path powerFile = memoryFile;
  m_state->powerFile.keepIn(powerFile += ".power");
}

VirtualMouse::~VirtualMouse() = default;

TransferResult VirtualMouse::controlTransfer(const SetupPacket& setup,
                                             std::span<std::uint8_t> data) {
  if (!isAttached()) {
    return {};
  }
  if (m_state->scenario.kind == MouseScenario::Kind::Slow) {
    std::this_thread::sleep_for(m_state->scenario.pause);
  }
  data = data.first(std::min<std::size_t>(data.size(), setup.length));
  SetupPacket request = setup;
  request.length = static_cast<std::uint16_t>(data.size());

  const bool isToHost = (setup.requestType & 0x80U) != 0;
  std::vector<std::uint8_t> answer;
  TransferResult result;
  result.status = m_state->perform(request, data, answer);
  if (result.status == TransferStatus::Done) {
    std::copy(answer.begin(), answer.end(), data.begin());
    result.bytes = static_cast<std::uint32_t>(isToHost ? answer.size() : data.size());
  }
  if (!isToHost) {
    answer.assign(data.begin(), data.end());
  }
  m_state->record({setup, std::move(answer), result.status});

  if (m_state->scenario.kind == MouseScenario::Kind::UnpluggedAfter &&
      --m_state->transfersLeft == 0) {
    m_state->unplug();
  }
  return result;
}

void VirtualMouse::setScenario(MouseScenario scenario) {
  using Kind = MouseScenario::Kind;
  m_state->scenario = scenario;
  m_state->garbage.reset();
  switch (scenario.kind) {
    case Kind::Absent:
      m_state->losePower();
      break;
    case Kind::UnpluggedAfter:
      m_state->transfersLeft = scenario.transfers;
      if (scenario.transfers == 0) {
        m_state->unplug();
      }
      break;
    case Kind::AnswersRandom:
      m_state->noise.seed();
      break;
    case Kind::HoldsGarbage:
      fillWithGarbage(m_state->garbage.emplace());
      break;
    case Kind::Healthy:
    case Kind::Slow:
    case Kind::AnswersShort:
      break;
  }
}

bool VirtualMouse::isAttached() const {
  return m_state->isPluggedIn && m_state->scenario.kind != MouseScenario::Kind::Absent;
}

void VirtualMouse::detach() {
  m_state->unplug();
}

void VirtualMouse::attach() {
  if (isAttached()) {
    return;
  }
  m_state->isPluggedIn = true;
  ++m_state->attachments;
  const MouseScenario::Kind kind = m_state->scenario.kind;
  if (kind == MouseScenario::Kind::Absent ||
      (kind == MouseScenario::Kind::UnpluggedAfter && m_state->transfersLeft == 0)) {
    m_state->scenario = {};
  }
  m_state->tellPresence();
}

void VirtualMouse::setPresenceObserver(std::function<void()> observer) {
  m_state->presenceObserver = std::move(observer);
}

std::filesystem::path VirtualMouse::memoryFile() const {
  return m_state->file;
}

void VirtualMouse::refresh() {
  m_state->changeAtTheMouse([](MouseMemory&) {});
}

std::uint64_t VirtualMouse::attachments() const {
  return m_state->attachments;
}

void VirtualMouse::pressSlotButton(int slot) {
  requireBelow(slotCount, slot);
  if (isAttached()) {
    m_state->changeAtTheMouse([slot](MouseMemory& memory) { memory.setActiveSlot(slot); });
  }
}

void VirtualMouse::clearSlot(int slot) {
  requireBelow(slotCount, slot);
  m_state->changeAtTheMouse([slot](MouseMemory& memory) { memory.clearSlot(slot); });
}

int VirtualMouse::activeSlot() const {
  return m_state->memory().activeSlot();
}

std::span<const std::uint8_t> VirtualMouse::nameReport(int slot) const {
  requireBelow(slotCount, slot);
  return m_state->memory().name(slot);
}

std::span<const std::uint8_t> VirtualMouse::imageReport(int slot) const {
  requireBelow(slotCount, slot);
  auto& image = m_state->images[static_cast<std::size_t>(slot)];
  image = m_state->memory().image(slot);
  return image;
}

std::span<const std::uint8_t> VirtualMouse::macroReport(int macroSlot) const {
  requireBelow(macroSlotCount, macroSlot);
  return m_state->memory().macro(macroSlot);
}

std::string VirtualMouse::slotName(int slot) const {
  const auto characters = nameReport(slot).subspan(5);
  return {characters.begin(), std::find(characters.begin(), characters.end(), 0)};
}

MacroPlayback VirtualMouse::playMacro(int macroSlot) const {
  const auto report = macroReport(macroSlot);
  return report[0] == MouseMemory::macroMark ? playbackOf(report) : MacroPlayback{};
}

bool VirtualMouse::hasUnrefreshedWrites() const {
  return m_state->firmware.hasUnrefreshedWrites();
}

void VirtualMouse::setTranscriptLimit(std::size_t limit) {
  m_state->transcriptLimit = limit;
}

const std::deque<TransferRecord>& VirtualMouse::transcript() const {
  return m_state->transcript;
}

void VirtualMouse::clearTranscript() {
  m_state->transcript.clear();
}

const std::vector<std::string>& VirtualMouse::faults() const {
  return m_state->firmware.faults();
}

void VirtualMouse::clearFaults() {
  m_state->firmware.clearFaults();
}
