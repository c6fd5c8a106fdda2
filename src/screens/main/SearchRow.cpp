#include "screens/main/SearchRow.h"

#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"
#include "screens/theme/StylePaint.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QToolButton>

namespace fernwick {

namespace {

constexpr int kGlassSize = 16;
constexpr int kClearSize = 16;

} // namespace

SearchRow::SearchRow(const Theme& theme, const QString& placeholder, const QString& fieldName,
                     std::function<void(const QString&)> edited, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      edited_(std::move(edited)),
      field_(new QLineEdit(this)),
      clear_(makeIconButton(theme, Icon::clear, QStringLiteral("Clear search"),
                            QStringLiteral("clearSearchButton"), this)) {
    field_->setObjectName(fieldName);
    field_->setPlaceholderText(placeholder);
    field_->setAccessibleName(placeholder);
    field_->setFont(theme.font(13));
    field_->setFrame(false);
    field_->setAutoFillBackground(false);
    field_->installEventFilter(this);
    clear_->setIconSize(QSize(kClearSize, kClearSize));
    clear_->setFixedSize(kClearSize + grid::kTight + 2, kClearSize + grid::kTight + 2);
    auto policy = clear_->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    clear_->setSizePolicy(policy);
    clear_->hide();

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(grid::kMedium + 2, grid::kTight, grid::kSmall + 2, grid::kTight);
    layout->setSpacing(grid::kTight);
    layout->addWidget(new IconView(theme, Icon::magnifier, kGlassSize, &Palette::secondary, this));
    layout->addWidget(field_);
    layout->addWidget(clear_);

    // Not textEdited, which is silent when assistive technology sets the text.
    connect(field_, &QLineEdit::textChanged, this, [this](const QString& text) {
        clear_->setVisible(!text.isEmpty());
        edited_(text);
    });
    connect(clear_, &QToolButton::clicked, this, [this] {
        field_->clear();
        field_->setFocus();
    });
}

void SearchRow::setText(const QString& text) {
    if (field_->text() != text) {
        field_->setText(text);
    }
}

QWidget& SearchRow::lastControl() const {
    return *clear_;
}

void SearchRow::focusField() {
    field_->setFocus(Qt::ShortcutFocusReason);
    field_->selectAll();
}

bool SearchRow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        update();
    }
    if (event->type() == QEvent::KeyPress && !field_->text().isEmpty()) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Escape) {
            clear_->click();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void SearchRow::paintEvent(QPaintEvent* /*event*/) {
    if (!field_->hasFocus()) {
        return;
    }
    QPainter painter(this);
    const QRectF area = QRectF(rect()).adjusted(grid::kSmall, 3, -grid::kSmall, -3);
    stylepaint::focusRing(painter, area, theme_.colors().accent, grid::kControlRadius);
}

} // namespace fernwick
