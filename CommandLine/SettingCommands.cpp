#include <algorithm>
#include <charconv>
#include <memory>
#include <optional>
#include <string_view>

#include "Action/NerinAction.h"
#include "Action/Record/EditState.h"
#include "CommandLine/CommandError.h"
#include "CommandLine/Commands.h"
#include "CommandLine/RecordOutput.h"

namespace {

constexpr int hexadecimal = 16;

// A setting from the command line, "3=1600x800".
struct Assignment {
  std::string_view left;
  std::string_view right;
};

[[noreturn]] void refuse(const std::string& what) {
  throw CommandError(ExitCode::Usage, what);
}

Assignment split(std::string_view text, char separator) {
  const std::size_t at = text.find(separator);
  return at == std::string_view::npos ? Assignment{text, {}}
                                      : Assignment{text.substr(0, at), text.substr(at + 1)};
}

std::uint32_t number(std::string_view text, std::uint32_t minimum, std::uint32_t maximum,
                     const std::string& what, int base = 10) {
  std::uint32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (error != std::errc() || end != text.data() + text.size() || value < minimum ||
      value > maximum) {
    refuse(what + ": " + printable(text));
  }
  return value;
}

std::uint32_t sensitivityOf(std::string_view text) {
  const std::uint32_t dpi =
      number(text, limits::minimumDpi, limits::maximumDpi, "no DPI value from 100 to 8200");
  if (dpi % limits::dpiStep != 0) {
    refuse("the mouse knows DPI values in steps of 50: " + printable(text));
  }
  return dpi / limits::dpiStep;
}

_LightColorInfo colorOf(std::string_view text) {
  if (text.starts_with('#')) {
    text.remove_prefix(1);
  }
  if (text.size() != 6) {
    refuse("no colour as rrggbb: " + printable(text));
  }
  const std::uint32_t rgb = number(text, 0, 0xFFFFFF, "no colour as rrggbb", hexadecimal);
  return {rgb >> 16U, rgb >> 8U & 0xFFU, rgb & 0xFFU};
}

// Reads the active slot's settings into the working copy, so that a live command changes only what
// the user asked for. Does not read macros.
void takeActiveProfile(Session& session) {
  session.openMouse();
  const auto slot = static_cast<std::uint8_t>(activeSlotOf(session));
  editState->currSetProfile() = {};
  const auto image = NerinAction::readProfileImage(slot);
  session.require(image.outcome);
  static_cast<void>(NerinAction::decodeProfileImage(image.value, editState->currSetProfile(),
                                                    NerinAction::singleFunctionIdOf));
}

// A live command takes effect with its last report, so any failure ends it.
void report(Session& session, const Outcome& outcome, const std::string& line,
            const Json& document) {
  session.require(outcome);
  session.output.print({line}, document);
}

void rate(Session& session, int hertz) {
  for (std::uint32_t index = 0; descriptions::rateInHz(index); ++index) {
    if (*descriptions::rateInHz(index) == hertz) {
      session.openMouse();
      report(session, NerinAction::setRateToDevice(index),
             "report rate " + std::to_string(hertz) + " Hz", {{"rate", hertz}});
      return;
    }
  }
  refuse("the mouse reports at 125, 250, 500 or 1000 Hz");
}

struct DpiOptions {
  std::optional<int> levels;
  std::optional<int> active;
  std::vector<std::string> values;
};

void setLevel(const std::string& value) {
  const auto [level, dpi] = split(value, '=');
  const std::size_t index = number(level, 1, levelCount, "no DPI level") - 1;
  const auto [x, y] = split(dpi, 'x');
  const bool isOneValue = x.size() == dpi.size();
  _Nerin_PROFILE& profile = editState->currSetProfile();
  profile.xSensArr[index] = sensitivityOf(x);
  profile.ySensArr[index] = sensitivityOf(isOneValue ? x : y);
}

void requireLevel(const std::optional<int>& level) {
  if (level && (*level < 1 || *level > static_cast<int>(levelCount))) {
    refuse("the mouse has 1 to 5 DPI levels");
  }
}

// The mouse has no values for a level that was not in use.
void requireValuesOfLevels() {
  const _Nerin_PROFILE& profile = editState->currSetProfile();
  const std::size_t used = std::min<std::size_t>(profile.dpiLevel, levelCount);
  for (std::size_t level = 0; level < used; ++level) {
    if (profile.xSensArr[level] == 0 || profile.ySensArr[level] == 0) {
      const std::string name = std::to_string(level + 1);
      std::string message = "DPI level ";
      message.append(name).append(" has no value yet: give --set ").append(name).append("=DPI");
      refuse(message);
    }
  }
}

void dpi(Session& session, const DpiOptions& options) {
  if (!options.levels && !options.active && options.values.empty()) {
    refuse("which levels? Give --levels N, --active N or --set LEVEL=DPI");
  }
  requireLevel(options.levels);
  requireLevel(options.active);
  takeActiveProfile(session);
  _Nerin_PROFILE& profile = editState->currSetProfile();
  if (options.levels) {
    profile.dpiLevel = static_cast<std::uint32_t>(*options.levels);
  }
  if (options.active) {
    profile.currSelectDPI = static_cast<std::uint32_t>(*options.active) - 1;
  }
  std::for_each(options.values.begin(), options.values.end(), setLevel);
  requireValuesOfLevels();
  if (options.active && profile.currSelectDPI >= profile.dpiLevel) {
    refuse("that DPI level is not in use");
  }
  profile.currSelectDPI = std::min(profile.currSelectDPI, profile.dpiLevel - 1);
  const Outcome outcome = NerinAction::setSettingToDevice();
  const Json json = asJson(profile, descriptions::RecordSource::Mouse);
  report(session, outcome, "DPI levels set",
         {{"levels", json["levels"]}, {"activeLevel", json["activeLevel"]}});
}

void lift(Session& session, int height) {
  if (height < 0 || height > static_cast<int>(limits::maximumLift)) {
    refuse("the lift height is 0 to 31");
  }
  takeActiveProfile(session);
  editState->currSetProfile().liftHeight = static_cast<std::uint32_t>(height);
  const Outcome outcome = NerinAction::setSettingToDevice();
  report(session, outcome, "lift height " + std::to_string(height), {{"lift", height}});
}

struct LedOptions {
  std::optional<std::string> all;
  std::vector<std::string> zones;
};

void leds(Session& session, const LedOptions& options) {
  if (!options.all && options.zones.empty()) {
    refuse("which colour? Give --all RRGGBB or --zone N=RRGGBB");
  }
  takeActiveProfile(session);
  if (options.all) {
    std::fill(std::begin(editState->currSetProfile().lightColorArr),
              std::end(editState->currSetProfile().lightColorArr), colorOf(*options.all));
  }
  for (const std::string& zone : options.zones) {
    const auto [index, color] = split(zone, '=');
    editState->currSetProfile().lightColorArr[number(index, 1, zoneCount, "no LED zone") - 1] =
        colorOf(color);
  }
  const Outcome outcome = NerinAction::setColorToDevice2();
  report(
      session, outcome, "colours set",
      {{"zones", asJson(editState->currSetProfile(), descriptions::RecordSource::Mouse)["zones"]}});
}

void mode(Session& session, bool isBattle) {
  session.openMouse();
  editState->currSetProfile() = {};
  editState->currSetProfile().modeType = isBattle ? 1 : 0;
  const Outcome outcome = NerinAction::setModelToDevice();
  const std::string name = isBattle ? "battle" : "normal";
  report(session, outcome, "LED mode " + name, {{"mode", name}});
}

}  // namespace

void addSettingCommands(GrammarCommand program, Command& chosen) {
  GrammarCommand command =
      program.addCommand("rate", "The report rate of the active slot, at once", "rate 1000");
  auto hertz = std::make_shared<int>();
  command.addOption("hz", *hertz, "125, 250, 500 or 1000").required();
  command.onGiven(
      [&chosen, hertz] { chosen = [hertz](Session& session) { rate(session, *hertz); }; });

  command = program.addCommand("dpi", "The DPI levels of the active slot, at once",
                               "dpi --levels 2 --set 1=800 --set 2=1600x800 --active 1");
  auto dpiOptions = std::make_shared<DpiOptions>();
  command.addOption("--levels", dpiOptions->levels, "How many levels are in use, 1 to 5");
  command.addOption("--active", dpiOptions->active, "The active level, 1 to 5");
  command.addOption("--set", dpiOptions->values, "LEVEL=DPI, or LEVEL=XxY for two axes")
      .typeName("LEVEL=DPI");
  command.onGiven([&chosen, dpiOptions] {
    chosen = [dpiOptions](Session& session) { dpi(session, *dpiOptions); };
  });

  command =
      program.addCommand("lift", "The lift-off height of the active slot, at once", "lift 15");
  auto height = std::make_shared<int>();
  command.addOption("height", *height, "0 to 31").required();
  command.onGiven(
      [&chosen, height] { chosen = [height](Session& session) { lift(session, *height); }; });

  command = program.addCommand("leds", "The colours of the active slot, at once",
                               "leds --all e5262f --zone 3=0000ff");
  auto ledOptions = std::make_shared<LedOptions>();
  command.addOption("--all", ledOptions->all, "The colour of all four zones").typeName("RRGGBB");
  command.addOption("--zone", ledOptions->zones, "The colour of one zone, 1 to 4")
      .typeName("N=RRGGBB");
  command.onGiven([&chosen, ledOptions] {
    chosen = [ledOptions](Session& session) { leds(session, *ledOptions); };
  });

  command = program.addCommand("mode", "The LED mode of the active slot, at once", "mode battle");
  auto name = std::make_shared<std::string>();
  command.addOption("mode", *name, "battle or normal").required().oneOf({"battle", "normal"});
  command.onGiven(
      [&chosen, name] { chosen = [name](Session& session) { mode(session, *name == "battle"); }; });
}
