#include "screens/settings/AutomaticBackupForm.h"

#include "screens/settings/CountField.h"
#include "screens/theme/ChoiceMenu.h"
#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/Switch.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QSignalBlocker>

#include <algorithm>
#include <array>
#include <utility>

namespace fernwick {

namespace {

constexpr std::array<std::int64_t, 6> kIntervals{1, 6, 12, 24, 72, 168};
constexpr int kLabelWidth = 110;
constexpr int kMenuWidth = 130;
constexpr int kCountWidth = 60;
constexpr int kIconSize = 16;
constexpr qsizetype kLongestPath = 4096;

// "1 hour", "24 hours", "3 days": days from the second one on.
QString intervalText(std::int64_t hours) {
    constexpr std::int64_t kDay = 24;
    const bool inDays = hours > kDay && hours % kDay == 0;
    return QStringLiteral("%1 %2%3")
        .arg(inDays ? hours / kDay : hours)
        .arg(inDays ? QStringLiteral("day") : QStringLiteral("hour"),
             hours == 1 ? QString() : QStringLiteral("s"));
}

} // namespace

AutomaticBackupForm::AutomaticBackupForm(SyncParts parts, QWidget* parent)
    : SyncForm(std::move(parts), parent) {
    enabled_ = newSwitch("enableAutoBackupSwitch", [this](bool on) {
        sync().settings().setEnableAutoBackup(on);
        sync().configureAutoBackupTimer();
    });
    addRow(newSwitchRow(QStringLiteral("Enable automatic backups"), enabled_));
    addDivider();
    addRow(buildInterval());
    addRow(buildFolder());
    addRow(buildCount());
    addDivider();
    addRow(buildLast());
    changed_ = sync().changed.connect([this] { refresh(); });
    refresh();
}

QWidget* AutomaticBackupForm::labelled(const QString& label, QWidget* control, QWidget* after) {
    auto* row = new QWidget(this);
    auto* name = makeCaption(label, theme().font(13), row);
    name->setFixedWidth(std::max(kLabelWidth, name->fontMetrics().horizontalAdvance(label) + 1));
    name->setBuddy(control);
    control->setAccessibleName(label);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kSmall);
    layout->addWidget(name);
    layout->addWidget(control);
    if (after != nullptr) {
        layout->addWidget(after);
    }
    layout->addStretch();
    return row;
}

QWidget* AutomaticBackupForm::buildInterval() {
    interval_ = new ChoiceMenu(theme(), [this](int choice) { chooseInterval(choice); }, this);
    interval_->setObjectName(QStringLiteral("backupIntervalMenu"));
    interval_->setMinimumWidth(kMenuWidth);
    return labelled(QStringLiteral("Backup every"), interval_, nullptr);
}

QWidget* AutomaticBackupForm::buildFolder() {
    auto* row = new QWidget(this);
    folder_ = new ElidedLabel(row);
    folder_->setObjectName(QStringLiteral("backupFolder"));
    folder_->setFont(theme().font(13));
    folder_->setLayoutDirection(Qt::LeftToRight);
    folder_->setElideMode(Qt::ElideMiddle);
    change_ = newButton(QStringLiteral("Change..."), "changeFolderButton", [this] { chooseFolder(); });
    change_->setAccessibleDescription(QStringLiteral("Choose folder for automatic backups"));
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kSmall);
    layout->addWidget(new IconView(theme(), Icon::folder, kIconSize, &Palette::secondary, row));
    layout->addWidget(folder_, 1);
    layout->addWidget(change_);
    return row;
}

QWidget* AutomaticBackupForm::buildCount() {
    count_ = new CountField(
        theme(), [this](std::int64_t count) { sync().settings().setMaxBackupCount(count); }, this);
    count_->setObjectName(QStringLiteral("maxBackupCountField"));
    count_->setFixedWidth(kCountWidth);
    const QString unit = QStringLiteral("backups");
    count_->setAccessibleDescription(unit);
    return labelled(QStringLiteral("Keep last"), count_, makeLabel(unit, theme().font(13), this));
}

QWidget* AutomaticBackupForm::buildLast() {
    auto* row = new QWidget(this);
    last_ = makeCaption(QString(), theme().font(12), row);
    last_->setObjectName(QStringLiteral("lastBackup"));
    backup_ = newButton(QStringLiteral("Backup Now"), "backupNowButton", [this] {
        sync().runBackup(
            told(HeldButton(*backup_), QStringLiteral("Backup Complete"), QStringLiteral("Backup Failed")));
    });
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kSmall);
    layout->addWidget(backup_);
    layout->addStretch();
    layout->addWidget(last_);
    return row;
}

void AutomaticBackupForm::refresh() {
    const auto& settings = sync().settings();
    const QSignalBlocker quiet(enabled_);
    enabled_->setChecked(settings.enableAutoBackup());
    showInterval(settings.backupIntervalHrs());
    const auto path = settings.backupPath();
    folder_->setText(displayLine(path.empty() ? "~/Documents/Fernwick/Backups" : path, kLongestPath));
    setTextToolTip(*folder_, displayLine(path, kLongestPath));
    count_->showNumber(settings.maxBackupCount());
    const auto last = sync().state().lastBackupDate;
    last_->setVisible(last.has_value());
    last_->setText(last ? QStringLiteral("Last: ") + QString::fromStdString(dates_.text(*last)) : QString());
}

// An interval that the menu does not offer, from a preference file that was written by hand, is offered for as
// long as it is stored: what is in force can be seen.
void AutomaticBackupForm::showInterval(std::int64_t hours) {
    std::vector<std::int64_t> offered(kIntervals.begin(), kIntervals.end());
    const auto place = std::ranges::lower_bound(offered, hours);
    const auto choice = static_cast<int>(place - offered.begin());
    if (place == offered.end() || *place != hours) {
        offered.insert(place, hours);
    }
    if (offered != intervals_) {
        intervals_ = std::move(offered);
        interval_->clearChoices();
        for (const auto each : intervals_) {
            interval_->addChoice(intervalText(each));
        }
    }
    interval_->showChoice(choice);
}

void AutomaticBackupForm::chooseInterval(int choice) {
    const auto hours = intervals_.at(static_cast<std::size_t>(choice));
    if (hours != sync().settings().backupIntervalHrs()) { // otherwise the timer would begin anew
        sync().settings().setBackupIntervalHrs(hours);
        sync().configureAutoBackupTimer();
    }
}

void AutomaticBackupForm::chooseFolder() {
    platform::FolderRequest request{.message = "Choose folder for automatic backups",
                                    .folder = sync().settings().backupPath()};
    parts().context.dialogs.chooseFolder(
        request, [&manager = sync(), button = HeldButton(*change_)](const std::optional<std::string>& path) {
            button();
            if (path) {
                manager.settings().setBackupPath(*path);
                manager.refreshBackupEntries();
            }
        });
}

} // namespace fernwick
