#include "screens/theme/ScrollAreaAccess.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QScrollArea>

#include <memory>

namespace fernwick {

namespace {

// The plain widget's answers look at the bounds.
class ScrollAreaAccess final : public QAccessibleWidget {
public:
    explicit ScrollAreaAccess(QWidget* area) : QAccessibleWidget(area, QAccessible::Pane) {}
};

QAccessibleInterface* makeAccess(const QString& className, QObject* object) {
    if (className != QStringLiteral("QScrollArea")) {
        return nullptr;
    }
    auto* area = qobject_cast<QScrollArea*>(object);
    // The toolkit keeps and destroys it.
    return area != nullptr ? std::make_unique<ScrollAreaAccess>(area).release() : nullptr;
}

} // namespace

void installScrollAreaAccess() {
    QAccessible::installFactory(makeAccess);
}

} // namespace fernwick
