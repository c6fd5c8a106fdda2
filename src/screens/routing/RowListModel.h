// The rows of a searchable list, in the order in which they are stored. A new list is compared with the old
// one, so that an edit, an added and a removed row leave the others, their selection and the scroll position
// alone. Threads: main thread only.
#pragma once

#include "support/Uuid.h"

#include <QAbstractListModel>

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace fernwick {

// `Row` is a value with the members `id`, `title()` (one line of text) and `spoken()` (what it is called
// aloud).
template <class Row>
class RowListModel final : public QAbstractListModel {
public:
    explicit RowListModel(QObject* parent) : QAbstractListModel(parent) {}

    void setRows(std::vector<Row> rows) {
        const auto sameId = [](const Row& left, const Row& right) { return left.id == right.id; };
        const auto [oldStop, newStop] = std::ranges::mismatch(rows_, rows, sameId);
        auto oldEnd = rows_.cend();
        auto newEnd = rows.cend();
        while (oldEnd != oldStop && newEnd != newStop && sameId(*std::prev(oldEnd), *std::prev(newEnd))) {
            --oldEnd;
            --newEnd;
        }
        const auto from = static_cast<int>(oldStop - rows_.begin());
        const auto removed = static_cast<int>(oldEnd - oldStop);
        const auto added = static_cast<int>(newEnd - newStop);
        if (removed > 0 && added > 0) {
            beginResetModel();
            rows_ = std::move(rows);
            endResetModel();
        } else if (removed > 0) {
            beginRemoveRows({}, from, from + removed - 1);
            rows_.erase(oldStop, oldEnd);
            endRemoveRows();
            takeChanges(rows);
        } else if (added > 0) {
            beginInsertRows({}, from, from + added - 1);
            rows_.insert(oldStop, rows.cbegin() + from, newEnd);
            endInsertRows();
            takeChanges(rows);
        } else {
            takeChanges(rows);
        }
    }

    // The row of that number, which must exist.
    [[nodiscard]] const Row& row(int number) const { return rows_[static_cast<std::size_t>(number)]; }

    // The first row with that id, or -1.
    [[nodiscard]] int rowOf(const support::Uuid& id) const {
        const auto found = std::ranges::find(rows_, id, &Row::id);
        return found != rows_.end() ? static_cast<int>(found - rows_.begin()) : -1;
    }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(rows_.size());
    }

    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid() || index.row() >= rowCount()) {
            return {};
        }
        switch (role) {
        case Qt::DisplayRole:
            return row(index.row()).title();
        case Qt::AccessibleTextRole:
            return row(index.row()).spoken();
        default:
            return {};
        }
    }

private:
    // Both lists have the same ids in the same places.
    void takeChanges(std::vector<Row>& rows) {
        for (int number = 0; number < rowCount(); ++number) {
            auto& held = rows_[static_cast<std::size_t>(number)];
            if (auto& given = rows[static_cast<std::size_t>(number)]; held != given) {
                held = std::move(given);
                Q_EMIT dataChanged(index(number), index(number));
            }
        }
    }

    std::vector<Row> rows_;
};

} // namespace fernwick
