#include "CommandLine/RecordOutput.h"

#include "Action/Record/Limits.h"

namespace {

Json buttonJson(const _BTN_INFO& button, int index) {
  Json json{{"index", index},
            {"button", descriptions::buttonName(static_cast<std::size_t>(index))},
            {"type", descriptions::typeName(button.btnType)},
            {"function", printable(descriptions::functionText(button, index))},
            {"functionCode", button.FuncTableId},
            {"functionId", button.FuncID},
            {"keyBits", button.KeyBit}};
  if (button.btnType == ButtonTypeMacro) {
    json["macroId"] = button.MacroID;
    json["repeat"] = descriptions::repeatText(button);
  }
  if (button.app_path[0] != '\0') {
    json["program"] = std::string(textOf(button.app_path));
  }
  return json;
}

}  // namespace

std::vector<std::string> linesOf(const std::vector<descriptions::Fact>& facts) {
  std::vector<std::vector<std::string>> rows;
  rows.reserve(facts.size());
  for (const descriptions::Fact& fact : facts) {
    rows.push_back({printable(fact.about), printable(fact.value)});
  }
  return table(rows);
}

Json asJson(const _Nerin_PROFILE& profile, descriptions::RecordSource source) {
  Json zones = Json::array();
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    Json entry{{"colour", descriptions::colorText(profile.lightColorArr[zone])}};
    if (source == descriptions::RecordSource::Library) {
      entry["on"] = profile.islightOnArr[zone] != 0;
    }
    zones.push_back(std::move(entry));
  }
  Json levels = Json::array();
  for (std::size_t level = 0; level < descriptions::levelsInUse(profile); ++level) {
    levels.push_back({{"x", std::uint64_t{limits::dpiStep} * profile.xSensArr[level]},
                      {"y", std::uint64_t{limits::dpiStep} * profile.ySensArr[level]}});
  }
  Json buttons = Json::array();
  for (std::size_t index = 0; index < buttonCount; ++index) {
    buttons.push_back(buttonJson(profile.btnInfo[index], static_cast<int>(index)));
  }
  const auto hertz = descriptions::rateInHz(profile.poRate);
  return {{"rate", hertz ? Json(*hertz) : Json(nullptr)},
          {"lift", profile.liftHeight},
          {"mode", descriptions::modeText(profile.modeType)},
          {"zones", zones},
          {"activeLevel", std::uint64_t{profile.currSelectDPI} + 1},
          {"levels", levels},
          {"buttons", buttons}};
}

Json asJson(const MacroInfo& macro) {
  Json events = Json::array();
  for (const auto& event : macro.keyInfoArr()) {
    events.push_back({{"event", printable(descriptions::eventText(*event))},
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
