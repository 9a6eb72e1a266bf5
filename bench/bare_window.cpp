// The smallest main window that a person could use, with one menu and one line of text: the base for the time
// to the prompt. A window without a letter would not even read the system's fonts.
#include <QApplication>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QMainWindow window;
    window.setWindowTitle("bare window");
    window.resize(1180, 760);
    window.menuBar()->addMenu("File");
    window.setCentralWidget(new QLabel("bare window"));
    window.show();
    return QApplication::exec();
}
