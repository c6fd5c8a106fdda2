#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    // A test must neither need a screen nor touch the clipboard of whoever runs it.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
