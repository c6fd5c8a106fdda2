// The installed applications as rows of a list, those that a search keeps. Threads: main thread only.
#pragma once

#include "platform/InstalledApplications.h"
#include "screens/theme/Theme.h"

#include <QAbstractListModel>
#include <QIcon>

#include <string>
#include <vector>

namespace fernwick {

class ApplicationListModel final : public QAbstractListModel {
public:
    // The role of an application's value; its name is the text to display and its icon the decoration.
    static constexpr int kValueRole = Qt::UserRole;

    ApplicationListModel(const Theme& theme, QObject* parent);

    // Takes the applications over, in their order.
    void setApplications(std::vector<platform::InstalledApplication> applications);

    // Keeps those whose name or value contains the text, letter case aside; all for an empty text.
    void setSearchText(const std::string& searchText);

    // How many there are, found or not.
    [[nodiscard]] std::size_t total() const { return applications_.size(); }

    [[nodiscard]] const platform::InstalledApplication& application(int row) const;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

private:
    [[nodiscard]] QIcon icon(const platform::InstalledApplication& application) const;
    void search();

    const Theme& theme_;
    std::vector<platform::InstalledApplication> applications_;
    std::vector<std::size_t> found_; // their numbers
    std::string searchText_;
};

} // namespace fernwick
