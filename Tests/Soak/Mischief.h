#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "App/DemoNotificationCenter.h"
#include "Tests/Soak/Dice.h"
#include "Tests/Soak/Wholeness.h"
#include "VirtualMouse/VirtualMouse.h"

// What happens around the program: the mouse comes and goes and misbehaves, reports and broadcasts
// arrive, other programs change and break the files, and the disk is full.
class Mischief {
 public:
  using Tell = std::function<void(const std::string&)>;

  Mischief(Dice& dice, std::shared_ptr<VirtualMouse> mouse,
           std::shared_ptr<DemoNotificationCenter> center, Wholeness& wholeness);
  ~Mischief();
  Mischief(const Mischief&) = delete;
  Mischief& operator=(const Mischief&) = delete;

  void act(const Tell& tell);
  bool hasService() const { return m_hasService; }
  // Whether the mouse answers what it holds, so that what it is told must make sense.
  bool isMouseSane() const { return m_isMouseSane && m_mouse->activeSlot() < 10; }
  // Kills this process at that step of a later save.
  void killAtDiskStep(int steps) { m_killAt = steps; }
  // For the end of a start: a healthy mouse and a disk with room.
  void endAll();

 private:
  void moveMouse(const Tell& tell);
  void report(const Tell& tell);
  void misbehave(const Tell& tell);
  void touchLibrary(const Tell& tell);
  void breakFile(const std::filesystem::path& file, const Tell& tell);
  std::filesystem::path someFile(const std::filesystem::path& folder);
  int diskStep();

  Dice& m_dice;
  std::shared_ptr<VirtualMouse> m_mouse;
  std::shared_ptr<DemoNotificationCenter> m_center;
  Wholeness& m_wholeness;
  bool m_hasService = false;
  bool m_isMouseSane = true;
  bool m_isDiskFull = false;
  int m_killAt = 0;
  int m_newFiles = 0;
};

// Changes some bytes of the file of a virtual mouse, without making it another kind of file.
void damageMouseMemory(Dice& dice, const std::filesystem::path& file);
