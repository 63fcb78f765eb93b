// A window of Qt's with nothing in it: what the application's figures are compared with.
#include <QApplication>
#include <QWidget>

int main(int argumentCount, char** arguments) {
  QApplication qt(argumentCount, arguments);
  QWidget window;
  window.resize(1000, 760);
  window.show();
  return QApplication::exec();
}
