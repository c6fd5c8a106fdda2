#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    // Pictures and sizes must not depend on the machine's screen, and a test must not need one.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
