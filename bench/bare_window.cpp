// The smallest window that a program of this toolkit can show: the base for the time to the prompt.
#include <QApplication>
#include <QMainWindow>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QMainWindow window;
    window.setWindowTitle("bare window");
    window.resize(1180, 760);
    window.show();
    return QApplication::exec();
}
