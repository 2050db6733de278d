// The least a Qt program with a window of the main window's size can cost: what startup measures
// the programs against.

#include <QApplication>
#include <QWidget>

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QWidget window;
  window.setFixedSize(1048, 720);
  window.show();
  return QApplication::exec();
}
