#include "screens/theme/Parts.h"

#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QIconEngine>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>

#include <algorithm>

namespace fernwick {

namespace {

constexpr double kDisabledOpacity = 0.4;
constexpr int kButtonIconSize = 18;

class ThemedIconEngine final : public QIconEngine {
public:
    ThemedIconEngine(const Theme& theme, Icon icon, NamedColor color)
        : theme_(theme), icon_(icon), color_(color) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State /*state*/) override {
        // on the ground of a menu's chosen item
        const QColor color = mode == QIcon::Selected ? theme_.colors().onAccent : theme_.colors().*color_;
        theme_.icons().paint(*painter, icon_,
                             mode == QIcon::Disabled ? withOpacity(color, kDisabledOpacity) : color, rect,
                             std::min(rect.width(), rect.height()));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return pixmap;
    }

    [[nodiscard]] QIconEngine* clone() const override { return new ThemedIconEngine(theme_, icon_, color_); }

private:
    const Theme& theme_;
    Icon icon_;
    NamedColor color_;
};

} // namespace

QIcon themedIcon(const Theme& theme, Icon icon, NamedColor color) {
    return QIcon(new ThemedIconEngine(theme, icon, color));
}

IconView::IconView(const Theme& theme, Icon icon, int size, NamedColor color, QWidget* parent)
    : QWidget(parent), theme_(theme), icon_(icon), size_(size), color_(color) {
    setFixedSize(size, size);
}

void IconView::setIcon(Icon icon) {
    icon_ = icon;
    update();
}

QSize IconView::sizeHint() const {
    return {size_, size_};
}

void IconView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    theme_.icons().paint(painter, icon_, theme_.colors().*color_, rect(), size_);
}

QSize ElidedLabel::minimumSizeHint() const {
    return {fontMetrics().horizontalAdvance(QChar(u'\u2026')), QLabel::minimumSizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    QRect area = contentsRect();
    if (const int free = area.width() - fontMetrics().horizontalAdvance(text()) - 1; free > 0) {
        const bool centred = alignment().testFlag(Qt::AlignHCenter);
        area.adjust(centred ? free / 2 : (alignment().testFlag(Qt::AlignRight) ? free : 0), 0,
                    centred ? -(free - free / 2) : 0, 0);
    }
    drawLine(painter, area, text(),
             testAttribute(Qt::WA_SetLayoutDirection) ? layoutDirection() : Qt::LayoutDirectionAuto, elide_);
}

void Card::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    stylepaint::roundedBox(painter, QRectF(rect()), theme_.colors().surface, theme_.colors().separator,
                           grid::kPanelRadius);
}

Divider::Divider(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(theme) {
    setFixedHeight(1);
}

void Divider::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), theme_.colors().separator);
}

QLabel* makeLabel(const QString& text, const QFont& font, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setFont(font);
    label->setText(text);
    return label;
}

QLabel* makeCaption(const QString& text, const QFont& font, QWidget* parent) {
    auto* label = makeLabel(text, font, parent);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

QToolButton* makeIconButton(const Theme& theme, Icon icon, const QString& helpText, const QString& objectName,
                            QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setIcon(themedIcon(theme, icon, &Palette::secondary));
    button->setIconSize(QSize(kButtonIconSize, kButtonIconSize));
    button->setFixedSize(grid::kToolButtonSize, grid::kToolButtonSize);
    button->setFocusPolicy(Qt::StrongFocus);
    button->setToolTip(helpText);
    button->setAccessibleName(helpText);
    button->setObjectName(objectName);
    return button;
}

void setTextToolTip(QWidget& widget, const QString& text) {
    const QString rich =
        text.isEmpty() ? QString() : QStringLiteral("<span>%1</span>").arg(text.toHtmlEscaped());
    if (rich != widget.toolTip()) {
        widget.setToolTip(rich);
        widget.setAccessibleDescription(text); // assistive technology would else read the tool tip
    }
}

QPushButton* makeButton(const QString& text, ButtonRole role, const QString& objectName, QWidget* parent) {
    auto* button = new QPushButton(text, parent);
    button->setObjectName(objectName);
    button->setAutoDefault(false);
    setButtonRole(*button, role);
    return button;
}

} // namespace fernwick
