#include "screens/routing/ProxyEditView.h"

#include "screens/routing/DetailSection.h"
#include "screens/routing/PortText.h"
#include "screens/routing/ProxyField.h"
#include "screens/routing/RadioRow.h"
#include "screens/theme/ChoiceMenu.h"
#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/Switch.h"
#include "screens/theme/TextField.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <utility>

namespace fernwick {

namespace {

constexpr int kMargin = 20;
constexpr int kHeaderHeight = 52;
constexpr int kFooterHeight = 56;
constexpr int kAddressWidth = 180;
constexpr int kPortWidth = 80;
constexpr int kTunnelWidth = 220;
constexpr std::array kProtocols{ProxyProtocol::socks5, ProxyProtocol::socks4, ProxyProtocol::https};
constexpr std::string_view kWithoutOptions = "SOCKS5";

// A text, and a switch at the right end of the row; a click on the text throws the switch too.
class SwitchRow final : public QWidget {
public:
    SwitchRow(const Theme& theme, const QString& text, const char* objectName, bool on,
              std::function<void(bool)> thrown, QWidget* parent)
        : QWidget(parent) {
        auto* label = makeLabel(text, theme.font(13), this);
        label->setWordWrap(true);
        auto* control = new Switch(theme, this);
        control->setObjectName(QString::fromLatin1(objectName));
        control->setAccessibleName(text);
        control->setChecked(on);
        connect(control, &QCheckBox::toggled, this, std::move(thrown));
        auto* row = new QHBoxLayout(this);
        row->setContentsMargins(0, 0, 0, 0);
        row->setSpacing(grid::kMedium);
        row->addWidget(label, 1);
        row->addWidget(control);
    }
};

} // namespace

ProxyEditView::ProxyEditView(const Theme& theme, ProxyRuleStore& store, TunnelNames tunnels,
                             std::optional<ProxyConfig> proxy, QWidget* parent)
    : QDialog(parent, Qt::Sheet),
      theme_(theme),
      store_(store),
      tunnels_(std::move(tunnels)),
      isNew_(!proxy),
      proxy_(proxy ? *std::move(proxy) : ProxyConfig::create()),
      portText_(QString::number(proxy_.port)),
      heading_(new ElidedLabel(this)) {
    setObjectName(QStringLiteral("proxyEditView"));
    setAttribute(Qt::WA_DeleteOnClose);
    setFixedSize(kWidth, kHeight);
    heading_->setObjectName(QStringLiteral("proxyEditHeading"));
    heading_->setFont(theme.font(15, QFont::DemiBold));
    heading_->setMinimumHeight(kHeaderHeight);
    heading_->setContentsMargins(kMargin, 0, kMargin, 0);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(heading_);
    layout->addWidget(new Divider(theme, this));
    layout->addWidget(buildForm(), 1);
    layout->addWidget(new Divider(theme, this));
    layout->addWidget(buildButtons());
    showAddress();
    showOptions();
    auto* name = findChild<QLineEdit*>(QStringLiteral("proxyNameField"));
    name->setFocus();
    name->selectAll();
}

QWidget* ProxyEditView::buildForm() {
    auto* page = new QScrollArea(this);
    page->setObjectName(QStringLiteral("proxyEditForm"));
    page->setFrameShape(QFrame::NoFrame);
    page->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    page->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // nothing is drawn of it while all fits
    page->setFocusPolicy(Qt::NoFocus);
    page->setWidgetResizable(true);
    page->viewport()->setAutoFillBackground(false);
    auto* column = new QWidget;
    auto* form = new QVBoxLayout(column);
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    form->setContentsMargins(kMargin, grid::kLarge, kMargin - bar, grid::kLarge);
    form->setSpacing(grid::kLarge);
    auto& top = addSection(*form, QString());
    auto* name = makeField(
        {"proxyNameField", QStringLiteral("Name"), QStringLiteral("e.g. My Proxy"), proxy_.name}, &top);
    top.addRow(name);
    addServer(*form);
    addProtocol(*form);
    addAuthentication(*form);
    addOptions(*form);
    addTunnel(*form);
    addAdvanced(*form);
    form->addStretch();
    page->setWidget(column);
    column->setAutoFillBackground(false);
    return page;
}

DetailSection& ProxyEditView::addSection(QVBoxLayout& form, const QString& title) {
    auto* section = new DetailSection(theme_, title, form.parentWidget());
    form.addWidget(section);
    return *section;
}

QWidget* ProxyEditView::makeField(const Row& row, QWidget* parent, bool masked) {
    auto* field = new TextField(
        theme_,
        [this, &text = row.text](std::string edited) {
            text = std::move(edited);
            showAddress();
        },
        parent);
    field->setObjectName(QString::fromLatin1(row.objectName));
    field->setPlaceholderText(row.placeholder);
    if (masked) {
        field->setEchoMode(QLineEdit::Password);
        field->setInputMethodHints(field->inputMethodHints() | Qt::ImhHiddenText | Qt::ImhSensitiveData |
                                   Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
    }
    if (row.width > 0) {
        field->setFixedWidth(row.width);
    }
    field->showStored(row.text, true);
    return new ProxyField(theme_, row.label, field, parent);
}

void ProxyEditView::addServer(QVBoxLayout& form) {
    auto& section = addSection(form, QStringLiteral("Server"));
    section.addRow(makeField({"proxyAddressField", QStringLiteral("Address"), QStringLiteral("127.0.0.1"),
                              proxy_.address, kAddressWidth},
                             &section));
    portField_ = new TextField(theme_, [this](const std::string& /*text*/) { portEdited(); }, &section);
    portField_->setObjectName(QStringLiteral("proxyPortField"));
    portField_->setPlaceholderText(QStringLiteral("1080"));
    portField_->setFixedWidth(kPortWidth);
    portField_->showStored(portText_.toStdString(), true);
    section.addRow(new ProxyField(theme_, QStringLiteral("Port"), portField_, &section));
}

void ProxyEditView::portEdited() {
    const QString typed = portField_->text();
    portText_ = numbersOnly(typed);
    if (portText_ != typed) {
        const auto cursor = numbersOnly(typed.left(portField_->cursorPosition())).size();
        portField_->showStored(portText_.toStdString(), true);
        portField_->setCursorPosition(static_cast<int>(cursor));
    }
    proxy_.port = parsePortInRange(portText_).value_or(proxy_.port);
}

void ProxyEditView::addProtocol(QVBoxLayout& form) {
    auto& section = addSection(form, QStringLiteral("Protocol"));
    auto* rows = new QWidget(&section);
    auto* layout = new QVBoxLayout(rows);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (const ProxyProtocol proto : kProtocols) {
        const QString label = displayLine(support::toRawText(proto));
        auto* row = new RadioRow(theme_, label, rows);
        row->setObjectName(QStringLiteral("protocol:%1").arg(label));
        row->setChecked(proto == proxy_.proto);
        connect(row, &QRadioButton::toggled, this, [this, proto](bool on) {
            if (on) {
                proxy_.proto = proto;
                showOptions();
            }
        });
        layout->addWidget(row);
    }
    section.addRow(rows);
}

void ProxyEditView::addAuthentication(QVBoxLayout& form) {
    auto& section = addSection(form, QStringLiteral("Authentication"));
    auto& login = proxy_.authentication;
    auto* username =
        makeField({"proxyUsernameField", QStringLiteral("Username"), QString(), login.username}, &section);
    auto* password = makeField({"proxyPasswordField", QStringLiteral("Password"), QString(), login.password},
                               &section, true);
    const auto enable = [&login, username, password](bool on) {
        login.enabled = on;
        username->setVisible(on);
        password->setVisible(on);
    };
    section.addRow(
        new SwitchRow(theme_, QStringLiteral("Enable"), "proxyLoginSwitch", login.enabled, enable, &section));
    section.addRow(username);
    section.addRow(password);
    enable(login.enabled);
}

void ProxyEditView::addOptions(QVBoxLayout& form) {
    auto& section = addSection(form, QStringLiteral("Options"));
    options_ = makeCaption(QString(), theme_.font(13), &section);
    options_->setObjectName(QStringLiteral("proxyOptionsText"));
    section.addRow(options_);
}

void ProxyEditView::addTunnel(QVBoxLayout& form) {
    if (tunnels_.empty()) {
        return;
    }
    auto& section = addSection(form, QStringLiteral("Bound Tunnel"));
    auto* menu = new ChoiceMenu(
        theme_,
        [this](int choice) {
            proxy_.tunnelID =
                choice > 0 ? std::optional(tunnels_.at(static_cast<std::size_t>(choice) - 1).id) : std::nullopt;
        },
        &section);
    menu->setObjectName(QStringLiteral("proxyTunnelMenu"));
    menu->setFixedWidth(kTunnelWidth);
    menu->addChoice(Icon::minus, QStringLiteral("None"));
    for (const TunnelName& tunnel : tunnels_) {
        menu->addChoice(Icon::branch, displayLine(tunnel.name));
    }
    const auto bound =
        proxy_.tunnelID ? std::ranges::find(tunnels_, *proxy_.tunnelID, &TunnelName::id) : tunnels_.end();
    const auto place = static_cast<int>(bound - tunnels_.begin());
    // A tunnel that is no more shows as no choice at all, so that it is kept until another is chosen.
    menu->showChoice(bound != tunnels_.end() ? place + 1 : (proxy_.tunnelID ? -1 : 0));
    section.addRow(new ProxyField(theme_, QStringLiteral("Tunnel"), menu, &section));
}

void ProxyEditView::addAdvanced(QVBoxLayout& form) {
    auto& section = addSection(form, QStringLiteral("Advanced Option"));
    section.addRow(new SwitchRow(
        theme_, QStringLiteral("Use target hostname in proxy request if available"), "proxyHostnameSwitch",
        proxy_.useTargetHostname, [this](bool on) { proxy_.useTargetHostname = on; }, &section));
}

QWidget* ProxyEditView::buildButtons() {
    auto* buttons = new QWidget(this);
    buttons->setMinimumHeight(kFooterHeight);
    auto* cancel =
        makeButton(QStringLiteral("Cancel"), ButtonRole::plain, QStringLiteral("proxyCancelButton"), buttons);
    auto* save =
        makeButton(QStringLiteral("Save"), ButtonRole::prominent, QStringLiteral("proxySaveButton"), buttons);
    save->setDefault(true);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(save, &QPushButton::clicked, this, [this] { this->save(); });
    auto* layout = new QHBoxLayout(buttons);
    layout->setContentsMargins(kMargin, 0, kMargin, 0);
    layout->setSpacing(grid::kSmall);
    layout->addStretch();
    layout->addWidget(cancel);
    layout->addWidget(save);
    return buttons;
}

void ProxyEditView::showAddress() {
    const QString title = QStringLiteral("Proxy – %1").arg(displayLine(proxy_.address));
    heading_->setText(title);
    setWindowTitle(title);
}

void ProxyEditView::showOptions() {
    const bool bare = support::toRawText(proxy_.proto) == kWithoutOptions;
    options_->setText(bare ? QStringLiteral("No options available for SOCKS5 proxy.") : QString());
}

void ProxyEditView::save() {
    // Past the range that the field keeps to: what was typed last is what is meant.
    proxy_.port = parsePort(portText_).value_or(proxy_.port);
    if (proxy_.name.empty()) {
        proxy_.name = proxy_.address;
    }
    if (isNew_) {
        store_.addProxy(proxy_);
    } else {
        store_.updateProxy(proxy_);
    }
    accept();
}

} // namespace fernwick
