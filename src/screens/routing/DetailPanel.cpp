#include "screens/routing/DetailPanel.h"

#include "screens/routing/Capsule.h"
#include "screens/routing/ProxyRuleEmptyState.h"
#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>

namespace fernwick {

namespace {

constexpr int kHeaderHeight = 64;
constexpr int kEditHeight = 28;

// Scrolls by the arrow and page keys, since nothing in it takes the keyboard; shows that it has it.
class PanelScrollArea final : public QScrollArea {
public:
    PanelScrollArea(const Theme& theme, QWidget* parent) : QScrollArea(parent), theme_(theme) {
        setFrameShape(QFrame::NoFrame);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // nothing is drawn of it while all fits
        setFocusPolicy(Qt::TabFocus);
        setWidgetResizable(true);
        viewport()->setAutoFillBackground(false);
    }

protected:
    void focusInEvent(QFocusEvent* event) override {
        QScrollArea::focusInEvent(event);
        update();
        viewport()->update();
    }

    void focusOutEvent(QFocusEvent* event) override {
        QScrollArea::focusOutEvent(event);
        viewport()->update();
    }

    void paintEvent(QPaintEvent* event) override {
        QScrollArea::paintEvent(event);
        if (hasFocus()) {
            QPainter painter(viewport());
            stylepaint::focusRing(painter, QRectF(viewport()->rect()).adjusted(3, 3, 0, -3),
                                  theme_.colors().accent, grid::kControlRadius);
        }
    }

private:
    const Theme& theme_;
};

} // namespace

DetailPanel::DetailPanel(const Theme& theme, const QString& objectName, QWidget* parent)
    : QStackedWidget(parent), theme_(theme), empty_(new ProxyRuleEmptyState(theme, this)) {
    setObjectName(objectName);
    setMinimumWidth(kMinimumWidth);
    addWidget(empty_);
    page_ = buildPage();
    addWidget(page_);
}

QWidget* DetailPanel::buildPage() {
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(buildHeader());
    layout->addWidget(new Divider(theme_, page));
    scroll_ = new PanelScrollArea(theme_, page);
    scroll_->setAccessibleName(QStringLiteral("Details"));
    scroll_->setObjectName(objectName() + QLatin1String("Scroll"));
    layout->addWidget(scroll_, 1);
    return page;
}

QWidget* DetailPanel::buildHeader() {
    auto* header = new QWidget(this);
    header->setMinimumHeight(kHeaderHeight);
    name_ = new ElidedLabel(header);
    name_->setFont(theme_.font(16, QFont::DemiBold));
    name_->setObjectName(objectName() + QLatin1String("Name"));
    edit_ = makeButton(QStringLiteral("Edit"), ButtonRole::plain, objectName() + QLatin1String("EditButton"),
                       header);
    edit_->setFont(theme_.font(13));
    edit_->setMinimumHeight(kEditHeight);
    headerLines_ = new QVBoxLayout;
    headerLines_->setSpacing(1);
    headerLines_->addWidget(name_);
    headerRow_ = new QHBoxLayout(header);
    headerRow_->setContentsMargins(grid::kLarge + 2, grid::kSmall, grid::kLarge, grid::kSmall);
    headerRow_->setSpacing(grid::kSmall);
    headerRow_->addLayout(headerLines_, 1);
    headerRow_->addWidget(edit_);
    return header;
}

QLabel* DetailPanel::addHeaderLine() {
    auto* line = new ElidedLabel(this);
    line->setFont(theme_.font(12));
    line->setForegroundRole(QPalette::PlaceholderText);
    headerLines_->addWidget(line);
    return line;
}

Capsule* DetailPanel::addHeaderCapsule() {
    auto* capsule = new Capsule(theme_, this);
    headerRow_->insertWidget(headerRow_->count() - 1, capsule);
    return capsule;
}

void DetailPanel::showEmpty(Icon icon, const QString& title, const QString& subtitle) {
    empty_->show(icon, title, subtitle);
    setCurrentWidget(empty_);
}

void DetailPanel::beginContent(std::string_view name, const QString& editName, bool sameRecord) {
    const int scrolled = sameRecord ? scroll_->verticalScrollBar()->value() : 0;
    const QString line = displayLine(name);
    name_->setText(line);
    setTextToolTip(*name_, line);
    edit_->setAccessibleName(editName);
    auto* column = new QWidget;
    sections_ = new QVBoxLayout(column);
    // The scroll bar stands in the margin, so that both sides look the same.
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    sections_->setContentsMargins(grid::kLarge, grid::kLarge, grid::kLarge - bar, grid::kLarge);
    sections_->setSpacing(grid::kLarge);
    sections_->addStretch();
    scroll_->setWidget(column); // which takes the earlier content away
    column->setAutoFillBackground(false);
    setCurrentWidget(page_);
    scroll_->verticalScrollBar()->setValue(scrolled);
}

DetailSection& DetailPanel::addSection(const QString& title) {
    auto* section = new DetailSection(theme_, title, scroll_->widget());
    sections_->insertWidget(sections_->count() - 1, section);
    return *section;
}

} // namespace fernwick
