#include "shell/MenuBarExtra.h"

#include "screens/menubar/MenuBarGlyph.h"
#include "screens/theme/Parts.h"
#include "shell/MenuBarExtraWindow.h"

#include <QCursor>

#include <cstdio>
#include <utility>

namespace fernwick {

MenuBarExtra::MenuBarExtra(MenuBarContext context, platform::TrayHost& host)
    : commands_(std::move(context)), host_(host), self_(*this) {}

MenuBarExtra::~MenuBarExtra() = default;

void MenuBarExtra::start() {
    appeared_ = host_.appeared.connect([this] { showIcon(); });
    absent_ = host_.absent.connect([] {
        std::fputs("Fernwick: this desktop has no tray for the icon; it will show when there is one.\n",
                   stderr);
    });
    commands_.context().dispatch.mainAfter(kStartDelay, [weak = self_.weak()] {
        if (auto* self = weak.get(); self != nullptr && !self->removed_) {
            self->host_.start();
        }
    });
}

void MenuBarExtra::remove() {
    removed_ = true;
    appeared_.reset();
    absent_.reset();
    window_.reset();
    iconView_.reset();
    icon_.reset();
    menu_.reset();
}

void MenuBarExtra::showIcon() {
    if (icon_ || removed_) {
        return;
    }
    const MenuBarContext& context = commands_.context();
    tally_ = std::make_unique<TunnelTally>(context.store, context.tunnels, context.dispatch);
    icon_ = std::make_unique<QSystemTrayIcon>();
    fillMenu();
    icon_->setContextMenu(menu_.get());
    QObject::connect(icon_.get(), &QSystemTrayIcon::activated, icon_.get(),
                     [this](QSystemTrayIcon::ActivationReason reason) { activated(reason); });
    iconView_ = std::make_unique<MenuBarIconView>(
        context.theme, *tally_, [this](const MenuBarIconView::Look& look, bool drawsAnew) {
            if (drawsAnew) {
                icon_->setIcon(menuBarIcon(look.symbol, look.appearance));
            }
            icon_->setToolTip(look.toolTip);
        });
    icon_->show();
}

void MenuBarExtra::fillMenu() {
    menu_ = std::make_unique<QMenu>();
    menu_->setObjectName(QStringLiteral("menuBarMenu"));
    for (const auto& entry : commands_.entries()) {
        if (entry.isDestructive && !menu_->isEmpty()) {
            menu_->addSeparator();
        }
        // A single ampersand would mark a shortcut.
        QString label = entry.label;
        label.replace(QLatin1Char('&'), QStringLiteral("&&"));
        auto* action =
            menu_->addAction(themedIcon(commands_.context().theme, entry.icon, &Palette::text), label);
        action->setObjectName(entry.objectName);
        QObject::connect(action, &QAction::triggered, action, [run = entry.action] { run(); });
    }
}

void MenuBarExtra::activated(QSystemTrayIcon::ActivationReason reason) {
    if (reason != QSystemTrayIcon::Trigger && reason != QSystemTrayIcon::DoubleClick) {
        return; // the icon opens its menu itself
    }
    if (window_ && window_->isVisible()) {
        window_->dismiss();
    } else if (!justClosed_) {
        openPopover();
    }
}

void MenuBarExtra::openPopover() {
    if (!window_) {
        window_ = std::make_unique<MenuBarExtraWindow>(commands_, *tally_);
        window_->onFocusLost = [this] {
            justClosed_ = true;
            commands_.context().dispatch.mainAfter(kReopenDelay, [weak = self_.weak()] {
                if (auto* self = weak.get()) {
                    self->justClosed_ = false;
                }
            });
        };
    }
    const QRect place = icon_->geometry();
    window_->openBeside(place.isEmpty() ? QRect(QCursor::pos(), QSize(1, 1)) : place);
}

} // namespace fernwick
