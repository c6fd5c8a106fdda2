#include "screens/main/DeleteConfirmation.h"

#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"

#include <QGridLayout>
#include <QPushButton>

namespace fernwick {

namespace {

constexpr int kTextWidth = 300;
constexpr int kIconSize = 40;
constexpr int kMargin = 20;

} // namespace

DeleteConfirmation::DeleteConfirmation(const Theme& theme, std::string_view name,
                                       std::function<void()> onDelete, QWidget* parent)
    : QDialog(parent, Qt::Sheet), text_(makeLabel(QString(), theme.font(13), this)) {
    setObjectName(QStringLiteral("deleteConfirmation"));
    setWindowTitle(QStringLiteral("Delete Tunnel"));
    auto* title = makeLabel(windowTitle(), theme.font(15, QFont::DemiBold), this);
    text_->setObjectName(QStringLiteral("deleteConfirmationText"));
    text_->setForegroundRole(QPalette::PlaceholderText);
    text_->setWordWrap(true);
    text_->setFixedWidth(kTextWidth);
    setName(name);
    auto* cancel =
        makeButton(QStringLiteral("Cancel"), ButtonRole::plain, QStringLiteral("deleteCancelButton"), this);
    auto* confirm = makeButton(QStringLiteral("Delete"), ButtonRole::destructive,
                               QStringLiteral("deleteConfirmButton"), this);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(confirm, &QPushButton::clicked, this, &QDialog::accept);
    connect(this, &QDialog::accepted, this, std::move(onDelete));

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(grid::kSmall);
    buttons->addStretch();
    buttons->addWidget(cancel);
    buttons->addWidget(confirm);
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setHorizontalSpacing(grid::kLarge);
    layout->setVerticalSpacing(grid::kTight + 2);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(new IconView(theme, Icon::warning, kIconSize, &Palette::red, this), 0, 0, 2, 1,
                      Qt::AlignTop);
    layout->addWidget(title, 0, 1);
    layout->addWidget(text_, 1, 1);
    layout->setRowMinimumHeight(2, grid::kMedium);
    layout->addLayout(buttons, 3, 0, 1, 2);
    cancel->setFocus();
}

void DeleteConfirmation::setName(std::string_view name) {
    text_->setText(QStringLiteral("Are you sure you want to delete \"%1\"? This action cannot be undone.")
                       .arg(displayLine(name)));
}

} // namespace fernwick
