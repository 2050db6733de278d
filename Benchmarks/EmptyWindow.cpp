// The minimum that a Qt program with a window of this size costs; `startup` measures the programs
// against it.

#include <QApplication>
#include <QWidget>

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QWidget window;
  window.setFixedSize(1048, 720);
  window.show();
  return QApplication::exec();
}
