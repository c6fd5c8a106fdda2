#include "screens/theme/AlertSheet.h"

#include "screens/theme/Grid.h"
#include "screens/theme/LongTextView.h"

#include <QGridLayout>
#include <QPainter>
#include <QPushButton>
#include <QTextLayout>

namespace fernwick {

namespace {

constexpr int kTextWidth = 300;
constexpr int kIconSize = 40;
constexpr int kMargin = 20;
constexpr int kTallestMessage = 260; // a higher one is scrolled
constexpr QSize kLongTextSize(400, 240);
constexpr qsizetype kLongestMessage = 2000;     // characters whose height is worth asking for
constexpr qsizetype kLongestDescription = 1000; // characters that are read out in one go
enum Row { kHeadingRow, kMessageRow, kAccessoryRow, kGapRow, kButtonRow };

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
    : QDialog(parent, Qt::Sheet),
      theme_(theme),
      layout_(new QGridLayout(this)),
      message_(new WrappedLabel(theme.font(13), this)),
      buttons_(new QHBoxLayout) {
    setObjectName(name);
    setWindowTitle(title);
    auto* heading = makeLabel(title, theme.font(15, QFont::DemiBold), this);
    heading->setObjectName(name + QLatin1String("Title"));
    message_->setObjectName(name + QLatin1String("Text"));
    message_->setForegroundRole(QPalette::PlaceholderText);
    message_->hide();
    buttons_->setSpacing(grid::kSmall);
    buttons_->addStretch();
    layout_->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout_->setHorizontalSpacing(grid::kLarge);
    layout_->setVerticalSpacing(grid::kTight + 2);
    layout_->setSizeConstraint(QLayout::SetFixedSize);
    layout_->setColumnMinimumWidth(1, kTextWidth);
    layout_->addWidget(new IconView(theme, mark.icon, kIconSize, mark.color, this), kHeadingRow, 0, 2, 1,
                       Qt::AlignTop);
    layout_->addWidget(heading, kHeadingRow, 1);
    layout_->addWidget(message_, kMessageRow, 1);
    layout_->setRowMinimumHeight(kGapRow, grid::kMedium);
    layout_->addLayout(buttons_, kButtonRow, 0, 1, 2);
}

void AlertSheet::setMessage(const QString& message) {
    setAccessibleDescription(message.left(kLongestDescription));
    bool scrolled = message.size() > kLongestMessage;
    message_->setText(scrolled ? QString() : message);
    scrolled = scrolled || message_->sizeHint().height() > kTallestMessage;
    message_->updateGeometry();
    message_->setVisible(!message.isEmpty() && !scrolled);
    if (scrolled && longMessage_ == nullptr) {
        longMessage_ = new LongTextView(theme_, this);
        longMessage_->setObjectName(objectName() + QLatin1String("LongText"));
        longMessage_->setAccessibleName(windowTitle());
        longMessage_->setFixedSize(kLongTextSize);
        layout_->addWidget(longMessage_, kMessageRow, 1);
    }
    if (longMessage_ != nullptr) {
        longMessage_->showText(scrolled ? message : QString());
        longMessage_->setVisible(scrolled);
    }
}

void AlertSheet::addAccessory(QWidget* accessory) {
    layout_->addWidget(accessory, kAccessoryRow, 1);
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
