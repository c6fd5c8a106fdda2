#include "screens/theme/AlertSheet.h"

#include "screens/theme/Grid.h"

#include <QGridLayout>
#include <QPainter>
#include <QPushButton>
#include <QTextLayout>

namespace fernwick {

namespace {

constexpr int kTextWidth = 300;
constexpr int kIconSize = 40;
constexpr int kMargin = 20;

// Text of a fixed width. A label would let a word stick out that is wider, such as the name of a file.
class WrappedLabel final : public QLabel {
public:
    WrappedLabel(const QFont& font, QWidget* parent) : QLabel(parent) {
        setTextFormat(Qt::PlainText);
        setFont(font);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }

    [[nodiscard]] QSize sizeHint() const override {
        QTextLayout lines;
        return {kTextWidth, layOut(lines)};
    }
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QTextLayout lines;
        layOut(lines);
        QPainter painter(this);
        painter.setPen(palette().color(foregroundRole()));
        lines.draw(&painter, QPointF());
    }

private:
    // Returns the height.
    int layOut(QTextLayout& lines) const {
        QString shown = text();
        shown.replace(QLatin1Char('\n'), QChar(QChar::LineSeparator));
        QTextOption option;
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        option.setTextDirection(shown.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
        option.setAlignment(QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft) | Qt::AlignAbsolute);
        lines.setFont(font());
        lines.setTextOption(option);
        lines.setText(shown);
        double height = 0.0;
        lines.beginLayout();
        for (auto line = lines.createLine(); line.isValid(); line = lines.createLine()) {
            line.setLineWidth(kTextWidth);
            line.setPosition(QPointF(0.0, height));
            height += line.height();
        }
        lines.endLayout();
        return qCeil(height);
    }
};

} // namespace

AlertSheet::AlertSheet(const Theme& theme, const QString& name, const Mark& mark, const QString& title,
                       QWidget* parent)
    : QDialog(parent, Qt::Sheet), message_(new WrappedLabel(theme.font(13), this)), buttons_(new QHBoxLayout) {
    setObjectName(name);
    setWindowTitle(title);
    auto* heading = makeLabel(title, theme.font(15, QFont::DemiBold), this);
    heading->setObjectName(name + QLatin1String("Title"));
    message_->setObjectName(name + QLatin1String("Text"));
    message_->setForegroundRole(QPalette::PlaceholderText);
    message_->hide();
    buttons_->setSpacing(grid::kSmall);
    buttons_->addStretch();
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setHorizontalSpacing(grid::kLarge);
    layout->setVerticalSpacing(grid::kTight + 2);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->setColumnMinimumWidth(1, kTextWidth);
    layout->addWidget(new IconView(theme, mark.icon, kIconSize, mark.color, this), 0, 0, 2, 1, Qt::AlignTop);
    layout->addWidget(heading, 0, 1);
    layout->addWidget(message_, 1, 1);
    layout->setRowMinimumHeight(2, grid::kMedium);
    layout->addLayout(buttons_, 3, 0, 1, 2);
}

void AlertSheet::setMessage(const QString& message) {
    message_->setText(message);
    message_->updateGeometry();
    message_->setVisible(!message.isEmpty());
    setAccessibleDescription(message);
}

QPushButton* AlertSheet::addButton(const QString& text, ButtonRole role, const QString& objectName,
                                   DialogCode result) {
    auto* button = makeButton(text, role, objectName, this);
    button->setAutoDefault(true);
    connect(button, &QPushButton::clicked, this, [this, result] { done(result); });
    buttons_->addWidget(button);
    return button;
}

} // namespace fernwick
