#include "screens/main/MainWindow.h"

#include "screens/main/ContentView.h"
#include "screens/theme/Parts.h"

#include <QCloseEvent>
#include <QMenuBar>

namespace fernwick {

MainWindow::MainWindow(const MainWindowContext& context) : content_(new ContentView(context, this)) {
    setObjectName(QStringLiteral("mainWindow"));
    setWindowTitle(QStringLiteral("Fernwick"));
    setWindowIcon(themedIcon(context.theme, Icon::application, &Palette::text));
    setMinimumSize(kMinimumWidth, kMinimumHeight);
    resize(kMinimumWidth + 60, kMinimumHeight + 40);
    setCentralWidget(content_);
    buildMenus(context);
}

void MainWindow::buildMenus(const MainWindowContext& context) {
    auto* file = menuBar()->addMenu(QStringLiteral("&File"));
    auto* close = file->addAction(QStringLiteral("Close Window"), this, [this] { this->close(); });
    close->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_W));
    if (context.openSettings) {
        auto* settings = file->addAction(QStringLiteral("Preferences..."), this, context.openSettings);
        settings->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma));
        settings->setMenuRole(QAction::PreferencesRole);
    }
    auto* quit = file->addAction(QStringLiteral("Quit"), this, [this] {
        if (onQuit) {
            onQuit();
        }
    });
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    quit->setMenuRole(QAction::QuitRole);

    auto* view = menuBar()->addMenu(QStringLiteral("&View"));
    auto* sidebar =
        view->addAction(QStringLiteral("Show or Hide Sidebar"), this, [this] { content_->toggleSidebar(); });
    sidebar->setShortcut(QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_S));
    auto* search = view->addAction(QStringLiteral("Search Tunnels"), this, [this] { content_->focusSearch(); });
    search->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F));
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (shouldClose && !shouldClose()) {
        event->ignore();
        return;
    }
    QMainWindow::closeEvent(event);
}

} // namespace fernwick
