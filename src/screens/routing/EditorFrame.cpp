#include "screens/routing/EditorFrame.h"

#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace fernwick {

namespace {

constexpr int kInset = 3; // keeps the field's corners inside the rounded ones
constexpr double kHairlineOpacity = 0.3;

} // namespace

EditorFrame::EditorFrame(const Theme& theme, QWidget* field, QWidget* parent)
    : QWidget(parent), theme_(theme), field_(field) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kInset, kInset, kInset, kInset);
    layout->addWidget(field);
    field->installEventFilter(this);
}

bool EditorFrame::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        update();
    }
    return QWidget::eventFilter(watched, event);
}

void EditorFrame::paintEvent(QPaintEvent* /*event*/) {
    const Palette& colors = theme_.colors();
    QPainter painter(this);
    const QRectF area(rect());
    stylepaint::roundedBox(painter, area, colors.field, withOpacity(colors.gray, kHairlineOpacity),
                           grid::kControlRadius);
    if (field_->hasFocus()) {
        stylepaint::focusRing(painter, area, colors.accent, grid::kControlRadius);
    }
}

} // namespace fernwick
