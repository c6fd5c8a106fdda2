#include "screens/settings/SettingsWindow.h"

#include "screens/theme/Parts.h"

#include <QCloseEvent>
#include <QPainter>
#include <QShortcut>
#include <QVBoxLayout>

namespace fernwick {

SettingsWindow::SettingsWindow(const SettingsContext& context)
    : theme_(context.theme), view_(new SettingsView(context, this)) {
    setObjectName(QStringLiteral("settingsWindow"));
    // By this title the shell knows that it is not the main window.
    setWindowTitle(QStringLiteral("Settings"));
    setWindowIcon(themedIcon(context.theme, Icon::application, &Palette::text));
    setMinimumSize(kMinimumWidth, kMinimumHeight);
    resize(kWidth, kHeight);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view_);
    addShortcuts();
}

void SettingsWindow::addShortcuts() {
    constexpr int kTabs = 5;
    const auto add = [this](const QKeySequence& keys, auto action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    const auto turn = [this](int by) {
        const int tab = (static_cast<int>(view_->selectedTab()) + by + kTabs) % kTabs;
        view_->select(static_cast<SettingsTab>(tab));
    };
    add(QKeySequence(Qt::CTRL | Qt::Key_PageDown), [turn] { turn(1); });
    add(QKeySequence(Qt::CTRL | Qt::Key_PageUp), [turn] { turn(-1); });
    add(QKeySequence(Qt::CTRL | Qt::Key_W), [this] { close(); });
}

void SettingsWindow::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
    if (onClose) {
        onClose();
    }
}

void SettingsWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), theme_.colors().window);
}

} // namespace fernwick
