#include "Benchmarks/BenchmarkHome.h"

#include <cstdlib>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "Action/Library/SupportFolder.h"

namespace fs = std::filesystem;

BenchmarkHome::BenchmarkHome(LXPlatform platform)
    : m_folder((fs::temp_directory_path() / "nerin-bench-XXXXXX").string()) {
  if (::mkdtemp(m_folder.data()) == nullptr) {
    throw std::runtime_error("cannot make " + m_folder);
  }
  platform.homeFolder = m_folder;
  platform.resourceFolder = NERIN_RESOURCES;
  LXPlatform::install(std::move(platform));
  sysPath->clear();
  ProfieController::releaseShareProCon();
}

BenchmarkHome::~BenchmarkHome() {
  ProfieController::releaseShareProCon();
  LXPlatform::install({});
  sysPath->clear();
  std::error_code ignored;
  fs::remove_all(m_folder, ignored);
}

ProfieController& BenchmarkHome::loadLibrary() {
  ProfieController::releaseShareProCon();
  return ProfieController::getShareProCon();
}

void BenchmarkHome::fillLibrary(std::size_t profiles) {
  ProfieController& library = loadLibrary();
  for (std::size_t i = 0; i < profiles; ++i) {
    const auto profile = library.addProfileByName("Profile " + std::to_string(i), nullptr);
    _Nerin_PROFILE record = profile->profileData();
    record.liftHeight = static_cast<std::uint32_t>(i % 32);
    profile->setProfileData(record);
  }
  if (const auto error = library.saveToSys()) {
    throw std::system_error(error, "cannot save the library");
  }
}
