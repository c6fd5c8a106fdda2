#include "screens/routing/RecordTab.h"

#include "screens/routing/DetailPanel.h"

#include <QAbstractItemModel>
#include <QDialog>
#include <QItemSelectionModel>
#include <QMenu>
#include <QScopedValueRollback>

#include <utility>

namespace fernwick {

namespace {

constexpr int kIdealListWidth = 330;

} // namespace

RecordTab::RecordTab(const RoutingContext& context, const TunnelNames& tunnels, QWidget* parent)
    : QSplitter(Qt::Horizontal, parent), context_(context), tunnels_(tunnels) {
    setChildrenCollapsible(false);
    setHandleWidth(1);
}

void RecordTab::buildList(const ListColumnTexts& texts, Empty empty, QAbstractItemModel& model,
                          QAbstractItemDelegate& rows, std::function<void(int)> toggle) {
    empty_ = std::move(empty);
    auto gestures = this->gestures();
    gestures.toggle = std::move(toggle);
    column_ = new ListColumn(context_.theme, context_.dispatch, texts, callbacks(), std::move(gestures), this);
    auto& list = column_->list();
    list.setModel(&model);
    list.setItemDelegate(&rows);
    connect(list.selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { takeSelection(); });
    addWidget(column_);
}

void RecordTab::addPanel(DetailPanel& panel) {
    addWidget(&panel);
    setStretchFactor(0, 0);
    setStretchFactor(1, 1);
    setSizes({kIdealListWidth, 2 * kIdealListWidth});
}

ListColumnCallbacks RecordTab::callbacks() {
    return {.search =
                [this](const QString& text) {
                    searchText_ = text.toStdString();
                    refresh();
                },
            .add = [this] { add(); },
            .remove =
                [this] {
                    if (selectedID_) {
                        remove(*selectedID_);
                    }
                }};
}

ListGestures RecordTab::gestures() {
    return {.menu = [this](int row, QPoint where) { openMenu(row, where); },
            .edit = [this](int row) { editRecord(idOf(row)); },
            .remove = [this](int row) { remove(idOf(row)); },
            .move =
                [this](int row, int before) {
                    moveRecord(static_cast<std::size_t>(row), static_cast<std::size_t>(before));
                }};
}

void RecordTab::refresh() {
    std::size_t total = 0;
    {
        const QScopedValueRollback guard(showing_, true);
        total = fillRows(searchText_);
        showSelection();
    }
    if (column_->list().model()->rowCount() > 0) {
        column_->showList();
    } else if (total > 0) {
        column_->showEmpty(Icon::magnifier, QStringLiteral("No Results"),
                           QStringLiteral("Try a different search"));
    } else {
        column_->showEmpty(empty_.icon, empty_.title, empty_.subtitle);
    }
    column_->setCount(countText());
    refreshPanel();
}

void RecordTab::refreshPanel() {
    if (!showPanel(selectedID_)) {
        selectedID_.reset();
    }
    column_->setRemovable(selectedID_.has_value());
}

void RecordTab::showSelection() {
    auto& list = column_->list();
    const int chosen = list.selectedRow();
    if (selectedID_ ? chosen >= 0 && idOf(chosen) == *selectedID_ : chosen < 0) {
        return;
    }
    const QModelIndex wanted = list.model()->index(selectedID_ ? rowOf(*selectedID_) : -1, 0);
    list.selectionModel()->setCurrentIndex(wanted, wanted.isValid() ? QItemSelectionModel::ClearAndSelect
                                                                    : QItemSelectionModel::Clear);
    if (wanted.isValid()) {
        list.scrollTo(wanted);
    }
}

void RecordTab::takeSelection() {
    if (showing_) {
        return;
    }
    const int row = column_->list().selectedRow();
    selectedID_ = row >= 0 ? std::optional(idOf(row)) : std::nullopt;
    refreshPanel();
}

// The selection goes first, so that nothing looks for a record that is no more.
void RecordTab::remove(const support::Uuid& id) {
    const auto gone = id; // it may be the selection itself
    if (selectedID_ == gone) {
        selectedID_.reset();
    }
    removeRecord(gone);
}

void RecordTab::openMenu(int row, QPoint where) {
    const auto id = idOf(row);
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("rowMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(QStringLiteral("Edit"), this, [this, id] { editRecord(id); });
    addMenuItems(*menu, id);
    menu->addSeparator();
    menu->addAction(QStringLiteral("Delete"), this, [this, id] { remove(id); });
    menu->popup(where);
}

bool RecordTab::raiseOpenSheet() const {
    for (auto* sheet : window()->findChildren<QDialog*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (sheet->isVisible()) {
            sheet->raise();
            sheet->activateWindow();
            return true;
        }
    }
    return false;
}

void RecordTab::focusSearch() {
    column_->focusSearch();
}

void RecordTab::focusList() {
    column_->focusList();
}

} // namespace fernwick
