#include "screens/main/AddTunnelSheet.h"

#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"

#include <QGridLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>

namespace fernwick {

namespace {

constexpr int kMargin = 24;
constexpr int kPortWidth = 100;
constexpr int kMarkSize = 36;

} // namespace

AddTunnelSheet::AddTunnelSheet(const Theme& theme, TunnelStore& store, const platform::Clock& clock,
                               std::function<void(const Tunnel&)> onAdded, QWidget* parent)
    : QDialog(parent, Qt::Sheet), theme_(theme), store_(store), clock_(clock), onAdded_(std::move(onAdded)) {
    setObjectName(QStringLiteral("addTunnelSheet"));
    setWindowTitle(QStringLiteral("New Tunnel"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kMargin, kMargin - grid::kTight, kMargin, kMargin - grid::kTight);
    layout->setSpacing(0);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    auto* heading = buildHeading();
    heading->setFixedWidth(kWidth - 2 * kMargin);
    layout->addWidget(heading);
    layout->addSpacing(grid::kExtraLarge - grid::kTight);
    layout->addWidget(buildFields());
    layout->addSpacing(grid::kExtraLarge);
    layout->addWidget(buildButtons());

    auto* confirm = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Return), this);
    connect(confirm, &QShortcut::activated, createButton_, [this] { createButton_->click(); });
    auto* confirmOnKeypad = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Enter), this);
    connect(confirmOnKeypad, &QShortcut::activated, createButton_, [this] { createButton_->click(); });
}

QWidget* AddTunnelSheet::buildHeading() {
    auto* heading = new QWidget(this);
    auto* layout = new QGridLayout(heading);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setHorizontalSpacing(grid::kMedium);
    layout->setVerticalSpacing(2);
    layout->setColumnStretch(1, 1);
    layout->addWidget(new IconView(theme_, Icon::application, kMarkSize, &Palette::text, heading), 0, 0, 2, 1,
                      Qt::AlignVCenter);
    layout->addWidget(makeLabel(QStringLiteral("New Tunnel"), theme_.font(17, QFont::DemiBold), heading), 0, 1);
    layout->addWidget(
        makeCaption(QStringLiteral("Add a new SSH tunnel configuration"), theme_.font(12), heading), 1, 1);
    return heading;
}

QWidget* AddTunnelSheet::buildFields() {
    auto* fields = new QWidget(this);
    auto* layout = new QGridLayout(fields);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setHorizontalSpacing(grid::kMedium);
    layout->setVerticalSpacing(grid::kMedium);
    layout->setColumnStretch(1, 1);
    auto* name = addRow(*layout, {QStringLiteral("Tunnel Name"), QStringLiteral("My Server Tunnel"),
                                  QStringLiteral("tunnelNameField"), &NewTunnelFields::name});
    addRow(*layout, {QStringLiteral("Host / IP"), QStringLiteral("example.com"), QStringLiteral("hostField"),
                     &NewTunnelFields::host});
    addRow(*layout, {QStringLiteral("Username"), QStringLiteral("ubuntu"), QStringLiteral("usernameField"),
                     &NewTunnelFields::user});
    auto* port = addRow(*layout, {QStringLiteral("Local Port"), QStringLiteral("8080"),
                                  QStringLiteral("localPortField"), &NewTunnelFields::localPort});
    port->setFixedWidth(kPortWidth);
    name->setFocus();
    return fields;
}

QLineEdit* AddTunnelSheet::addRow(QGridLayout& grid, const Row& row) {
    auto* label = makeCaption(row.label, theme_.font(13), this);
    auto* field = new QLineEdit(this);
    field->setObjectName(row.objectName);
    field->setAccessibleName(row.label);
    field->setPlaceholderText(row.placeholder);
    field->setFont(theme_.font(13));
    label->setBuddy(field);
    connect(field, &QLineEdit::textChanged, this, [this, member = row.text](const QString& text) {
        fields_.*member = text.toStdString();
        createButton_->setEnabled(fields_.canCreate());
    });
    const int line = grid.rowCount();
    grid.addWidget(label, line, 0);
    grid.addWidget(field, line, 1);
    return field;
}

QWidget* AddTunnelSheet::buildButtons() {
    auto* buttons = new QWidget(this);
    auto* cancel =
        makeButton(QStringLiteral("Cancel"), ButtonRole::plain, QStringLiteral("cancelButton"), buttons);
    createButton_ = makeButton(QStringLiteral("Create Tunnel"), ButtonRole::prominent,
                               QStringLiteral("createTunnelButton"), buttons);
    createButton_->setEnabled(false);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(createButton_, &QPushButton::clicked, this, [this] { create(); });
    auto* layout = new QHBoxLayout(buttons);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kSmall);
    layout->addStretch();
    layout->addWidget(cancel);
    layout->addWidget(createButton_);
    return buttons;
}

void AddTunnelSheet::create() {
    const Tunnel tunnel = newTunnel(fields_, clock_.now());
    store_.add(tunnel);
    onAdded_(tunnel);
    accept();
}

} // namespace fernwick
