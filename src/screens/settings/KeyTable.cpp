#include "screens/settings/KeyTable.h"

#include "screens/settings/KeyRowDelegate.h"
#include "screens/theme/Grid.h"
#include "screens/theme/ListKeys.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>

#include <utility>

namespace fernwick {

namespace {

constexpr int kHeaderHeight = 26;
constexpr int kNameWidth = 170;
constexpr int kHeaderInset = 12;
constexpr int kLineInset = 7; // of the line between two titles

// The line of column titles, which the toolkit would draw as buttons.
class KeyTableHeader final : public QHeaderView {
public:
    KeyTableHeader(const Theme& theme, QWidget* parent) : QHeaderView(Qt::Horizontal, parent), theme_(theme) {
        setFont(theme.font(11, QFont::Medium));
        setFixedHeight(std::max(kHeaderHeight, fontMetrics().height() + grid::kSmall));
        setStretchLastSection(true);
        setMinimumSectionSize(kNameWidth / 2);
        setSectionsClickable(false);
        setHighlightSections(false);
    }

protected:
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override {
        const Palette& colors = theme_.colors();
        painter->save();
        painter->fillRect(rect, colors.field);
        painter->fillRect(QRect(rect.left(), rect.bottom(), rect.width(), 1), colors.separator);
        if (logicalIndex > 0) { // where the columns can be dragged
            const QRect line(rect.left(), rect.top() + kLineInset, 1, rect.height() - 2 * kLineInset);
            painter->fillRect(QStyle::visualRect(layoutDirection(), rect, line), colors.separator);
        }
        const QRect title = rect.adjusted(kHeaderInset, 0, -grid::kTight, 0);
        painter->setPen(colors.secondary);
        painter->setFont(font());
        painter->drawText(QStyle::visualRect(layoutDirection(), rect, title),
                          Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                          model()->headerData(logicalIndex, Qt::Horizontal).toString());
        painter->restore();
    }

    void paintEvent(QPaintEvent* event) override {
        QPainter(viewport()).fillRect(viewport()->rect(), theme_.colors().field);
        QHeaderView::paintEvent(event);
    }

private:
    const Theme& theme_;
};

} // namespace

KeyTable::KeyTable(const Theme& theme, KeyTableModel& model, Callbacks callbacks, QWidget* parent)
    : QTableView(parent), keys_(model), callbacks_(std::move(callbacks)) {
    setObjectName(QStringLiteral("keyTable"));
    setAccessibleName(QStringLiteral("Identity Keys"));
    setMinimumSize(kMinimumWidth, kMinimumHeight);
    setFrameShape(QFrame::NoFrame);
    setShowGrid(false);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(false);
    setMouseTracking(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    QPalette grounds;
    grounds.setColor(QPalette::Highlight, Qt::transparent); // the delegate draws its own
    setPalette(grounds);
    setHorizontalHeader(new KeyTableHeader(theme, this));
    auto* delegate = new KeyRowDelegate(theme, model, *this);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(delegate->rowHeight());
    setModel(&model);
    setItemDelegate(delegate);
    horizontalHeader()->resizeSection(KeyTableModel::name, kNameWidth);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (!showing_) {
            const auto rows = selectionModel()->selectedRows();
            callbacks_.selected(rows.isEmpty() ? std::nullopt : std::optional(keys_.idOf(rows.first().row())));
        }
    });
}

void KeyTable::showKeys(const std::vector<IdentityKey>& keys, const std::optional<support::Uuid>& selected) {
    const QScopedValueRollback guard(showing_, true);
    const int place = verticalScrollBar()->value();
    keys_.setKeys(keys);
    verticalScrollBar()->setValue(place);
    select(selected);
}

void KeyTable::select(const std::optional<support::Uuid>& id) {
    const int row = id ? keys_.rowOf(*id) : -1;
    if (row < 0) {
        selectionModel()->clearSelection();
        return;
    }
    if (!selectionModel()->isRowSelected(row)) {
        selectRow(row);
        scrollTo(keys_.index(row, 0));
    }
}

void KeyTable::keyPressEvent(QKeyEvent* event) {
    const bool wantsRemoval = event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace;
    if (wantsRemoval && event->modifiers() == Qt::NoModifier && selectionModel()->hasSelection()) {
        callbacks_.remove();
        return;
    }
    if (!chooseFirst(*this, *event)) {
        QTableView::keyPressEvent(event);
    }
}

void KeyTable::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && !indexAt(event->position().toPoint()).isValid()) {
        selectionModel()->clearSelection(); // beside the rows is nothing
    }
    QTableView::mousePressEvent(event);
}

} // namespace fernwick
