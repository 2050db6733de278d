#include "Kit/Desktop/FilePanel.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QSortFilterProxyModel>
#include <utility>

#include "Kit/Core/ProcessWide.h"
#include "Kit/Core/Utf8.h"
#include "Kit/Desktop/HeldKeys.h"

namespace {

ProcessWide<std::function<filepanel::Answer(const filepanel::Request&)>> answererInUse;

bool isProgram(const QFileInfo& file) {
  const QString suffix = file.suffix();
  return file.isExecutable() || suffix == u"app" || suffix == u"desktop" || suffix == u"AppImage";
}

// Keeps folders and programs. Name patterns could not: programs usually have no extension.
class ProgramFilter : public QSortFilterProxyModel {
 public:
  using QSortFilterProxyModel::QSortFilterProxyModel;

 protected:
  bool filterAcceptsRow(int row, const QModelIndex& parent) const override {
    const auto* files = qobject_cast<const QFileSystemModel*>(sourceModel());
    const QFileInfo file = files->fileInfo(files->index(row, 0, parent));
    return file.isDir() || isProgram(file);
  }
};

class Panel : public QFileDialog {
 public:
  Panel(QWidget* parent, filepanel::Kind kind) : QFileDialog(parent), m_kind(kind) {
    setOption(QFileDialog::DontUseNativeDialog);
    if (m_kind == filepanel::Kind::Program) {
      setProxyModel(new ProgramFilter(this));
    }
  }

 protected:
  // The user can type the name of a file that is not a program; the panel then stays open.
  void accept() override {
    const QStringList files = selectedFiles();
    const QFileInfo file(files.isEmpty() ? QString() : files.constFirst());
    if (m_kind != filepanel::Kind::Program || !file.isFile() || isProgram(file)) {
      QFileDialog::accept();
    }
  }

 private:
  filepanel::Kind m_kind;
};

std::filesystem::path withExtension(std::filesystem::path path, const std::string& extension) {
  if (utf8::lowercased(path.extension().string()) != extension) {
    path += extension;
  }
  return path;
}

filepanel::Answer run(Panel& dialog, const filepanel::Request& request) {
  if (*answererInUse) {
    return (*answererInUse)(request);
  }
  QStringList patterns;
  for (const std::string& pattern : request.patterns) {
    patterns << QString::fromStdString(pattern);
  }
  if (!patterns.isEmpty()) {
    dialog.setNameFilters({patterns.join(u' ')});
  }
  heldkeys::dropIn(dialog);
  dialog.setDirectory(QString::fromStdString(request.folder.string()));
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
    return std::nullopt;
  }
  return std::filesystem::path(dialog.selectedFiles().constFirst().toStdString());
}

}  // namespace

filepanel::Answer filepanel::openFile(QWidget* parent, const Request& request) {
  Panel dialog(parent, request.kind);
  dialog.setFileMode(QFileDialog::ExistingFile);
  return run(dialog, request);
}

filepanel::Answer filepanel::openProgram(QWidget* parent) {
  std::error_code error;
  const std::filesystem::path folder = "/Applications";
  return openFile(
      parent,
      {.folder = std::filesystem::is_directory(folder, error) ? folder : "/usr/share/applications",
       .kind = Kind::Program});
}

filepanel::Answer filepanel::saveFile(QWidget* parent, const Request& request) {
  Panel dialog(parent, request.kind);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  Request save = request;
  save.isSave = true;
  dialog.selectFile(QString::fromStdString(request.name));
  const Answer chosen = run(dialog, save);
  return chosen ? Answer(withExtension(*chosen, request.extension)) : std::nullopt;
}

void filepanel::setAnswerer(std::function<Answer(const Request&)> answerer) {
  *answererInUse = std::move(answerer);
}
