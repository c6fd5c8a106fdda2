#include "screens/settings/KeyTableModel.h"

#include "screens/settings/KeyEncryption.h"
#include "screens/theme/DisplayText.h"

#include <algorithm>

namespace fernwick {

namespace {

constexpr qsizetype kLongestPath = 4096;

} // namespace

void KeyTableModel::setKeys(const std::vector<IdentityKey>& keys) {
    encrypted_.clear();
    if (std::ranges::equal(keys_, keys, {}, &IdentityKey::id, &IdentityKey::id)) {
        keys_ = keys;
        if (!keys_.empty()) {
            Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columns - 1));
        }
        return;
    }
    beginResetModel();
    keys_ = keys;
    endResetModel();
}

int KeyTableModel::rowOf(const support::Uuid& id) const {
    const auto found = std::ranges::find(keys_, id, &IdentityKey::id);
    return found != keys_.end() ? static_cast<int>(found - keys_.begin()) : -1;
}

bool KeyTableModel::isEncrypted(int row) const {
    const auto& file = at(row).path;
    auto known = encrypted_.find(file);
    if (known == encrypted_.end()) {
        known = encrypted_.emplace(file, readsAsEncrypted(files_, file)).first;
    }
    return known->second;
}

int KeyTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(keys_.size());
}

int KeyTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columns;
}

QVariant KeyTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return index.column() == name ? displayLine(at(index.row()).name)
                                      : displayLine(at(index.row()).path, kLongestPath);
    case Qt::AccessibleTextRole:
        return spoken(index);
    case Qt::ToolTipRole: // as it stands: a tool tip would otherwise guess whether it is rich text
        return QStringLiteral("<span>%1</span>")
            .arg(data(this->index(index.row(), path), Qt::DisplayRole).toString().toHtmlEscaped());
    default:
        return {};
    }
}

QString KeyTableModel::spoken(const QModelIndex& index) const {
    const QString text = data(index, Qt::DisplayRole).toString();
    return index.column() == name && isEncrypted(index.row()) ? text + QStringLiteral(", encrypted") : text;
}

QVariant KeyTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    return section == name ? QStringLiteral("Name") : QStringLiteral("Path");
}

} // namespace fernwick
