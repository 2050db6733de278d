#include "CommandLine/Descriptions.h"

#include <algorithm>
#include <cstdio>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Wire/KeyCodes.h"
#include "Action/Wire/MacroImage.h"
#include "Kit/Core/LXKey.h"

namespace {

constexpr int dpiUnit = 50;

// The buttons in the order of their index.
constexpr const char* buttonNames[buttonCount] = {
    "left click",     "right click",  "wheel click",     "side rear",
    "side front",     "middle front", "middle rear",     "right edge 1",
    "right edge 2",   "right edge 3", "thumb pad right", "thumb pad down",
    "thumb pad left", "thumb pad up", "wheel up",        "wheel down",
};

constexpr const char* typeNames[] = {"plain", "macro", "single", "dpi", "launch", "disabled"};

std::string typeName(std::uint32_t type) {
  return type >= 1 && type <= std::size(typeNames) ? typeNames[type - 1] : "none";
}

std::string repeatText(const _BTN_INFO& button) {
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

std::string functionText(const _BTN_INFO& button, int index) {
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
        caption += " " + std::to_string(dpiUnit * button.KeyBit[0]) + " x " +
                   std::to_string(dpiUnit * button.KeyBit[1]);
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

Json buttonJson(const _BTN_INFO& button, int index) {
  Json json{{"index", index},
            {"button", buttonNames[index]},
            {"type", typeName(button.btnType)},
            {"function", printable(functionText(button, index))},
            {"functionCode", button.FuncTableId},
            {"functionId", button.FuncID},
            {"keyBits", button.KeyBit}};
  if (button.btnType == ButtonTypeMacro) {
    json["macroId"] = button.MacroID;
    json["repeat"] = repeatText(button);
  }
  if (button.app_path[0] != '\0') {
    json["program"] = std::string(textOf(button.app_path));
  }
  return json;
}

std::string number(std::uint32_t value) {
  return std::to_string(value);
}

std::string modeText(std::uint32_t modeType) {
  return modeType == 1 ? "battle" : "normal";
}

std::string rateText(std::uint32_t poRate) {
  const auto hertz = rateInHz(poRate);
  return hertz ? std::to_string(*hertz) + " Hz" : "unknown (" + number(poRate) + ")";
}

std::string dpiText(std::uint32_t units) {
  return std::to_string(std::uint64_t{dpiUnit} * units);
}

std::size_t levelsInUse(const _Nerin_PROFILE& profile) {
  return std::clamp<std::size_t>(profile.dpiLevel, 1, levelCount);
}

std::string eventText(const MacroKeyInfo& event) {
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

}  // namespace

std::optional<int> rateInHz(std::uint32_t poRate) {
  constexpr int rates[] = {125, 250, 500, 1000};
  return poRate < std::size(rates) ? std::optional(rates[poRate]) : std::nullopt;
}

std::string colourText(const _LightColorInfo& colour) {
  char text[16];
  std::snprintf(text, sizeof text, "#%02x%02x%02x", colour.cR & 0xFFU, colour.cG & 0xFFU,
                colour.cB & 0xFFU);
  return text;
}

std::string macroTitle(const MacroInfo& macro) {
  const std::string name = macro.nameStr().value_or("");
  return name.starts_with(NerinAction::generatedMacroName) ? "(no name)" : printable(name);
}

std::vector<std::string> describe(const _Nerin_PROFILE& profile, RecordSource source) {
  std::vector<std::vector<std::string>> rows;
  rows.push_back({"report rate", rateText(profile.poRate)});
  rows.push_back({"lift height", number(profile.liftHeight)});
  rows.push_back({"LED mode", modeText(profile.modeType)});
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    const char* flag = profile.islightOnArr[zone] != 0 ? " on" : " off";
    rows.push_back(
        {"zone " + std::to_string(zone + 1),
         colourText(profile.lightColorArr[zone]) + (source == RecordSource::Library ? flag : "")});
  }
  for (std::size_t level = 0; level < levelsInUse(profile); ++level) {
    rows.push_back({"DPI level " + std::to_string(level + 1),
                    dpiText(profile.xSensArr[level]) + " x " + dpiText(profile.ySensArr[level]) +
                        (level == profile.currSelectDPI ? " (active)" : "")});
  }
  for (std::size_t index = 0; index < buttonCount; ++index) {
    rows.push_back({buttonNames[index],
                    printable(functionText(profile.btnInfo[index], static_cast<int>(index)))});
  }
  return table(rows);
}

Json asJson(const _Nerin_PROFILE& profile, RecordSource source) {
  Json zones = Json::array();
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    Json entry{{"colour", colourText(profile.lightColorArr[zone])}};
    if (source == RecordSource::Library) {
      entry["on"] = profile.islightOnArr[zone] != 0;
    }
    zones.push_back(std::move(entry));
  }
  Json levels = Json::array();
  for (std::size_t level = 0; level < levelsInUse(profile); ++level) {
    levels.push_back({{"x", std::uint64_t{dpiUnit} * profile.xSensArr[level]},
                      {"y", std::uint64_t{dpiUnit} * profile.ySensArr[level]}});
  }
  Json buttons = Json::array();
  for (std::size_t index = 0; index < buttonCount; ++index) {
    buttons.push_back(buttonJson(profile.btnInfo[index], static_cast<int>(index)));
  }
  const auto hertz = rateInHz(profile.poRate);
  return {{"rate", hertz ? Json(*hertz) : Json(nullptr)},
          {"lift", profile.liftHeight},
          {"mode", modeText(profile.modeType)},
          {"zones", zones},
          {"activeLevel", std::uint64_t{profile.currSelectDPI} + 1},
          {"levels", levels},
          {"buttons", buttons}};
}

std::vector<std::string> describe(const MacroInfo& macro) {
  std::vector<std::vector<std::string>> rows;
  for (const auto& event : macro.keyInfoArr()) {
    rows.push_back({printable(eventText(*event)),
                    event->delay() > 0 ? std::to_string(event->delay()) + " ms" : ""});
  }
  return table(rows);
}

Json asJson(const MacroInfo& macro) {
  Json events = Json::array();
  for (const auto& event : macro.keyInfoArr()) {
    events.push_back({{"event", printable(eventText(*event))},
                      {"keyCode", event->keyCode()},
                      {"keyFlag", event->keyFlag()},
                      {"delay", event->delay()}});
  }
  return {{"id", macro.macroId()},
          {"name", macro.nameStr().value_or("")},
          {"loopTime", macro.loopTime()},
          {"steps", macro.getMacroCount()},
          {"events", events}};
}
