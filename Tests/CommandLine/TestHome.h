#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "Action/Catalogue/MacroInfo.h"
#include "Action/Library/ProfileValue.h"
#include "Kit/Core/KeyedArchive.h"
#include "Kit/Core/UserFolders.h"
#include "Tests/CommandLine/ProgramRun.h"
#include "Tests/Support/Scratch.h"
#include "Tests/VirtualMouse/MouseHost.h"
#include "VirtualMouse/VirtualMouse.h"

using Words = std::vector<std::string>;
using Lines = std::vector<std::string>;

// A user of the program: a home folder, a virtual mouse, and functions to run the program there.
class TestHome {
  Scratch m_folder;

 public:
  TestHome();

  std::filesystem::path home;
  std::filesystem::path mouseFile;
  // For files outside the library.
  std::filesystem::path files;

  // Run the program without a mouse, and with the virtual mouse.
  RunResult run(const Words& arguments) const;
  RunResult runWithMouse(const Words& arguments) const;
  // Run the program with other settings; `settings.home` may stay empty.
  RunResult run(const Words& arguments, RunSettings settings) const;
  RunResult runWithMouse(const Words& arguments, const RunSettings& settings) const;
  // For commands that must succeed. Return the JSON answer, the lines, and the sent reports.
  nlohmann::json json(const Words& arguments) const;
  Lines lines(const Words& arguments) const;
  Lines trace(const Words& arguments) const;
  void prepare(const Words& arguments) const;

  // The user's data: every file of the home folder, by path, and the memory of the mouse.
  std::map<std::string, std::string> library() const;
  std::string mouseMemory() const;
  // Where the program keeps them, as long as nothing else is set up.
  UserFolders folders() const;
  std::filesystem::path supportFolder() const { return folders().support; }
  std::filesystem::path profileFolder() const { return supportFolder() / "Profiles"; }
  std::filesystem::path preferences() const { return folders().preferences; }

  // Import a profile or macro into the library.
  void addProfile(ProfileValue profile) const;
  void addMacro(const std::string& name, const MacroInfo& macro) const;
};

// Expects a failure with one line for the user, apart from warnings, and no other output.
void expectComplaint(const RunResult& result, int exitCode, const std::string& part = {});
// Expects that no byte of the text can control a terminal.
void expectHarmless(const std::string& text);

// The first factory profile with another name.
ProfileValue profileNamed(const std::string& name);
// Assigns a macro to a button: mode 1 once, 2 `count` times, 3 while pressed, 4 until stopped.
void setMacro(ProfileValue& profile, std::size_t button, std::uint32_t macroId, std::uint32_t mode,
              std::uint32_t count = 0);
// A key, a delay and a left click: 10 bytes in the mouse.
MacroInfo clickMacro(const std::string& name);

std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& bytes);
Lines linesOf(const std::string& text);

// The bytes in the form of a trace.
template <typename Bytes>
std::string hex(const Bytes& bytes) {
  constexpr const char* digits = "0123456789abcdef";
  std::string text;
  for (const auto byte : bytes) {
    text += digits[static_cast<unsigned char>(byte) >> 4U];
    text += digits[static_cast<unsigned char>(byte) & 0x0FU];
  }
  return text;
}
