#include "shell/MainWindowScene.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

namespace fernwick {

MainWindowScene::MainWindowScene(MainWindowContext context, RoutingLayer& routing, AppDelegate& delegate,
                                 WindowManager& windows)
    : context_(std::move(context)), routing_(routing), delegate_(delegate), windows_(windows), self_(*this) {}

MainWindowScene::~MainWindowScene() = default;

void MainWindowScene::open() {
    if (!window_) {
        window_ = std::make_unique<MainWindow>(context_);
        window_->onQuit = [] { QCoreApplication::quit(); };
        window_->installEventFilter(this);
    }
    makeKeyAndOrderFront(*window_);
}

bool MainWindowScene::eventFilter(QObject* watched, QEvent* event) {
    if (watched == window_.get() && event->type() == QEvent::Show) {
        appeared();
    }
    return QObject::eventFilter(watched, event);
}

void MainWindowScene::stayHidden() {
    routing_.setTunnelStore(context_.store);
    windows_.setOpenWindowAction([weak = self_.weak()] {
        if (auto* scene = weak.get()) {
            scene->open();
        }
    });
}

void MainWindowScene::appeared() {
    stayHidden();
    context_.dispatch.main([weak = self_.weak()] {
        if (auto* scene = weak.get(); scene != nullptr && scene->window_) {
            scene->delegate_.setMainWindow(*scene->window_);
        }
    });
}

} // namespace fernwick
