#include "screens/routing/RuleEditView.h"

#include "screens/detail/FormSection.h"
#include "screens/routing/AddEntryPopover.h"
#include "screens/routing/ApplicationPicker.h"
#include "screens/routing/EditorFrame.h"
#include "screens/routing/EntryChips.h"
#include "screens/routing/FormRow.h"
#include "screens/routing/MacTextEditor.h"
#include "screens/routing/PlusButton.h"
#include "screens/routing/RuleActionForm.h"
#include "screens/theme/Grid.h"
#include "screens/theme/Switch.h"
#include "screens/theme/TextField.h"

#include <QKeyEvent>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>
#include <iterator>

namespace fernwick {

namespace {

constexpr int kMargin = 24;
constexpr int kNameLabelWidth = 60;
constexpr int kHostsMinHeight = 55;
constexpr int kHostsMaxHeight = 80;
constexpr int kSectionSpacing = 14;

// Lies over the form without being seen.
class Cover final : public QWidget {
public:
    Cover(std::function<void()> pressed, QWidget* parent) : QWidget(parent), pressed_(std::move(pressed)) {}

protected:
    void mousePressEvent(QMouseEvent* /*event*/) override { pressed_(); }

private:
    std::function<void()> pressed_;
};

QWidget* withExample(const Theme& theme, QWidget* field, QWidget* control, const QString& example,
                     QWidget* parent) {
    auto* block = new QWidget(parent);
    auto* caption = makeCaption(example, theme.font(11), block);
    caption->setWordWrap(true);
    control->setAccessibleDescription(example);
    auto* layout = new QVBoxLayout(block);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kTight + 2);
    layout->addWidget(field);
    layout->addWidget(caption);
    return block;
}

} // namespace

RuleEditView::RuleEditView(RoutingContext& context, TunnelNames tunnels, std::optional<AppRule> rule,
                           QWidget* parent)
    : QDialog(parent, Qt::Sheet), context_(context), draft_(RuleDraft::of(std::move(rule))) {
    setObjectName(QStringLiteral("ruleEditView"));
    setWindowTitle(draft_.isNew ? QStringLiteral("New Rule") : QStringLiteral("Edit Rule"));
    setAttribute(Qt::WA_DeleteOnClose);
    setFixedSize(kWidth, kHeight);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(buildHeader());
    layout->addWidget(new Divider(context.theme, this));
    layout->addWidget(buildForm(std::move(tunnels)), 1);
    layout->addWidget(new Divider(context.theme, this));
    layout->addWidget(buildButtons());
    cover_ = new Cover([this] { closePopover(); }, this);
    cover_->setGeometry(0, 0, kWidth, kHeight);
    cover_->hide();
    popover_ = new AddEntryPopover(context.theme,
                                   {[this](AppEntry entry) { addEntries({std::move(entry)}); },
                                    [this] { chooseApplications(); }, announceAlert},
                                   this);
    connect(popover_, &QDialog::finished, this, [this] {
        cover_->hide();
        plus_->setFocus(Qt::OtherFocusReason);
    });
}

QWidget* RuleEditView::buildHeader() {
    const Theme& theme = context_.theme;
    auto* header = new QWidget(this);
    auto* name = new TextField(theme, [this](std::string text) { draft_.rule.name = std::move(text); }, header);
    name->setObjectName(QStringLiteral("ruleNameField"));
    name->setPlaceholderText(QStringLiteral("Rule name"));
    name->showStored(draft_.rule.name, true);
    auto* isEnabled = new Switch(theme, header);
    isEnabled->setObjectName(QStringLiteral("ruleEnabledSwitch"));
    isEnabled->setAccessibleName(QStringLiteral("Enabled"));
    isEnabled->setChecked(draft_.rule.isEnabled);
    connect(isEnabled, &QCheckBox::toggled, this, [this](bool on) { draft_.rule.isEnabled = on; });
    auto* enabledLabel = makeLabel(QStringLiteral("Enabled"), theme.font(13), header);
    enabledLabel->setBuddy(isEnabled);
    auto* layout = new QHBoxLayout(header);
    layout->setContentsMargins(kMargin, grid::kMedium, kMargin, grid::kMedium);
    layout->setSpacing(grid::kSmall);
    layout->addWidget(new FormRow(theme, {QStringLiteral("Name:"), kNameLabelWidth}, name, header), 1);
    layout->addSpacing(grid::kSmall);
    layout->addWidget(enabledLabel);
    layout->addWidget(isEnabled);
    name->setFocus();
    // What it is called so far is there to be typed over; of a long name the start is shown.
    const auto length = static_cast<int>(name->text().size());
    name->setSelection(length, -length);
    return header;
}

QWidget* RuleEditView::buildForm(TunnelNames tunnels) {
    form_ = new QScrollArea(this);
    form_->setObjectName(QStringLiteral("ruleForm"));
    form_->setFrameShape(QFrame::NoFrame);
    form_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    form_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // nothing is drawn of it while all fits
    form_->setFocusPolicy(Qt::NoFocus);
    form_->setWidgetResizable(true);
    form_->viewport()->setAutoFillBackground(false);
    auto* page = new QWidget;
    auto* sections = new QVBoxLayout(page);
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent); // it stands in the margin
    const bool mirrored = layoutDirection() == Qt::RightToLeft;
    sections->setContentsMargins(mirrored ? kMargin - bar : kMargin, grid::kMedium,
                                 mirrored ? kMargin : kMargin - bar, grid::kMedium);
    sections->setSpacing(kSectionSpacing);
    form_->setWidget(page);
    page->setAutoFillBackground(false); // the area has just given it a ground
    fillApplications(*addSection(QStringLiteral("Applications"), Icon::appBadge));
    fillHosts(*addSection(QStringLiteral("Target Hosts"), Icon::globe));
    fillPorts(*addSection(QStringLiteral("Target Ports"), Icon::server));
    auto* action = addSection(QStringLiteral("Action"), Icon::arrowsSwap);
    action->addRow(new RuleActionForm(context_, std::move(tunnels), draft_.rule, action->card()));
    sections->addStretch();
    return form_;
}

FormSection* RuleEditView::addSection(const QString& title, Icon icon) {
    auto* section = new FormSection(context_.theme, title, icon, form_->widget(), grid::kMedium);
    form_->widget()->layout()->addWidget(section);
    return section;
}

void RuleEditView::fillApplications(FormSection& section) {
    plus_ = new PlusButton(context_.theme, QStringLiteral("Add Application or IP"), &section);
    plus_->setObjectName(QStringLiteral("addEntryPlusButton"));
    connect(plus_, &QToolButton::clicked, this, [this] { openPopover(); });
    section.addToTitle(plus_);
    chips_ =
        new EntryChips(context_.theme, [this](const support::Uuid& id) { removeEntry(id); }, section.card());
    chips_->add(draft_.entries);
    section.addRow(chips_);
}

void RuleEditView::fillHosts(FormSection& section) {
    const Theme& theme = context_.theme;
    auto* hosts = new MacTextEditor(
        theme.font(13), kHostsMinHeight, [this](std::string text) { draft_.hostsText = std::move(text); },
        section.card());
    hosts->setObjectName(QStringLiteral("targetHostsEditor"));
    hosts->setAccessibleName(QStringLiteral("Target Hosts"));
    hosts->setMaximumHeight(kHostsMaxHeight);
    hosts->setText(draft_.hostsText);
    section.addRow(
        withExample(theme, new EditorFrame(theme, hosts, section.card()), hosts,
                    QStringLiteral("Example: 127.0.0.1; *.example.com; 192.168.1.*; 10.1.0.0-10.5.255.255"),
                    section.card()));
}

void RuleEditView::fillPorts(FormSection& section) {
    auto* ports = new TextField(
        context_.theme, [this](std::string text) { draft_.portsText = std::move(text); }, section.card());
    ports->setObjectName(QStringLiteral("targetPortsField"));
    ports->setAccessibleName(QStringLiteral("Target Ports"));
    ports->showStored(draft_.portsText, true);
    section.addRow(withExample(context_.theme, ports, ports, QStringLiteral("Example: 80; 8000-9000; 3124"),
                               section.card()));
}

QWidget* RuleEditView::buildButtons() {
    auto* buttons = new QWidget(this);
    auto* cancel =
        makeButton(QStringLiteral("Cancel"), ButtonRole::plain, QStringLiteral("cancelRuleButton"), buttons);
    cancel->setAutoDefault(true); // Return presses the button that has the keyboard
    auto* saving =
        makeButton(QStringLiteral("Save"), ButtonRole::prominent, QStringLiteral("saveRuleButton"), buttons);
    saving->setDefault(true);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(saving, &QPushButton::clicked, this, [this] { save(); });
    auto* layout = new QHBoxLayout(buttons);
    layout->setContentsMargins(kMargin, grid::kMedium, kMargin, grid::kMedium);
    layout->setSpacing(grid::kSmall);
    layout->addStretch();
    layout->addWidget(cancel);
    layout->addWidget(saving);
    return buttons;
}

void RuleEditView::openPopover() {
    form_->ensureWidgetVisible(plus_);
    cover_->show();
    cover_->raise();
    popover_->openAt(plus_->mapTo(this, QPoint(plus_->width() / 2, plus_->height())));
}

void RuleEditView::closePopover() {
    popover_->reject();
}

void RuleEditView::chooseApplications() {
    auto* picker = new ApplicationPicker(
        context_.theme, context_.dispatch, context_.applications,
        [this](const std::vector<platform::InstalledApplication>& applications) {
            std::vector<AppEntry> entries;
            entries.reserve(applications.size());
            for (const auto& application : applications) {
                entries.push_back(AppEntry::picked(application.name, application.value));
            }
            const auto last = entries.back().value;
            addEntries(std::move(entries));
            popover_->setManualAppText(last);
        },
        this);
    picker->open();
}

void RuleEditView::addEntries(std::vector<AppEntry> entries) {
    chips_->add(entries);
    std::ranges::move(entries, std::back_inserter(draft_.entries));
}

void RuleEditView::removeEntry(const support::Uuid& id) {
    draft_.removeEntry(id);
    if (chips_->remove(id)) {
        plus_->setFocus(Qt::TabFocusReason);
    }
}

void RuleEditView::save() {
    const AppRule rule = draft_.finished();
    if (draft_.isNew) {
        context_.store.addRule(rule);
    } else {
        context_.store.updateRule(rule);
    }
    context_.tunnels.refreshSystemProxy(std::nullopt, std::nullopt);
    context_.tunnels.refreshClashRules();
    accept();
}

void RuleEditView::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    // The form's round buttons are no push buttons, whose Return the toolkit takes care of.
    if (auto* button = qobject_cast<QToolButton*>(focusWidget()); isReturn && button != nullptr) {
        button->click();
        return;
    }
    if (event->key() == Qt::Key_Escape && popover_->isVisible()) {
        closePopover();
        return;
    }
    QDialog::keyPressEvent(event);
}

} // namespace fernwick
