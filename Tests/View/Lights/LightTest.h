#pragma once

#include <string>
#include <vector>

#include "Kit/Widgets/LXImageView.h"
#include "Tests/Support/EditorTest.h"
#include "View/Lights/LightView.h"

// The window for the colors of the four zones, with a profile of distinct colors.
class LightTest : public EditorTest {
 protected:
  LightView& open() {
    editState->edit().lightColorArr[0] = {10, 20, 30};
    editState->edit().lightColorArr[1] = {40, 50, 60};
    editState->edit().lightColorArr[2] = {70, 80, 90};
    editState->edit().lightColorArr[3] = {100, 110, 120};
    editState->clearNeedSave();
    m_light = new LightView;
    m_light->construct();
    show(m_light);
    m_light->fillSettingData();
    clearTrace();
    return *m_light;
  }
  LightView& light() { return *m_light; }
  const _LightColorInfo& color(int index) {
    return editState->currSetProfile().lightColorArr[index];
  }
  // The commands that send these colors to the mouse.
  static std::vector<std::string> colorCommands(const _Nerin_PROFILE& profile) {
    std::vector<std::string> commands;
    const auto send = [&](Bytes bytes) {
      bytes.resize(8);
      commands.push_back("SET 0300 0 " + hexOf(bytes));
    };
    for (std::size_t zone = 0; zone < zoneCount; ++zone) {
      const _LightColorInfo& color = profile.lightColorArr[zone];
      auto address = static_cast<std::uint8_t>(0x27 + 4 * zone);
      for (const std::uint32_t part : {color.cR, color.cG, color.cB}) {
        send({0xC4, 0x0F, 0, address++, static_cast<std::uint8_t>(part)});
      }
    }
    send({0xC4, 3, 3, 3});
    return commands;
  }
  bool hasLine(const char* name) { return !part<LXImageView>(name).image().isNull(); }
  static void expectColor(const _LightColorInfo& color, std::uint32_t red, std::uint32_t green,
                          std::uint32_t blue) {
    EXPECT_EQ(color.cR, red);
    EXPECT_EQ(color.cG, green);
    EXPECT_EQ(color.cB, blue);
  }
  static LightColor stored(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
    return {red / 255.0, green / 255.0, blue / 255.0};
  }

 private:
  LightView* m_light = nullptr;
};
