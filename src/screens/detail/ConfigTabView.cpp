#include "screens/detail/ConfigTabView.h"

#include "screens/detail/InlineKeyPickerView.h"
#include "screens/detail/LabeledField.h"
#include "screens/detail/NotesEditor.h"
#include "screens/detail/PasswordField.h"
#include "screens/detail/PortDiagramView.h"
#include "screens/detail/TagPicker.h"
#include "screens/theme/ChoiceMenu.h"
#include "screens/theme/Grid.h"
#include "screens/theme/TextField.h"
#include "screens/theme/TypeIcons.h"
#include "support/Text.h"

#include <QScrollBar>

#include <algorithm>
#include <array>
#include <utility>

namespace fernwick {

namespace {

constexpr int kTypeWidth = 220;
constexpr int kAuthWidth = 180;
constexpr int kSSHPortWidth = 80;
constexpr int kPortWidth = 100;
constexpr int kAboveDiagram = 8;

constexpr std::array kTypes{TunnelType::localForward, TunnelType::remoteForward, TunnelType::socks5,
                            TunnelType::dynamicForward};
constexpr std::array kAuthMethods{AuthMethod::password, AuthMethod::privateKey, AuthMethod::agent};
constexpr std::array kAuthIcons{Icon::lock, Icon::key, Icon::personKey};

template <class Value>
QString labelOf(Value value) {
    const std::string_view text = support::toRawText(value);
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

bool hasRemoteSide(TunnelType type) {
    return type == TunnelType::localForward || type == TunnelType::remoteForward;
}

} // namespace

ConfigTabView::ConfigTabView(const MainWindowContext& context, TunnelBinding& binding, QWidget* parent)
    : FormPage(context.theme, parent), context_(context), binding_(binding) {
    setObjectName(QStringLiteral("configTab"));
    buildGeneral();
    buildServer();
    buildForwarding();
    buildNotes();
    refresh();
}

void ConfigTabView::buildGeneral() {
    auto& section = *addSection(QStringLiteral("General"), Icon::infoCircle);
    addText(section, {"configNameField", QStringLiteral("Tunnel Name"), QStringLiteral("e.g. Production DB"),
                      &Tunnel::name});
    type_ = new ChoiceMenu(
        context_.theme,
        [this](int choice) {
            binding_.write(&Tunnel::tunnelType, kTypes.at(static_cast<std::size_t>(choice)));
        },
        this);
    type_->setObjectName(QStringLiteral("typeMenu"));
    type_->setFixedWidth(kTypeWidth);
    for (const TunnelType type : kTypes) {
        type_->addChoice(iconOf(type), labelOf(type));
    }
    addControl(section, QStringLiteral("Type"), type_);
    tags_ = new TagPicker(
        context_.theme, context_.tags,
        [this](const support::Uuid& id) {
            binding_.edit(binding_.value().id, [&](Tunnel& tunnel) { toggleTag(tunnel.tagIDs, id); });
        },
        this);
    addControl(section, QStringLiteral("Tags"), tags_);
}

void ConfigTabView::buildServer() {
    auto& section = *addSection(QStringLiteral("SSH Server"), Icon::server);
    addText(section, {"configHostField", QStringLiteral("Host / IP"),
                      QStringLiteral("192.168.1.1 or example.com"), &Tunnel::host});
    auto* port = addText(section, {"configSSHPortField", QStringLiteral("SSH Port"), QStringLiteral("22"),
                                   &Tunnel::sshPort, kSSHPortWidth});
    connect(port, &QLineEdit::returnPressed, this, [this] { submitSSHPort(); });
    addText(section, {"configUserField", QStringLiteral("Username"), QStringLiteral("ubuntu"), &Tunnel::user});
    buildAuthentication(section);
    addText(section, {"configJumpHostField", QStringLiteral("Jump Host"),
                      QStringLiteral("user@jumphost.com (optional)"), &Tunnel::jumpHost});
}

void ConfigTabView::buildAuthentication(FormSection& section) {
    authMethod_ = new ChoiceMenu(
        context_.theme,
        [this](int choice) {
            binding_.write(&Tunnel::authMethod, kAuthMethods.at(static_cast<std::size_t>(choice)));
        },
        this);
    authMethod_->setObjectName(QStringLiteral("authMethodMenu"));
    authMethod_->setFixedWidth(kAuthWidth);
    for (std::size_t at = 0; at < kAuthMethods.size(); ++at) {
        authMethod_->addChoice(kAuthIcons.at(at), labelOf(kAuthMethods.at(at)));
    }
    addControl(section, QStringLiteral("Auth Method"), authMethod_);
    keyPicker_ = new InlineKeyPickerView(context_, binding_, this);
    keyRow_ = addControl(section, QStringLiteral("Identity Key"), keyPicker_, keyPicker_->menu());
    password_ = new PasswordField(context_.theme, context_.keychain, this);
    passwordRow_ = addControl(section, QStringLiteral("SSH Password"), password_);
    passwordRow_->hide(); // until a tunnel wants it, so that no keychain is asked before
}

void ConfigTabView::buildForwarding() {
    auto& section = *addSection(QStringLiteral("Port Forwarding"), Icon::arrowsSwap);
    addText(section, {"configLocalPortField", QStringLiteral("Local Port"), QStringLiteral("8080"),
                      &Tunnel::localPort, kPortWidth});
    const auto addRemote = [&](const Row& row) {
        addText(section, row);
        remoteRows_.push_back(texts_.back().row);
    };
    addRemote({"configRemoteHostField", QStringLiteral("Remote Host"), QStringLiteral("localhost"),
               &Tunnel::remoteHost});
    addRemote({"configRemotePortField", QStringLiteral("Remote Port"), QStringLiteral("80"),
               &Tunnel::remotePort, kPortWidth});
    auto* row = new QWidget(section.card());
    diagram_ = new PortDiagramView(context_.theme, row);
    auto* layout = new QVBoxLayout(row);
    layout->setContentsMargins(0, kAboveDiagram, 0, 0);
    layout->addWidget(diagram_);
    section.addRow(row);
}

void ConfigTabView::buildNotes() {
    auto& section = *addSection(QStringLiteral("Notes"), Icon::note);
    notes_ = new NotesEditor(
        context_.theme, [this](std::string text) { binding_.write(&Tunnel::notes, std::move(text)); },
        section.card());
    notes_->setObjectName(QStringLiteral("notesEditor"));
    notes_->setAccessibleName(QStringLiteral("Notes"));
    section.addRow(notes_);
}

TextField* ConfigTabView::addText(FormSection& section, const Row& row) {
    auto* field = new TextField(
        context_.theme,
        [this, text = row.text](std::string edited) { binding_.write(text, std::move(edited)); }, this);
    field->setObjectName(QString::fromLatin1(row.objectName));
    field->setPlaceholderText(row.placeholder);
    if (row.width > 0) {
        field->setFixedWidth(row.width);
    }
    texts_.push_back({field, row.text, addControl(section, row.label, field)});
    return field;
}

QWidget* ConfigTabView::addControl(FormSection& section, const QString& label, QWidget* content,
                                   QWidget* control) {
    auto* row = new LabeledField(context_.theme, label, content, section.card(), control);
    section.addRow(row);
    return row;
}

void ConfigTabView::submitSSHPort() {
    const std::string_view trimmed = support::trimBlanks(binding_.value().sshPort);
    binding_.write(&Tunnel::sshPort, trimmed.empty() ? "22" : std::string(trimmed));
}

void ConfigTabView::refresh() {
    const Tunnel& tunnel = binding_.value();
    const bool anew = shownID_ != tunnel.id;
    shownID_ = tunnel.id;
    for (const BoundText& bound : texts_) {
        bound.field->showStored(tunnel.*bound.text, anew);
    }
    notes_->showStored(tunnel.notes, anew);
    type_->showChoice(static_cast<int>(std::ranges::find(kTypes, tunnel.tunnelType) - kTypes.begin()));
    tags_->showSelected(tunnel.tagIDs);
    for (QWidget* row : remoteRows_) {
        row->setVisible(hasRemoteSide(tunnel.tunnelType));
    }
    diagram_->showTunnel(tunnel);
    refreshAuthentication(tunnel);
    if (anew) {
        verticalScrollBar()->setValue(0);
    }
}

void ConfigTabView::refreshAuthentication(const Tunnel& tunnel) {
    authMethod_->showChoice(
        static_cast<int>(std::ranges::find(kAuthMethods, tunnel.authMethod) - kAuthMethods.begin()));
    keyRow_->setVisible(tunnel.authMethod == AuthMethod::privateKey);
    keyPicker_->refresh();
    // Hidden before the field hears of the tunnel, and shown after it: the keychain is asked at most once.
    const bool wanted = tunnel.authMethod == AuthMethod::password;
    if (!wanted) {
        passwordRow_->hide();
    }
    password_->setTunnel(tunnel.id);
    passwordRow_->setVisible(wanted);
}

} // namespace fernwick
