#include "Tests/Soak/FilePanels.h"

#include <QLineEdit>
#include <system_error>

#include <sys/stat.h>

#include "Action/Catalogue/MacroInfo.h"
#include "Action/Library/ProfileValue.h"
#include "Kit/Core/KeyedArchive.h"
#include "Tests/Soak/InputQueue.h"
#include "Tests/Support/Scratch.h"

namespace fs = std::filesystem;

namespace {

constexpr std::uintmax_t hugeSize = 3'000'000'000;

std::string wholeProfile() {
  ProfileValue profile;
  profile.setProfileId(77);
  profile.setName("From elsewhere");
  const ConfigBytes bytes = profile.fileBytes();
  return {bytes.data(), bytes.size()};
}

std::string wholeMacro() {
  MacroInfo macro;
  macro.setNameStr("From elsewhere");
  macro.keyInfoArr().push_back(std::make_shared<MacroKeyInfo>(0, MacroKeyInfo::KeyPress, 20));
  macro.keyInfoArr().push_back(std::make_shared<MacroKeyInfo>(0, MacroKeyInfo::KeyPress + 1, 30));
  return keyedarchive::archive(macro);
}

std::string noise(Dice& dice, std::size_t size) {
  std::string bytes;
  bytes.reserve(size);
  for (std::size_t at = 0; at < size; ++at) {
    bytes += static_cast<char>(dice.roll(256));
  }
  return bytes;
}

void put(const fs::path& path, const std::string& bytes) {
  std::error_code error;
  fs::remove_all(path, error);
  writeText(path, bytes);
}

}  // namespace

FilePanels::FilePanels(Dice& dice, fs::path folder) : m_dice(dice), m_folder(std::move(folder)) {
  std::error_code error;
  fs::create_directories(m_folder, error);
  for (const char* suffix : {".pro", ".mac"}) {
    const bool isProfile = std::string_view(suffix) == ".pro";
    const std::string whole = isProfile ? wholeProfile() : wholeMacro();
    std::string bent = whole;
    for (int times = 0; times < 8; ++times) {
      bent[m_dice.roll(bent.size())] = static_cast<char>(m_dice.roll(256));
    }
    put(m_folder / ("good" + std::string(suffix)), whole);
    put(m_folder / ("short" + std::string(suffix)), whole.substr(0, whole.size() / 2));
    put(m_folder / ("bent" + std::string(suffix)), bent);
    put(m_folder / ("empty" + std::string(suffix)), "");
    put(m_folder / ("noise" + std::string(suffix)), noise(m_dice, 6000));
    put(m_folder / ("huge" + std::string(suffix)), whole);
    fs::resize_file(m_folder / ("huge" + std::string(suffix)), hugeSize, error);
    fs::create_directories(m_folder / ("folder" + std::string(suffix)), error);
    fs::remove(m_folder / ("nowhere" + std::string(suffix)), error);
    fs::create_symlink("/nowhere/at/all", m_folder / ("nowhere" + std::string(suffix)), error);
    fs::remove(m_folder / ("zero" + std::string(suffix)), error);
    fs::create_symlink("/dev/zero", m_folder / ("zero" + std::string(suffix)), error);
    ::mkfifo((m_folder / ("pipe" + std::string(suffix))).c_str(), S_IRUSR | S_IWUSR);
    put(m_folder / ("locked" + std::string(suffix)), whole);
    ::chmod((m_folder / ("locked" + std::string(suffix))).c_str(), 0);
    for (const char* name : {"good", "good", "good", "short", "bent", "empty", "noise", "huge",
                             "folder", "nowhere", "zero", "pipe", "locked"}) {
      m_files.push_back((m_folder / (name + std::string(suffix))).string());
    }
  }
  m_files.insert(m_files.end(), {"/bin/true", "/usr/share/applications", "/proc/self/mem"});
}

void FilePanels::act(QFileDialog& panel, const std::function<void(const std::string&)>& tell) {
  panel.setOption(QFileDialog::ReadOnly);
  if (m_dice.percent(25)) {
    tell("gives up the file panel");
    panel.reject();
    return;
  }
  auto* field = panel.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
  std::string name = m_dice.of(m_files);
  if (panel.acceptMode() == QFileDialog::AcceptSave) {
    const std::vector<std::string> targets{(m_folder / "saved").string(),
                                           (m_folder / "saved.pro").string(),
                                           (m_folder / "good.pro").string(),
                                           (m_folder / "folder.pro").string(),
                                           "/proc/nothing.pro",
                                           (m_folder / "none/there.pro").string(),
                                           (m_folder / std::string(300, 'n')).string(),
                                           (m_folder / "Ünï côdé").string(),
                                           (m_folder / "pipe.pro").string()};
    name = m_dice.of(targets);
  }
  if (field == nullptr) {
    tell("finds no field in the file panel");
    panel.reject();
    return;
  }
  tell("takes the file " + name.substr(0, 200));
  field->setText(QString::fromStdString(name));
  int time = 0;
  field->setFocus();
  InputQueue(panel, time).hit(Qt::Key_Return, {});
}
