#include "screens/theme/WindowAccess.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include <memory>

namespace fernwick {

namespace {

// A widget may be put into another one after this was made.
class WindowAccess final : public QAccessibleWidget {
public:
    explicit WindowAccess(QWidget* window) : QAccessibleWidget(window) {}

    [[nodiscard]] QAccessible::Role role() const override {
        return widget()->isWindow() ? QAccessible::Window : QAccessibleWidget::role();
    }
};

QAccessibleInterface* makeAccess(const QString& className, QObject* object) {
    if (className != QStringLiteral("QWidget")) {
        return nullptr;
    }
    auto* window = qobject_cast<QWidget*>(object);
    // The toolkit keeps and destroys it.
    return window != nullptr && window->isWindow() ? std::make_unique<WindowAccess>(window).release() : nullptr;
}

} // namespace

void installWindowAccess() {
    QAccessible::installFactory(makeAccess);
}

} // namespace fernwick
