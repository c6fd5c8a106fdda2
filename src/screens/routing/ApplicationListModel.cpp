#include "screens/routing/ApplicationListModel.h"

#include "screens/theme/DisplayText.h"
#include "screens/theme/Parts.h"
#include "support/Text.h"

#include <QFileInfo>

namespace fernwick {

ApplicationListModel::ApplicationListModel(const Theme& theme, QObject* parent)
    : QAbstractListModel(parent), theme_(theme) {}

void ApplicationListModel::setApplications(std::vector<platform::InstalledApplication> applications) {
    beginResetModel();
    applications_ = std::move(applications);
    search();
    endResetModel();
}

void ApplicationListModel::setSearchText(const std::string& searchText) {
    beginResetModel();
    searchText_ = searchText;
    search();
    endResetModel();
}

void ApplicationListModel::search() {
    const support::CaselessNeedle needle(searchText_);
    found_.clear();
    for (std::size_t number = 0; number < applications_.size(); ++number) {
        const auto& application = applications_[number];
        if (searchText_.empty() || needle.isIn(application.name) || needle.isIn(application.value)) {
            found_.push_back(number);
        }
    }
}

const platform::InstalledApplication& ApplicationListModel::application(int row) const {
    return applications_.at(found_.at(static_cast<std::size_t>(row)));
}

int ApplicationListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(found_.size());
}

QVariant ApplicationListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const auto& shown = application(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return displayLine(shown.name);
    case Qt::DecorationRole:
        return icon(shown);
    case Qt::AccessibleTextRole:
        return QStringLiteral("%1, %2").arg(displayLine(shown.name), displayLine(shown.value));
    case kValueRole:
        return displayLine(shown.value);
    default:
        return {};
    }
}

QIcon ApplicationListModel::icon(const platform::InstalledApplication& application) const {
    const QString name = QString::fromStdString(application.icon);
    QIcon icon;
    if (!name.startsWith(QLatin1Char('/'))) {
        icon = QIcon::fromTheme(name);
    } else if (QFileInfo(name).isFile()) { // reading a pipe would hold up the window
        icon = QIcon(name);
    }
    return icon.isNull() ? themedIcon(theme_, Icon::appBadge, &Palette::secondary) : icon;
}

} // namespace fernwick
