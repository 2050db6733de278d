// Another program of the user: an empty window of the application that is named on the command
// line.

#include <QApplication>
#include <QWidget>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const QString name = application.arguments().value(1);
  // The class of the window on an X server, and its id on Wayland.
  QCoreApplication::setApplicationName(name);
  QGuiApplication::setDesktopFileName(name);
  QWidget window;
  window.setWindowTitle(name);
  window.setFixedSize(300, 200);
  window.show();
  return QApplication::exec();
}
