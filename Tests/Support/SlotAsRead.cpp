#include "Tests/Support/SlotAsRead.h"

#include <algorithm>
#include <cstring>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Wire/KeyCodes.h"

namespace {

struct NamedMacro {
  std::uint32_t id;
  std::string name;
};

std::uint32_t low(std::uint32_t word) {
  return word & 0xFFU;
}

void readPlainButton(_BTN_INFO& info) {
  for (std::uint32_t& bit : info.KeyBit) {
    bit = low(bit);
  }
  info.FuncTableId = low(info.FuncTableId);
  info.FuncID = info.FuncTableId;
  info.MacroID = 0;
  switch (info.FuncTableId) {
    case 16:
      info.btnType = 4;
      info.FuncID = 1;
      break;
    case 9:
      info.btnType = 4;
      info.FuncID = 2;
      break;
    case 10:
      info.btnType = 4;
      info.FuncID = 3;
      break;
    case 11:
      info.btnType = 4;
      info.FuncID = 4;
      break;
    case 21:
      info.btnType = 4;
      info.FuncID = 5;
      break;
    case 15:
      info.btnType = 5;
      break;
    case 255:
      info.btnType = 6;
      break;
    case 0:
    case 1:
    case 4: {
      info.btnType = 3;
      info.MacroID = 1;
      if (const auto entry = NerinAction::getSingleByBtnInfo(info)) {
        info.FuncID = static_cast<std::uint32_t>(entry->functionID());
      }
      break;
    }
    default:
      info.btnType = 1;
      break;
  }
}

void readKey(_BTN_INFO& info) {
  const std::uint32_t key = info.KeyBit[0];
  info = {};
  info.FuncID = 2;
  info.FuncTableId = 2;
  info.btnType = 3;
  info.MacroID = 2;
  constexpr std::uint32_t leftHand[][2] = {{54, 55}, {60, 56}, {61, 58}, {62, 59},
                                           {55, 55}, {56, 56}, {58, 58}, {59, 59}};
  for (const auto& pair : leftHand) {
    if (key == pair[0]) {
      info.KeyBit[0] = pair[1];
      return;
    }
  }
  const std::uint32_t usage = NerinAction::GetFWKeyCode(key);
  info.KeyBit[0] = NerinAction::GetKeyCodeByFW(usage);
  info.KeyBit[1] = usage;
}

void readSpecial(_BTN_INFO& info) {
  const std::uint32_t key = info.KeyBit[0];
  info = {};
  info.FuncID = key == 241 ? 6 : 5;
  info.FuncTableId = 1;
  info.btnType = 3;
  info.KeyBit[0] = key;
  info.MacroID = 1;
}

// Converts mode and count as the macro report does.
void readRepeat(_BTN_INFO& info) {
  const std::uint32_t mode = info.KeyBit[0];
  const std::uint32_t times = info.KeyBit[1];
  std::uint32_t count = 255;
  if (mode == 2) {
    count = low(times >= 1 && times <= 254 ? times - 1 : times);
  }
  info.KeyBit[1] = count == 255 ? 255 : count + 1;
  if (mode == 2 && count == 255) {
    info.KeyBit[0] = 4;
  } else if (mode < 1 || mode > 4) {
    info.KeyBit[0] = 0;
  }
}

void readMacro(_BTN_INFO& info, int slot, int index, std::vector<NamedMacro>& macros) {
  const std::uint32_t id = info.MacroID;
  const auto macro = std::find_if(macros.begin(), macros.end(),
                                  [&](const NamedMacro& candidate) { return candidate.id == id; });
  if (macro == macros.end()) {
    info = {};
    info.FuncID = 255;
    info.FuncTableId = 255;
    info.btnType = 6;
    return;
  }
  const std::uint32_t third = low(info.KeyBit[2]);
  const std::uint32_t fourth = low(info.KeyBit[3]);
  readRepeat(info);
  info.FuncID = 6;
  info.btnType = 2;
  info.KeyBit[2] = third;
  info.KeyBit[3] = fourth;
  const std::string name = macroNameAsRead(macro->name, slot, index);
  const auto known = std::find_if(macros.begin(), macros.end(), [&](const NamedMacro& candidate) {
    return candidate.name == name;
  });
  if (known != macros.end()) {
    info.MacroID = known->id;
    return;
  }
  std::uint32_t largest = 0;
  for (const NamedMacro& candidate : macros) {
    largest = std::max(largest, candidate.id);
  }
  info.MacroID = largest + 1;
  macros.push_back({largest + 1, name});
}

bool isMouseEvent(const MacroKeyInfo& event) {
  return event.keyFlag() == MacroKeyInfo::MousePress ||
         event.keyFlag() == MacroKeyInfo::MouseRelease;
}

}  // namespace

std::string macroNameAsRead(const std::string& name, int slot, int index) {
  const bool isAscii = std::all_of(
      name.begin(), name.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80U; });
  if (name.empty() || !isAscii || name.starts_with("dmr_fw_macro_tag")) {
    return "dmr_fw_macro_tag_" + std::to_string(slot) + "_" + std::to_string(index);
  }
  return name.substr(0, 21);
}

_Nerin_PROFILE slotAsRead(int slot, const _Nerin_PROFILE& written) {
  _Nerin_PROFILE read = written;
  std::vector<NamedMacro> macros;
  for (const auto& macro : NerinAction::macroStore->macroListArrs) {
    macros.push_back({static_cast<std::uint32_t>(macro->macroId()), macro->nameStr().value_or("")});
  }
  read.modeType = written.modeType == 1 ? 1 : 0;
  std::fill(std::begin(read.islightOnArr), std::end(read.islightOnArr), 0);
  for (_LightColorInfo& color : read.lightColorArr) {
    color = {low(color.cR), low(color.cG), low(color.cB)};
  }
  const std::uint32_t levels = low(written.currSelectDPI + written.dpiLevel * 16);
  read.currSelectDPI = levels & 0x0FU;
  read.dpiLevel = std::clamp<std::uint32_t>(levels >> 4U, 1, 5);
  for (std::uint32_t level = 0; level < levelCount; ++level) {
    const bool isUsed = level < written.dpiLevel;
    read.xSensArr[level] = isUsed ? low(written.xSensArr[level]) : 0;
    read.ySensArr[level] = isUsed ? low(written.ySensArr[level]) : 0;
  }
  read.liftHeight = written.liftHeight & 0x1FU;
  read.poRate = written.poRate <= 3 ? written.poRate : 0;
  for (int index = 0; index < static_cast<int>(buttonCount); ++index) {
    _BTN_INFO& info = read.btnInfo[index];
    std::memset(info.app_path, 0, sizeof info.app_path);
    if (info.FuncTableId == 1 && (info.KeyBit[0] == 241 || info.KeyBit[0] == 242)) {
      readSpecial(info);
    } else if (info.FuncTableId == 2) {
      readKey(info);
    } else if (info.FuncTableId == 6) {
      readMacro(info, slot, index, macros);
    } else {
      readPlainButton(info);
    }
  }
  return read;
}

MacroEvents eventsAsRead(const MacroInfo& macro) {
  MacroEvents events;
  for (const auto& event : macro.keyInfoArr()) {
    const bool isRelease = event->keyFlag() == MacroKeyInfo::KeyRelease ||
                           event->keyFlag() == MacroKeyInfo::MouseRelease;
    const int delay = event->delay() > 0 ? event->delay() & 0xFFFF : 0;
    if (isMouseEvent(*event)) {
      events.push_back({0, event->keyFlag(), delay});
      continue;
    }
    const std::uint32_t code =
        NerinAction::GetFWKeyCode(static_cast<std::uint32_t>(event->keyCode()));
    // A release without a key code is the byte 128, which reads as a press.
    events.push_back({static_cast<int>(NerinAction::GetKeyCodeByFW(code)),
                      isRelease && code != 0 ? 1 : 0, delay});
  }
  return events;
}

std::string differenceOf(const _Nerin_PROFILE& actual, const _Nerin_PROFILE& expected) {
  std::string text;
  std::uint32_t actualWords[sizeof actual / 4];
  std::uint32_t expectedWords[sizeof expected / 4];
  std::memcpy(actualWords, &actual, sizeof actual);
  std::memcpy(expectedWords, &expected, sizeof expected);
  for (std::size_t word = 0; word < std::size(actualWords); ++word) {
    if (actualWords[word] != expectedWords[word]) {
      const std::size_t index = word / 72;
      text += index < 16 ? "button " + std::to_string(index) + " word " + std::to_string(word % 72)
                         : "word " + std::to_string(word);
      text += ": " + std::to_string(actualWords[word]) + " instead of " +
              std::to_string(expectedWords[word]) + "\n";
    }
  }
  return text;
}
