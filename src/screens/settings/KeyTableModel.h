// The identity keys as the rows of a table: name and path. Whether a key's file reads as encrypted is looked up
// when a row is first shown, and remembered until it is to be looked up anew.
// Threads: main thread only.
#pragma once

#include "catalogue/IdentityKey.h"
#include "platform/FileSystem.h"

#include <QAbstractTableModel>

#include <map>
#include <string>
#include <vector>

namespace fernwick {

class KeyTableModel final : public QAbstractTableModel {
public:
    enum Column { name, path, columns };

    // The files outlive the model.
    KeyTableModel(platform::FileSystem& files, QObject* parent) : QAbstractTableModel(parent), files_(files) {}

    // Shows these keys, and looks at their files anew.
    void setKeys(const std::vector<IdentityKey>& keys);

    // The id of the row of that number, which must exist.
    [[nodiscard]] const support::Uuid& idOf(int row) const { return at(row).id; }

    // The first row with that id, or -1.
    [[nodiscard]] int rowOf(const support::Uuid& id) const;

    [[nodiscard]] bool isEncrypted(int row) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    [[nodiscard]] const IdentityKey& at(int row) const { return keys_[static_cast<std::size_t>(row)]; }
    [[nodiscard]] QString spoken(const QModelIndex& index) const;

    platform::FileSystem& files_;
    std::vector<IdentityKey> keys_;
    mutable std::map<std::string, bool> encrypted_; // by path
};

} // namespace fernwick
