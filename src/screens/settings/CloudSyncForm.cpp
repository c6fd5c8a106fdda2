#include "screens/settings/CloudSyncForm.h"

#include "screens/settings/RelativeDateLabel.h"
#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/IconLine.h"
#include "screens/theme/Switch.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QSignalBlocker>
#include <QToolButton>

#include <utility>

namespace fernwick {

namespace {

constexpr qsizetype kLongestPath = 4096;

IconLine::Look lookOf(const ICloudStatus& status) {
    switch (status.kind) {
    case ICloudStatus::checking:
        return {Icon::ellipsisCircle, &Palette::secondary, &Palette::text};
    case ICloudStatus::available:
        return {Icon::cloud, &Palette::accent, &Palette::text};
    case ICloudStatus::unavailable:
        return {Icon::cloudOff, &Palette::orange, &Palette::text};
    case ICloudStatus::syncing:
        return {Icon::arrowsCircle, &Palette::accent, &Palette::text};
    case ICloudStatus::synced:
        return {Icon::checkCircle, &Palette::green, &Palette::text};
    case ICloudStatus::error:
        break;
    }
    return {Icon::exclamationCircle, &Palette::red, &Palette::red};
}

// The path with the person's home written as "~".
std::string abbreviated(const std::string& path, const std::string& home) {
    const bool inHome =
        !home.empty() && path.starts_with(home) && (path.size() == home.size() || path[home.size()] == '/');
    return inHome ? "~" + path.substr(home.size()) : path;
}

} // namespace

CloudSyncForm::CloudSyncForm(SyncParts parts, QWidget* parent) : SyncForm(std::move(parts), parent) {
    enabled_ = newSwitch("syncWithiCloudSwitch", [this](bool on) { sync().setSyncWithiCloud(on); });
    QWidgetList about{
        newSwitchRow(QStringLiteral("Sync with iCloud"), enabled_),
        newText(QStringLiteral(
            "Syncs tunnels, tags, and key names across your Mac computers via iCloud Key-Value Store."))};
    if (!this->parts().context.cloudFolder.empty()) {
        about.append(buildFolder());
    }
    addGroup(about);
    addDivider();
    addRow(buildStatus());
    push_ = newButton(QStringLiteral("Push Now"), "pushButton", [this] { push(); });
    pull_ = newButton(QStringLiteral("Pull Now"), "pullButton", [this] { pull(); });
    addButtons({push_, pull_});
    changed_ = sync().changed.connect([this] { refresh(); });
    refresh();
}

QWidget* CloudSyncForm::buildStatus() {
    auto* row = new QWidget(this);
    status_ = new IconLine(theme(), theme().font(13), row);
    status_->setObjectName(QStringLiteral("iCloudStatus"));
    auto* again = makeIconButton(theme(), Icon::refresh, QStringLiteral("Check iCloud status"),
                                 QStringLiteral("checkStatusButton"), row);
    again->setIconSize(QSize(16, 16));
    connect(again, &QToolButton::clicked, this, [this] { sync().refreshICloudStatus(); });
    lastSync_ = new RelativeDateLabel(theme(), parts().context.clock, parts().context.dispatch,
                                      QStringLiteral("Last synced: "), row);
    lastSync_->setObjectName(QStringLiteral("lastSynced"));
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kTight);
    layout->addWidget(status_);
    layout->addWidget(again);
    layout->addStretch();
    layout->addWidget(lastSync_);
    return row;
}

// Where the system has no cloud of its own, this says what stands for it.
QWidget* CloudSyncForm::buildFolder() {
    auto* row = new QWidget(this);
    auto* advice =
        makeCaption(QStringLiteral("Here the cloud is a folder, which must exist:"), theme().font(12), row);
    auto* folder = new ElidedLabel(row);
    folder->setObjectName(QStringLiteral("cloudFolder"));
    folder->setFont(theme().font(12));
    folder->setForegroundRole(QPalette::PlaceholderText);
    folder->setLayoutDirection(Qt::LeftToRight);
    folder->setElideMode(Qt::ElideMiddle);
    folder->setText(
        displayLine(abbreviated(parts().context.cloudFolder, parts().context.host.homeFolder()), kLongestPath));
    setTextToolTip(*folder, displayLine(parts().context.cloudFolder, kLongestPath));
    advice->setBuddy(folder);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kTight);
    layout->addWidget(advice);
    layout->addWidget(folder, 1);
    return row;
}

void CloudSyncForm::refresh() {
    const QSignalBlocker quiet(enabled_);
    enabled_->setChecked(sync().syncWithiCloud());
    const auto& state = sync().state();
    status_->showLine(lookOf(state.iCloudStatus), displayLine(state.iCloudStatus.label()));
    lastSync_->showDate(state.lastSyncDate);
}

CloudSync::Completion CloudSyncForm::answer(const HeldButton& button, SyncAlert onSuccess,
                                            SyncAlert onFailure) const {
    return [button, onSuccess = std::move(onSuccess), onFailure = std::move(onFailure),
            alert = parts().alert](bool succeeded) {
        button();
        alert(succeeded ? onSuccess : onFailure);
    };
}

void CloudSyncForm::push() {
    sync().pushToICloud(
        answer(HeldButton(*push_),
               {QStringLiteral("Pushed to iCloud"), QStringLiteral("Data sent to iCloud successfully."), true},
               {QStringLiteral("Push failed"), QStringLiteral("Check iCloud availability."), false}));
}

// That there is nothing to pull is no failure.
void CloudSyncForm::pull() {
    sync().pullFromICloud(
        answer(HeldButton(*pull_),
               {QStringLiteral("Pulled from iCloud"), QStringLiteral("Local data updated from iCloud."), true},
               {QStringLiteral("Nothing to pull"), QStringLiteral("No data found in iCloud yet."), false}));
}

} // namespace fernwick
