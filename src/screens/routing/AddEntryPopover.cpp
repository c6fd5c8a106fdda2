#include "screens/routing/AddEntryPopover.h"

#include "screens/routing/FormRow.h"
#include "screens/theme/Grid.h"
#include "screens/theme/IconLine.h"
#include "screens/theme/Parts.h"
#include "screens/theme/SegmentedControl.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kTipHeight = 8;
constexpr int kTipWidth = 18;
constexpr int kRangeLabelWidth = 38;
constexpr int kShadowAlpha = 4; // of each of its layers
constexpr int kShadowDrop = 4;  // how much lower than the bubble it lies

QString textOf(std::string_view raw) {
    return QString::fromUtf8(raw.data(), static_cast<qsizetype>(raw.size()));
}

QVBoxLayout* columnIn(QWidget* page, int spacing) {
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(spacing);
    return column;
}

template <class Mode>
SegmentedControl* addModes(const Theme& theme, std::function<void(Mode)> chosen, const QString& name,
                           QWidget* parent) {
    constexpr auto modes = rawTexts(Mode{});
    auto* control = new SegmentedControl(
        theme, [chosen = std::move(chosen)](int mode) { chosen(static_cast<Mode>(mode)); }, parent);
    for (const auto& mode : modes) {
        control->addSegment(textOf(mode.text), name + QLatin1Char(':') + textOf(mode.text));
    }
    return control;
}

void showOnly(const std::vector<QWidget*>& pages, std::size_t shown) {
    for (std::size_t page = 0; page < pages.size(); ++page) {
        pages[page]->setVisible(page == shown);
    }
}

} // namespace

AddEntryPopover::AddEntryPopover(const Theme& theme, Callbacks callbacks, QWidget* sheet)
    : QDialog(sheet), theme_(theme), callbacks_(std::move(callbacks)) {
    setWindowFlags(Qt::Widget); // a part of the sheet that has buttons for Return and Escape of its own
    setObjectName(QStringLiteral("addEntryPopover"));
    setAccessibleName(QStringLiteral("Add Entry"));
    hide();
    auto* layout = new QVBoxLayout(this);
    constexpr int around = kShadow + grid::kLarge;
    layout->setContentsMargins(around, around + kTipHeight, around, around);
    layout->setSpacing(grid::kMedium);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    modes_ = addModes<AddMode>(theme, [this](AddMode mode) { turnTo(mode); }, QStringLiteral("addMode"), this);
    modes_->setFixedWidth(kWidth - 2 * grid::kLarge);
    pages_ = {buildAppPage(), buildIPPage()};
    error_ = new IconLine(theme, theme.font(11), this);
    error_->setObjectName(QStringLiteral("inputError"));
    layout->addWidget(modes_);
    layout->addWidget(pages_[0]);
    layout->addWidget(pages_[1]);
    layout->addWidget(error_);
    layout->addWidget(buildButtons());
    refresh();
}

QWidget* AddEntryPopover::buildAppPage() {
    auto* page = new QWidget(this);
    auto* column = columnIn(page, grid::kSmall);
    auto* browse = makeButton(QStringLiteral("Choose Application"), ButtonRole::plain,
                              QStringLiteral("chooseApplicationButton"), page);
    browse->setAutoDefault(true);
    connect(browse, &QPushButton::clicked, this, [this] { callbacks_.browse(); });
    column->addWidget(
        makeLabel(QStringLiteral("Type an app name, bundle ID, or browse:"), theme_.font(12), page));
    column->addWidget(
        addField({QStringLiteral("Application"), QStringLiteral("e.g. Safari or com.apple.Safari"),
                  QStringLiteral("manualAppField"), &EntryInput::manualAppText},
                 page));
    column->addWidget(browse);
    column->addWidget(makeCaption(QStringLiteral("Wildcards OK \u2192 com.google.*"), theme_.font(11), page));
    return page;
}

QWidget* AddEntryPopover::buildIPPage() {
    auto* page = new QWidget(this);
    auto* column = columnIn(page, grid::kMedium);
    ipModes_ = addModes<IPInputMode>(
        theme_, [this](IPInputMode mode) { turnTo(mode); }, QStringLiteral("ipInputMode"), page);
    auto* single = addField({QStringLiteral("IP address"), QStringLiteral("e.g. 192.168.1.1"),
                             QStringLiteral("singleIPField"), &EntryInput::singleIP},
                            page);
    auto* range = new QWidget(page);
    auto* ends = columnIn(range, grid::kSmall);
    ends->addWidget(new FormRow(
        theme_, {QStringLiteral("From:"), kRangeLabelWidth},
        addField({{}, QStringLiteral("10.0.0.0"), QStringLiteral("rangeStartField"), &EntryInput::rangeStart},
                 range),
        range));
    ends->addWidget(new FormRow(
        theme_, {QStringLiteral("To:"), kRangeLabelWidth},
        addField({{}, QStringLiteral("10.255.255.255"), QStringLiteral("rangeEndField"), &EntryInput::rangeEnd},
                 range),
        range));
    auto* cidr = addField({QStringLiteral("CIDR"), QStringLiteral("e.g. 192.168.0.0/24"),
                           QStringLiteral("cidrField"), &EntryInput::cidrText},
                          page);
    ipPages_ = {single, range, cidr};
    column->addWidget(ipModes_);
    for (auto* way : ipPages_) {
        column->addWidget(way);
    }
    return page;
}

QWidget* AddEntryPopover::buildButtons() {
    auto* buttons = new QWidget(this);
    auto* cancel =
        makeButton(QStringLiteral("Cancel"), ButtonRole::plain, QStringLiteral("cancelEntryButton"), buttons);
    cancel->setAutoDefault(true);
    add_ = makeButton(QStringLiteral("Add"), ButtonRole::prominent, QStringLiteral("addEntryButton"), buttons);
    add_->setDefault(true);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(add_, &QPushButton::clicked, this, [this] { tryAdd(); });
    auto* layout = new QHBoxLayout(buttons);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kSmall);
    layout->addStretch();
    layout->addWidget(cancel);
    layout->addWidget(add_);
    return buttons;
}

QLineEdit* AddEntryPopover::addField(const Field& field, QWidget* parent) {
    auto* edit = new QLineEdit(parent);
    edit->setObjectName(field.objectName);
    edit->setAccessibleName(field.name);
    edit->setPlaceholderText(field.placeholder);
    edit->setFont(theme_.font(13));
    connect(edit, &QLineEdit::textChanged, this, [this, member = field.text](const QString& text) {
        input_.*member = text.toStdString();
        add_->setEnabled(input_.canAdd());
    });
    fields_.emplace_back(edit, field.text);
    return edit;
}

void AddEntryPopover::openAt(QPoint tip) {
    input_ = EntryInput();
    for (const auto& [edit, text] : fields_) {
        edit->clear();
    }
    tip_ = tip;
    refresh();
    show();
    raise();
    fields_.front().first->setFocus(Qt::OtherFocusReason);
}

void AddEntryPopover::setManualAppText(const std::string& text) {
    fields_.front().first->setText(QString::fromStdString(text));
}

void AddEntryPopover::turnTo(AddMode mode) {
    input_.addMode = mode;
    refresh();
}

void AddEntryPopover::turnTo(IPInputMode mode) {
    input_.ipInputMode = mode;
    refresh();
}

// Shows the input's modes and its error, as high as they need.
void AddEntryPopover::refresh() {
    modes_->showChosen(static_cast<int>(input_.addMode));
    ipModes_->showChosen(static_cast<int>(input_.ipInputMode));
    showOnly(pages_, static_cast<std::size_t>(input_.addMode));
    showOnly(ipPages_, static_cast<std::size_t>(input_.ipInputMode));
    error_->setVisible(input_.inputError.has_value());
    error_->showLine({Icon::warning, &Palette::red, &Palette::red}, textOf(input_.inputError.value_or("")));
    add_->setEnabled(input_.canAdd());
    layout()->activate();
    // Beside the tip where the sheet has room, which is elsewhere in a sheet that runs from right to left.
    const int room = std::max(parentWidget()->width() - width(), 0);
    move(std::clamp(tip_.x() - width() / 2, 0, room), tip_.y() - kShadow);
}

void AddEntryPopover::tryAdd() {
    if (auto entry = input_.makeEntry()) {
        callbacks_.add(std::move(*entry));
        accept();
        return;
    }
    refresh();
    if (input_.inputError) {
        callbacks_.announce(*error_);
    }
}

// The next control of the popover itself: what it covers is out of reach until it is closed.
bool AddEntryPopover::focusNextPrevChild(bool next) {
    auto* const start = window()->focusWidget() != nullptr ? window()->focusWidget() : this;
    auto* at = start;
    do {
        at = next ? at->nextInFocusChain() : at->previousInFocusChain();
        if (at != this && isAncestorOf(at) && at->isVisibleTo(this) && at->isEnabled() &&
            (at->focusPolicy() & Qt::TabFocus) == Qt::TabFocus) {
            at->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
    } while (at != start);
    return false;
}

// Return presses "Add" whatever the toolkit takes for the default button: while the popover is a part of its
// sheet, a button of the sheet that gets the keyboard takes that rank from this one for good. The other buttons
// press themselves.
void AddEntryPopover::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        add_->click();
        return;
    }
    QDialog::keyPressEvent(event);
}

// What lies beneath is not to be clicked through the bubble.
void AddEntryPopover::mousePressEvent(QMouseEvent* event) {
    event->accept();
}

void AddEntryPopover::paintEvent(QPaintEvent* /*event*/) {
    const Palette& colors = theme_.colors();
    const QRectF area =
        QRectF(rect()).adjusted(kShadow + 0.5, kShadow + kTipHeight + 0.5, -kShadow - 0.5, -kShadow - 0.5);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, kShadowAlpha));
    for (int layer = 1; layer <= kShadow - kShadowDrop; ++layer) {
        painter.drawRoundedRect(area.adjusted(-layer, kShadowDrop - layer, layer, kShadowDrop + layer),
                                grid::kPanelRadius + layer, grid::kPanelRadius + layer);
    }
    QPainterPath bubble;
    bubble.addRoundedRect(area, grid::kPanelRadius, grid::kPanelRadius);
    const double tip = std::clamp(static_cast<double>(tip_.x() - x()), area.left() + 2 * grid::kPanelRadius,
                                  area.right() - 2 * grid::kPanelRadius);
    QPainterPath arrow;
    arrow.moveTo(tip - kTipWidth / 2.0, area.top() + 1);
    arrow.lineTo(tip, area.top() - kTipHeight);
    arrow.lineTo(tip + kTipWidth / 2.0, area.top() + 1);
    arrow.closeSubpath();
    painter.setBrush(colors.popup);
    painter.setPen(colors.border);
    painter.drawPath(bubble.united(arrow));
}

} // namespace fernwick
