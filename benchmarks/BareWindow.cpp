// The baseline for the start of the application: the least that shows a window of the same size with Qt
// Widgets.
#include <QApplication>
#include <QLabel>
#include <QMainWindow>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QMainWindow window;
    window.setWindowTitle(QStringLiteral("Bare"));
    window.setCentralWidget(new QLabel(QStringLiteral("Bare"), &window));
    window.resize(900, 600);
    window.show();
    return QApplication::exec();
}
