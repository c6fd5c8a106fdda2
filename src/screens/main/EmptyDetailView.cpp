#include "screens/main/EmptyDetailView.h"

#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"

#include <QPushButton>
#include <QVBoxLayout>

namespace fernwick {

namespace {

constexpr int kIconSize = 48;
constexpr int kTextWidth = 280;

} // namespace

EmptyDetailView::EmptyDetailView(const Theme& theme, std::function<void()> onAdd, QWidget* parent)
    : QWidget(parent) {
    setObjectName(QStringLiteral("emptyDetail"));
    auto* title = makeLabel(QStringLiteral("No Tunnel Selected"), theme.font(17, QFont::DemiBold), this);
    auto* text =
        makeCaption(QStringLiteral("Select a tunnel from the sidebar or create a new one to get started."),
                    theme.font(13), this);
    text->setWordWrap(true);
    text->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    text->setFixedSize(kTextWidth, text->heightForWidth(kTextWidth));
    auto* create = makeButton(QStringLiteral("Create New Tunnel"), ButtonRole::prominent,
                              QStringLiteral("createNewTunnelButton"), this);
    create->setFont(theme.font(13, QFont::Medium));
    connect(create, &QPushButton::clicked, this, std::move(onAdd));

    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(0);
    layout->addStretch(4);
    layout->addWidget(new IconView(theme, Icon::network, kIconSize, &Palette::placeholder, this), 0,
                      Qt::AlignHCenter);
    layout->addSpacing(grid::kLarge);
    layout->addWidget(title, 0, Qt::AlignHCenter);
    layout->addSpacing(grid::kSmall);
    layout->addWidget(text, 0, Qt::AlignHCenter);
    layout->addSpacing(grid::kExtraLarge);
    layout->addWidget(create, 0, Qt::AlignHCenter);
    layout->addStretch(5);
}

} // namespace fernwick
