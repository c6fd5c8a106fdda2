#include "screens/settings/KnownHostsSettingsView.h"

#include "screens/routing/EditorFrame.h"
#include "screens/settings/KnownHostsEditor.h"
#include "screens/theme/Announcement.h"
#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/IconLine.h"
#include "screens/theme/Parts.h"
#include "support/Text.h"

#include <QPushButton>
#include <QShowEvent>
#include <QVBoxLayout>

#include <utility>

namespace fernwick {

namespace {

constexpr std::string_view kPlaceholder = "# File not found or empty\n";

std::string sshFolder(const platform::HostEnvironment& host) {
    return host.homeFolder() + "/.ssh";
}

std::string knownHostsFile(const platform::HostEnvironment& host) {
    return sshFolder(host) + "/known_hosts";
}

} // namespace

KnownHostsSettingsView::KnownHostsSettingsView(const SettingsContext& context, QWidget* parent)
    : QWidget(parent), context_(context) {
    setObjectName(QStringLiteral("knownHostsTab"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(grid::kLarge, grid::kMedium, grid::kLarge, grid::kLarge);
    layout->setSpacing(grid::kSmall + 2);
    layout->addWidget(buildHeader());
    auto* note = makeCaption(
        QStringLiteral("Editing known_hosts directly. Remove an entry to reset host key verification."),
        context.theme.font(12), this);
    note->setWordWrap(true);
    layout->addWidget(note);
    editor_ = new KnownHostsEditor(context.theme, this);
    editor_->setObjectName(QStringLiteral("knownHostsEditor"));
    editor_->setAccessibleName(QStringLiteral("Known Hosts"));
    editor_->setAccessibleDescription(note->text());
    layout->addWidget(new EditorFrame(context.theme, editor_, this), 1);
}

QWidget* KnownHostsSettingsView::buildHeader() {
    const Theme& theme = context_.theme;
    auto* header = new QWidget(this);
    auto* titles = new QVBoxLayout;
    titles->setSpacing(1);
    titles->addWidget(makeLabel(QStringLiteral("Known Hosts"), theme.font(15, QFont::DemiBold), header));
    titles->addWidget(makeCaption(QStringLiteral("~/.ssh/known_hosts"), theme.monospaced(11), header));
    status_ = new IconLine(theme, theme.font(12), header);
    status_->setObjectName(QStringLiteral("saveStatus"));
    status_->hide();
    auto* reload = makeButton(QStringLiteral("Reload"), ButtonRole::plain,
                              QStringLiteral("reloadKnownHostsButton"), header);
    auto* saving = makeButton(QStringLiteral("Save"), ButtonRole::prominent,
                              QStringLiteral("saveKnownHostsButton"), header);
    connect(reload, &QPushButton::clicked, this, [this] { load(); });
    connect(saving, &QPushButton::clicked, this, [this] { save(); });
    auto* layout = new QHBoxLayout(header);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kSmall);
    layout->addLayout(titles);
    layout->addStretch(1);
    layout->addWidget(status_);
    layout->addSpacing(grid::kTight);
    layout->addWidget(reload);
    layout->addWidget(saving);
    return header;
}

std::string KnownHostsSettingsView::knownHostsText() const {
    return editor_->text();
}

void KnownHostsSettingsView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!event->spontaneous()) {
        load();
    }
}

// By design a file that cannot be read, for whatever reason, is not told apart from one that is not there.
void KnownHostsSettingsView::load() {
    setLoading(true);
    const auto text = context_.files.read(knownHostsFile(context_.host));
    editor_->setText(text && support::isValidUtf8(*text) ? std::string_view(*text) : kPlaceholder);
    setLoading(false);
}

void KnownHostsSettingsView::save() {
    const auto folder = sshFolder(context_.host);
    auto done = context_.files.exists(folder) ? std::expected<void, platform::FileError>()
                                              : context_.files.makeFolder(folder);
    if (done) {
        done = context_.files.replaceContent(knownHostsFile(context_.host), editor_->text(),
                                             platform::kOwnerOnlyFile);
    }
    setSaveStatus(done ? "Saved successfully" : done.error().description, done.has_value());
    clearing_ = context_.dispatch.oneShotTimer(kStatusDelay, [this] { setSaveStatus({}, true); });
}

void KnownHostsSettingsView::setLoading(bool loading) {
    isLoading_ = loading;
    if (loading) {
        setCursor(Qt::BusyCursor);
    } else {
        unsetCursor();
    }
}

void KnownHostsSettingsView::setSaveStatus(std::string status, bool isGood) {
    saveStatus_ = std::move(status);
    status_->setVisible(!saveStatus_.empty());
    if (saveStatus_.empty()) {
        return;
    }
    const NamedColor color = isGood ? &Palette::green : &Palette::red;
    status_->showLine({isGood ? Icon::checkCircle : Icon::exclamationCircle, color, color},
                      displayLine(saveStatus_));
    setTextToolTip(*status_, isGood ? QString() : status_->text());
    announceAlert(*status_);
}

} // namespace fernwick
