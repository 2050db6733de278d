// The panels for choosing a file: what the window requests, and what the desktop shows.

#include <QAbstractItemView>
#include <QApplication>
#include <QDesktopServices>
#include <QFileDialog>
#include <QLineEdit>
#include <QTest>
#include <QTimer>
#include <QUrl>

#include <gmock/gmock.h>

#include "App/RealPlatform.h"
#include "Kit/Desktop/DesktopServices.h"
#include "Tests/Support/ViewTest.h"

namespace fs = std::filesystem;

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

// Stands in for the desktop's default applications.
class Opener : public QObject {
  Q_OBJECT

 public:
  Q_INVOKABLE void open(const QUrl& url) { opened.push_back(url.toString().toStdString()); }
  std::vector<std::string> opened;
};

class FilePanel : public ViewTest {
 protected:
  FilePanel() {
    writeText(m_folder / "a.pro", "a");
    writeText(m_folder / "b.PRO", "b");
    writeText(m_folder / "notes.txt", "c");
    writeText(m_folder / "editor.desktop", "d");
    writeText(m_folder / "tool.AppImage", "e");
    writeText(m_folder / "script", "f");
    fs::permissions(m_folder / "script", fs::perms::owner_all);
    fs::create_directories(m_folder / "inner");
  }
  // Acts on the next panel.
  static void onPanel(std::function<void(QFileDialog&)> act) {
    filepanel::setAnswerer({});
    QTimer::singleShot(0, qApp, [act = std::move(act)] {
      for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* panel = qobject_cast<QFileDialog*>(widget); panel && panel->isVisible()) {
          act(*panel);
          if (panel->isVisible()) {
            panel->reject();
          }
          return;
        }
      }
      ADD_FAILURE() << "no panel is shown";
    });
  }
  static void enter(QFileDialog& panel, const fs::path& path) {
    panel.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
        ->setText(QString::fromStdString(path.string()));
    QMetaObject::invokeMethod(&panel, "accept");
  }
  // What the panel lists after it has read its folder.
  static std::vector<std::string> shownIn(const QFileDialog& panel) {
    const auto* list = panel.findChild<QAbstractItemView*>(QStringLiteral("listView"));
    std::vector<std::string> names;
    const auto read = [&] {
      names.clear();
      for (int row = 0; row < list->model()->rowCount(list->rootIndex()); ++row) {
        names.push_back(
            list->model()->index(row, 0, list->rootIndex()).data().toString().toStdString());
      }
      return !names.empty();
    };
    EXPECT_TRUE(QTest::qWaitFor(read));
    return names;
  }
  void startNamed() {
    start();
    click("profileNewBtn");
    click("applyBtn");
  }

  const fs::path m_folder = home() / "files";
};

}  // namespace

TEST_F(FilePanel, AFileIsChosenFromItsFolderByItsPattern) {
  onPanel([this](QFileDialog& panel) {
    EXPECT_EQ(panel.directory().absolutePath().toStdString(), m_folder.string());
    EXPECT_EQ(panel.fileMode(), QFileDialog::ExistingFile);
    EXPECT_EQ(panel.acceptMode(), QFileDialog::AcceptOpen);
    EXPECT_EQ(panel.nameFilters(), QStringList{QStringLiteral("*.pro *.PRO")});
    enter(panel, m_folder / "a.pro");
  });
  EXPECT_EQ(filepanel::openFile(nullptr, {.folder = m_folder, .patterns = {"*.pro", "*.PRO"}}),
            m_folder / "a.pro");
}

TEST_F(FilePanel, ACancelledPanelChoosesNothing) {
  onPanel([](QFileDialog& panel) { panel.reject(); });
  EXPECT_EQ(filepanel::openFile(nullptr, {.folder = m_folder}), std::nullopt);
}

TEST_F(FilePanel, AFolderCannotBeChosen) {
  onPanel([this](QFileDialog& panel) {
    enter(panel, m_folder / "inner");
    EXPECT_TRUE(panel.isVisible());
  });
  EXPECT_EQ(filepanel::openFile(nullptr, {.folder = m_folder}), std::nullopt);
}

TEST_F(FilePanel, ASavePanelProposesTheNameAndLeavesReplacingToItsCaller) {
  onPanel([this](QFileDialog& panel) {
    EXPECT_EQ(panel.acceptMode(), QFileDialog::AcceptSave);
    EXPECT_EQ(panel.directory().absolutePath().toStdString(), m_folder.string());
    EXPECT_EQ(panel.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text(),
              QStringLiteral("Office"));
    EXPECT_TRUE(panel.testOption(QFileDialog::DontConfirmOverwrite));
    enter(panel, m_folder / "a.pro");
  });
  EXPECT_EQ(filepanel::saveFile(nullptr, {.folder = m_folder, .name = "Office"}),
            m_folder / "a.pro");
}

TEST_F(FilePanel, EveryPanelIsTheToolkitsOwn) {
  const auto isOwn = [](QFileDialog& panel) {
    EXPECT_TRUE(panel.testOption(QFileDialog::DontUseNativeDialog));
  };
  for (const filepanel::Kind kind : {filepanel::Kind::File, filepanel::Kind::Program}) {
    onPanel(isOwn);
    EXPECT_EQ(filepanel::openFile(nullptr, {.folder = m_folder, .kind = kind}), std::nullopt);
  }
  onPanel(isOwn);
  EXPECT_EQ(filepanel::saveFile(nullptr, {.folder = m_folder}), std::nullopt);
}

TEST_F(FilePanel, ASavedFileGetsItsExtensionOnce) {
  for (const auto& [typed, saved] : {std::pair("new", "new.pro"), std::pair("a.pro", "a.pro"),
                                     std::pair("A.PRO", "A.PRO"), std::pair("1.2", "1.2.pro")}) {
    onPanel([&](QFileDialog& panel) { enter(panel, m_folder / typed); });
    EXPECT_EQ(filepanel::saveFile(nullptr, {.folder = m_folder, .extension = ".pro"}),
              m_folder / saved);
  }
}

TEST_F(FilePanel, OnlyProgramsCanBeChosenAsPrograms) {
  const filepanel::Request programs{.folder = m_folder, .kind = filepanel::Kind::Program};
  for (const char* name : {"editor.desktop", "tool.AppImage", "script"}) {
    onPanel([&](QFileDialog& panel) { enter(panel, m_folder / name); });
    EXPECT_EQ(filepanel::openFile(nullptr, programs), m_folder / name);
  }
  onPanel([&](QFileDialog& panel) {
    EXPECT_THAT(shownIn(panel), Contains("editor.desktop"));
    EXPECT_THAT(shownIn(panel), Contains("inner"));
    EXPECT_THAT(shownIn(panel), Contains("script"));
    EXPECT_THAT(shownIn(panel), Not(Contains("notes.txt")));
    enter(panel, m_folder / "notes.txt");
    EXPECT_TRUE(panel.isVisible());
  });
  EXPECT_EQ(filepanel::openFile(nullptr, programs), std::nullopt);
}

TEST_F(FilePanel, ImportAsksForOneProfileFile) {
  start();
  click("profileImportBtn");
  ASSERT_EQ(m_panels.size(), 1U);
  EXPECT_FALSE(m_panels[0].isSave);
  EXPECT_THAT(m_panels[0].patterns, Contains("*.pro"));
  EXPECT_THAT(m_panels[0].patterns, Not(Contains("*")));
  EXPECT_EQ(m_panels[0].kind, filepanel::Kind::File);
}

TEST_F(FilePanel, ImportRenamesATwinAndShowsItInTheMenu) {
  startNamed();
  writeText(home() / "other.pro", profileBytes(library().currProfile()->profileId(), "NewPF_1", 2));
  m_chosen = home() / "other.pro";
  click("profileImportBtn");
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("NewPF_1.pro", "NewPF_1_1.pro"));
  EXPECT_THAT(m_shown, IsEmpty());
  EXPECT_FALSE(editState->isNeedSave());
  ASSERT_EQ((*profileNode)->children().size(), 2U);
  EXPECT_EQ((*profileNode)->children()[1]->nodeData()->titleStr(), "NewPF_1_1");
  EXPECT_EQ((*profileNode)->children()[1]->nodeData()->type(), 1);
}

TEST_F(FilePanel, TheLibraryIsWrittenEvenWhenImportIsCancelledOrFails) {
  startNamed();
  fs::remove_all(libraryFolder());
  click("profileImportBtn");
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("NewPF_1.pro"));
  fs::remove_all(libraryFolder());
  m_chosen = home() / "missing.pro";
  click("profileImportBtn");
  EXPECT_THAT(m_shown, ElementsAre("Profile data destruction"));
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("NewPF_1.pro"));
}

TEST_F(FilePanel, ExportWritesTheProfileAsStored) {
  startNamed();
  editState->edit().poRate = (editState->selProfile().poRate + 1) % 4;
  m_chosen = home() / "Office";
  click("profileExportBtn");
  ASSERT_EQ(m_panels.size(), 1U);
  EXPECT_TRUE(m_panels[0].isSave);
  EXPECT_EQ(m_panels[0].folder, home() / "Documents");
  EXPECT_EQ(m_panels[0].name, "NewPF_1");
  EXPECT_EQ(textOfFile(home() / "Office.pro"), textOfFile(libraryFolder() / "NewPF_1.pro"));
  EXPECT_THAT(m_shown, IsEmpty());
}

TEST_F(FilePanel, TheLinkedProgramIsStoredAsChosen) {
  startNamed();
  m_chosen = "/usr/share/applications/Some Program.desktop";
  click("linkProBtn");
  ASSERT_EQ(m_panels.size(), 1U);
  const fs::path applications = "/Applications";
  EXPECT_EQ(m_panels[0].folder,
            fs::is_directory(applications) ? applications : "/usr/share/applications");
  EXPECT_EQ(m_panels[0].kind, filepanel::Kind::Program);
  EXPECT_FALSE(m_panels[0].isSave);
  EXPECT_TRUE(editState->isNeedSave());
  EXPECT_TRUE(button("applyBtn").isEnabled());
  EXPECT_THAT(button("linkProBtn").toolTip().toStdString(),
              testing::HasSubstr("/usr/share/applications/Some Program.desktop"));
  click("applyBtn");
  bool isActive = true;
  EXPECT_EQ(library().getLinkAppPath(0, isActive), "/usr/share/applications/Some Program.desktop");
  EXPECT_FALSE(isActive);
  EXPECT_EQ(library().currProfile()->activeAppPath(),
            "/usr/share/applications/Some Program.desktop");
  EXPECT_FALSE(library().currProfile()->isActiveApp());
}

TEST_F(FilePanel, ACancelledLinkIsNoEdit) {
  start();
  click("linkProBtn");
  EXPECT_FALSE(editState->isNeedSave());
  EXPECT_FALSE(library().currActivePath().has_value());
}

TEST_F(FilePanel, AMousesReportWaitsForThePanel) {
  startNamed();
  m_duringPanel = [this] {
    report(1, 4);
    EXPECT_EQ(library().currFWProfileIndex(), 0);
  };
  m_chosen = "/bin/true";
  click("linkProBtn");
  process();
  EXPECT_EQ(library().currFWProfileIndex(), 4);
}

TEST_F(FilePanel, FilesAndPagesAreOpenedByTheDesktop) {
  Opener opener;
  QDesktopServices::setUrlHandler(QStringLiteral("https"), &opener, "open");
  QDesktopServices::setUrlHandler(QStringLiteral("file"), &opener, "open");
  const std::string file = (m_folder / "a.pro").string();
  EXPECT_TRUE(desktopservices::open("https://nerin.example/register"));
  EXPECT_TRUE(desktopservices::open(file));
  EXPECT_FALSE(desktopservices::open((m_folder / "missing.html").string()));
  EXPECT_FALSE(desktopservices::open("mailto:nobody@nerin.example"));
  EXPECT_FALSE(desktopservices::open(""));
  QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
  QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
  EXPECT_THAT(opener.opened, ElementsAre("https://nerin.example/register", "file://" + file));
}

#include "FilePanelTest.moc"

TEST_F(FilePanel, StartsInTheUsersDocumentsWhereverTheyAre) {
  const QByteArray homeBefore = qgetenv("HOME");
  const QByteArray settingsBefore = qgetenv("XDG_CONFIG_HOME");
  const fs::path user = home() / "user";
  fs::create_directories(user / "settings");
  qputenv("HOME", QByteArray::fromStdString(user.string()));
  qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString((user / "settings").string()));
  const auto folder = realPlatform(nullptr, nullptr).documentsFolder;

  EXPECT_EQ(folder(), user) << "no such folder was made yet";
  fs::create_directories(user / "Documents");
  EXPECT_EQ(folder(), user / "Documents");
  writeText(user / "settings/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/Meine Dokumente\"\n");
  EXPECT_EQ(folder(), user / "Documents") << "the folder that is named does not exist";
  fs::create_directories(user / "Meine Dokumente");
  EXPECT_EQ(folder(), user / "Meine Dokumente");
  writeText(user / "settings/user-dirs.dirs",
            "XDG_DOCUMENTS_DIR=\"" + (home() / "elsewhere").string() + "\"\n");
  fs::create_directories(home() / "elsewhere");
  EXPECT_EQ(folder(), home() / "elsewhere");

  qputenv("HOME", homeBefore);
  if (settingsBefore.isNull()) {
    qunsetenv("XDG_CONFIG_HOME");
  } else {
    qputenv("XDG_CONFIG_HOME", settingsBefore);
  }
}
