#include "Fuzz/FuzzInput.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <system_error>

#include "Kit/Core/LXPlatform.h"

namespace fs = std::filesystem;

namespace {

class AnsweringRequester final : public LXDeviceRequester {
 public:
  std::span<const std::uint8_t> answers;

  void setIsPrintMsg(bool) override {}
  void listenDevWithVid(std::uint16_t, std::uint16_t) override {}
  bool isDevOn() override { return true; }
  bool sendDeviceRequest(LXDeviceRequest& request) override {
    if ((request.bmRequestType & 0x80U) == 0) {
      request.wLenDone = static_cast<std::uint32_t>(request.data.size());
      return true;
    }
    if (answers.empty()) {
      return false;
    }
    const std::size_t length = std::min(answers.size(), request.data.size());
    std::copy_n(answers.begin(), length, request.data.begin());
    request.wLenDone = static_cast<std::uint32_t>(length);
    answers = answers.subspan(length);
    return true;
  }
  void resetCurrDevice() override {}
};

class Home {
 public:
  Home() : m_folder((fs::temp_directory_path() / "nerin-fuzz-XXXXXX").string()) {
    fuzz::require(::mkdtemp(m_folder.data()) != nullptr);
    LXPlatform platform;
    platform.homeFolder = m_folder;
    platform.resourceFolder = NERIN_RESOURCES;
    platform.deviceRequester = requester;
    LXPlatform::install(std::move(platform));
  }
  ~Home() {
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
  }
  Home(const Home&) = delete;
  Home& operator=(const Home&) = delete;

  fs::path folder() const { return m_folder; }

  std::shared_ptr<AnsweringRequester> requester = std::make_shared<AnsweringRequester>();

 private:
  std::string m_folder;
};

Home& theHome() {
  static Home home;
  return home;
}

}  // namespace

fs::path fuzz::home() {
  return theHome().folder();
}

std::string_view fuzz::textOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

fs::path fuzz::putFile(const fs::path& name, std::string_view bytes) {
  fs::path path = home() / name;
  fs::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  require(file.good());
  return path;
}

void fuzz::emptyFolder(const fs::path& folder) {
  for (const auto& entry : fs::directory_iterator(folder)) {
    fs::remove_all(entry.path());
  }
}

void fuzz::answerReadsWith(std::span<const std::uint8_t> answers) {
  theHome().requester->answers = answers;
}

void fuzz::require(bool holds) {
  if (!holds) {
    std::abort();
  }
}
