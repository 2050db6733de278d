#include "Kit/Desktop/FilePanel.h"

#include <QFileDialog>
#include <utility>

namespace {

std::function<filepanel::Answer(const filepanel::Request&)>& answererInUse() {
  static std::function<filepanel::Answer(const filepanel::Request&)> answerer;
  return answerer;
}

filepanel::Answer run(QFileDialog& dialog, const filepanel::Request& request) {
  if (answererInUse()) {
    return answererInUse()(request);
  }
  QStringList patterns;
  for (const std::string& pattern : request.patterns) {
    patterns << QString::fromStdString(pattern);
  }
  if (!patterns.isEmpty()) {
    dialog.setNameFilters({patterns.join(u' ')});
  }
  dialog.setDirectory(QString::fromStdString(request.folder.string()));
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
    return std::nullopt;
  }
  return std::filesystem::path(dialog.selectedFiles().constFirst().toStdString());
}

}  // namespace

filepanel::Answer filepanel::openFile(QWidget* parent, const Request& request) {
  QFileDialog dialog(parent);
  dialog.setFileMode(QFileDialog::ExistingFile);
  return run(dialog, request);
}

filepanel::Answer filepanel::saveFile(QWidget* parent, const Request& request) {
  QFileDialog dialog(parent);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  Request save = request;
  save.isSave = true;
  dialog.selectFile(QString::fromStdString(request.name));
  return run(dialog, save);
}

void filepanel::setAnswerer(std::function<Answer(const Request&)> answerer) {
  answererInUse() = std::move(answerer);
}
