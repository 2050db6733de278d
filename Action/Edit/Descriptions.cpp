#include "Action/Edit/Descriptions.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Record/Limits.h"
#include "Action/Wire/KeyCodes.h"
#include "Kit/Core/LXKey.h"

namespace {

// In the order of the button index.
constexpr const char* buttonNames[buttonCount] = {
    "left click",     "right click",  "wheel click",     "side rear",
    "side front",     "middle front", "middle rear",     "right edge 1",
    "right edge 2",   "right edge 3", "thumb pad right", "thumb pad down",
    "thumb pad left", "thumb pad up", "wheel up",        "wheel down",
};

constexpr const char* typeNames[] = {"plain", "macro", "single", "dpi", "launch", "disabled"};

std::string number(std::uint32_t value) {
  return std::to_string(value);
}

std::string rateText(std::uint32_t poRate) {
  const auto hertz = descriptions::rateInHz(poRate);
  return hertz ? std::to_string(*hertz) + " Hz" : "unknown (" + number(poRate) + ")";
}

std::string dpiText(std::uint32_t units) {
  return std::to_string(std::uint64_t{limits::dpiStep} * units);
}

}  // namespace

const char* descriptions::buttonName(std::size_t index) {
  return buttonNames[index];
}

std::string descriptions::typeName(std::uint32_t btnType) {
  return btnType >= 1 && btnType <= std::size(typeNames) ? typeNames[btnType - 1] : "none";
}

std::string descriptions::repeatText(const _BTN_INFO& button) {
  switch (button.KeyBit[0]) {
    case 1:
      return "once";
    case 2:
      return std::to_string(button.KeyBit[1]) + " times";
    case 3:
      return "while pressed";
    case 4:
      return "until stopped";
    default:
      return "unknown repeat";
  }
}

std::string descriptions::functionText(const _BTN_INFO& button, int index) {
  std::string caption = NerinAction::getBtnCaption(button, index);
  switch (button.btnType) {
    case ButtonTypeMacro:
      caption = "Macro " + (caption.empty() ? "(none)" : caption) + ", " + repeatText(button);
      break;
    case ButtonTypeSingle:
      if (button.FuncTableId == NerinAction::FunctionKey) {
        caption = "Key " + (caption.empty() ? std::to_string(button.KeyBit[0]) : caption);
      }
      break;
    case ButtonTypeSensitivity:
      if (button.FuncTableId == NerinAction::FunctionSetDpi) {
        caption += " " + std::to_string(limits::dpiStep * button.KeyBit[0]) + " x " +
                   std::to_string(limits::dpiStep * button.KeyBit[1]);
      }
      break;
    case ButtonTypeLaunch:
      caption = "Launch " + caption;
      break;
    default:
      break;
  }
  return caption.empty() ? "function code " + std::to_string(button.FuncTableId) : caption;
}

std::string descriptions::modeText(std::uint32_t modeType) {
  return modeType == 1 ? "battle" : "normal";
}

std::size_t descriptions::levelsInUse(const _Nerin_PROFILE& profile) {
  return std::clamp<std::size_t>(profile.dpiLevel, 1, levelCount);
}

std::string descriptions::eventText(const MacroKeyInfo& event) {
  const auto mouseButton = [&] {
    switch (event.keyCode()) {
      case 120:
        return std::string("left button");
      case 121:
        return std::string("right button");
      case 122:
        return std::string("middle button");
      default:
        return "button " + std::to_string(event.keyCode());
    }
  };
  const auto key = [&] {
    const std::string name = LXKey::getStrByKeycode(event.keyCode());
    return name.empty() ? "key " + std::to_string(event.keyCode()) : name;
  };
  switch (event.keyFlag()) {
    case MacroKeyInfo::KeyPress:
      return "press " + key();
    case MacroKeyInfo::KeyRelease:
      return "release " + key();
    case MacroKeyInfo::Function:
      return NerinAction::getMacroMenuNameById(event.keyCode()).value_or("unknown function");
    case MacroKeyInfo::MousePress:
      return "press " + mouseButton();
    case MacroKeyInfo::MouseRelease:
      return "release " + mouseButton();
    default:
      return "unknown event " + std::to_string(event.keyFlag());
  }
}

std::optional<int> descriptions::rateInHz(std::uint32_t poRate) {
  constexpr int rates[] = {125, 250, 500, 1000};
  return poRate < std::size(rates) ? std::optional(rates[poRate]) : std::nullopt;
}

std::string descriptions::colorText(const _LightColorInfo& color) {
  char text[16];
  std::snprintf(text, sizeof text, "#%02x%02x%02x", color.cR & 0xFFU, color.cG & 0xFFU,
                color.cB & 0xFFU);
  return text;
}

std::string descriptions::macroTitle(const MacroInfo& macro) {
  const std::string name = macro.nameStr().value_or("");
  return name.starts_with(NerinAction::generatedMacroName) ? "(no name)" : name;
}

std::vector<descriptions::Fact> descriptions::describe(const _Nerin_PROFILE& profile,
                                                       RecordSource source) {
  std::vector<Fact> facts{{"report rate", rateText(profile.poRate)},
                          {"lift height", number(profile.liftHeight)},
                          {"LED mode", modeText(profile.modeType)}};
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    const char* flag = profile.islightOnArr[zone] != 0 ? " on" : " off";
    facts.push_back(
        {"zone " + std::to_string(zone + 1),
         colorText(profile.lightColorArr[zone]) + (source == RecordSource::Library ? flag : "")});
  }
  for (std::size_t level = 0; level < levelsInUse(profile); ++level) {
    facts.push_back({"DPI level " + std::to_string(level + 1),
                     dpiText(profile.xSensArr[level]) + " x " + dpiText(profile.ySensArr[level]) +
                         (level == profile.currSelectDPI ? " (active)" : "")});
  }
  for (std::size_t index = 0; index < buttonCount; ++index) {
    facts.push_back(
        {buttonName(index), functionText(profile.btnInfo[index], static_cast<int>(index))});
  }
  return facts;
}

std::vector<descriptions::Fact> descriptions::describe(const MacroInfo& macro) {
  std::vector<Fact> facts;
  facts.reserve(macro.keyInfoArr().size());
  for (const auto& event : macro.keyInfoArr()) {
    facts.push_back(
        {eventText(*event), event->delay() > 0 ? std::to_string(event->delay()) + " ms" : ""});
  }
  return facts;
}
