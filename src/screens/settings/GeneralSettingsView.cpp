#include "screens/settings/GeneralSettingsView.h"

#include "screens/routing/RadioRow.h"
#include "screens/settings/GeneralPreferences.h"
#include "screens/settings/SettingRow.h"
#include "screens/theme/Announcement.h"
#include "screens/theme/DisplayText.h"
#include "screens/theme/LongTextView.h"
#include "screens/theme/Switch.h"
#include "screens/theme/TextField.h"

#include <QGridLayout>
#include <QPushButton>
#include <QSignalBlocker>

#include <utility>

namespace fernwick {

namespace {

constexpr int kPortWidth = 70;
constexpr int kMarkSize = 30;
constexpr int kLongOutcomeHeight = 160;

QString versionText(const SettingsContext& context) {
    const auto version = context.bundleVersion ? context.bundleVersion() : std::nullopt;
    return QStringLiteral("Version ") + (version ? displayLine(*version) : QStringLiteral("Unknown"));
}

} // namespace

GeneralSettingsView::GeneralSettingsView(const SettingsContext& context, QWidget* parent)
    : FormPage(context.theme, parent, {.above = grid::kMedium, .between = grid::kLarge}),
      context_(context),
      launchAtLogin_(context.defaults, context.loginItem, context.dispatch, [this](bool on) {
          const QSignalBlocker quiet(loginSwitch_);
          loginSwitch_->setChecked(on);
      }) {
    setObjectName(QStringLiteral("generalTab"));
    addAppearance();
    addStartup();
    addDefaults();
    addUpdate();
    addAbout();
}

void GeneralSettingsView::addAppearance() {
    auto& section = *addSection(QStringLiteral("Appearance"), Icon::window, grid::kMedium);
    addRow(section, QStringLiteral("Show as:"), makeDisplayOptions(section.card()));
    section.addRow(new Divider(context_.theme, section.card()));
    addRow(section, QStringLiteral("Show status counts in menu bar"),
           makeSwitch("showStatusSwitch", kShowStatusInMenuBar));
}

QWidget* GeneralSettingsView::makeDisplayOptions(QWidget* parent) {
    auto* options = new QWidget(parent);
    auto* layout = new QHBoxLayout(options);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kLarge);
    const auto stored = readPreference(context_.defaults, kShowAsOption);
    for (const std::string_view option : kDisplayOptions) {
        const QString label = displayLine(option);
        auto* choice = new RadioRow(context_.theme, label, options);
        choice->setObjectName(QStringLiteral("showAs:") + label);
        choice->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        choice->setChecked(option == stored);
        connect(choice, &QRadioButton::toggled, this, [this, option](bool on) {
            if (on) {
                writePreference(context_.defaults, kShowAsOption, std::string(option));
            }
        });
        layout->addWidget(choice);
    }
    return options;
}

void GeneralSettingsView::addStartup() {
    auto& section = *addSection(QStringLiteral("Startup"), Icon::power, grid::kMedium);
    loginSwitch_ =
        makeSwitch("launchAtLoginSwitch", launchAtLogin_.isOn(), [this](bool on) { launchAtLogin_.setOn(on); });
    addRow(section, QStringLiteral("Launch at login"), loginSwitch_);
    section.addRow(new Divider(context_.theme, section.card()));
    addRow(section, QStringLiteral("Reconnect tunnels on launch"),
           makeSwitch("connectOnLaunchSwitch", kConnectOnLaunch));
}

void GeneralSettingsView::addDefaults() {
    auto& section = *addSection(QStringLiteral("Defaults"), Icon::sliders, grid::kMedium);
    auto* port = new TextField(
        context_.theme,
        [this](std::string text) { writePreference(context_.defaults, kDefaultSSHPort, std::move(text)); },
        section.card());
    port->setObjectName(QStringLiteral("defaultSSHPortField"));
    port->setPlaceholderText(QStringLiteral("22"));
    port->setFixedWidth(kPortWidth);
    port->showStored(readPreference(context_.defaults, kDefaultSSHPort), true);
    addRow(section, QStringLiteral("Default SSH Port"), port);
}

void GeneralSettingsView::addUpdate() {
    auto& section = *addSection(QStringLiteral("Update"), Icon::arrowsCircle, grid::kMedium);
    auto* check = makeButton(QStringLiteral("Check Update"), ButtonRole::plain,
                             QStringLiteral("checkUpdateButton"), section.card());
    check->setAccessibleName(check->text());
    connect(check, &QPushButton::clicked, this, [this] {
        if (context_.checkForUpdates) {
            context_.checkForUpdates();
        }
    });
    addRow(section, QStringLiteral("Application Update"), check);
    outcome_ = makeCaption(QString(), context_.theme.font(12), section.card());
    outcome_->setObjectName(QStringLiteral("updateOutcome"));
    outcome_->setWordWrap(true);
    outcome_->hide();
    section.addRow(outcome_);
    longOutcome_ = new LongTextView(context_.theme, section.card());
    longOutcome_->setObjectName(QStringLiteral("longUpdateOutcome"));
    longOutcome_->setAccessibleName(QStringLiteral("Application Update"));
    longOutcome_->setFixedHeight(kLongOutcomeHeight);
    longOutcome_->hide();
    section.addRow(longOutcome_);
}

void GeneralSettingsView::addAbout() {
    auto& section = *addSection(QStringLiteral("About"), Icon::infoCircle, grid::kMedium);
    auto* row = new QWidget(section.card());
    auto* version = makeCaption(versionText(context_), context_.theme.font(12), row);
    version->setObjectName(QStringLiteral("versionText"));
    auto* layout = new QGridLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setHorizontalSpacing(grid::kMedium);
    layout->setVerticalSpacing(2);
    layout->setColumnStretch(1, 1);
    layout->addWidget(new IconView(context_.theme, Icon::network, kMarkSize, &Palette::accent, row), 0, 0, 2, 1,
                      Qt::AlignVCenter);
    layout->addWidget(makeLabel(QStringLiteral("Fernwick"), context_.theme.font(14, QFont::DemiBold), row), 0,
                      1);
    layout->addWidget(version, 1, 1);
    section.addRow(row);
}

void GeneralSettingsView::showUpdateOutcome(const std::string& text) {
    const QString shown = displayText(text);
    const bool isLong = LongTextView::isNeededFor(shown);
    outcome_->setText(isLong ? QString() : shown);
    outcome_->setVisible(!shown.isEmpty() && !isLong);
    longOutcome_->showText(isLong ? shown : QString());
    longOutcome_->setVisible(isLong);
    if (!shown.isEmpty()) {
        announceAlert(isLong ? static_cast<QWidget&>(*longOutcome_) : *outcome_);
    }
}

void GeneralSettingsView::addRow(FormSection& section, const QString& label, QWidget* control) {
    section.addRow(new SettingRow(context_.theme, label, control, section.card()));
}

Switch* GeneralSettingsView::makeSwitch(const char* objectName, bool on, std::function<void(bool)> thrown) {
    auto* control = new Switch(context_.theme, this);
    control->setObjectName(QString::fromLatin1(objectName));
    control->setChecked(on);
    connect(control, &QCheckBox::toggled, this, std::move(thrown));
    return control;
}

Switch* GeneralSettingsView::makeSwitch(const char* objectName, const SwitchPreference& preference) {
    return makeSwitch(objectName, readPreference(context_.defaults, preference),
                      [this, preference](bool on) { writePreference(context_.defaults, preference, on); });
}

} // namespace fernwick
