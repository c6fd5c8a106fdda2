#include "screens/detail/LogListModel.h"

#include "screens/theme/DisplayText.h"

#include <QDateTime>

#include <algorithm>
#include <cmath>

namespace fernwick {

namespace {

constexpr qsizetype kLongestMessage = 4096;

QString localTime(support::Date date) {
    const auto milliseconds = static_cast<qint64>(std::floor(date.secondsSinceUnixEpoch() * 1000.0));
    return QDateTime::fromMSecsSinceEpoch(milliseconds).toString(QStringLiteral("HH:mm:ss"));
}

LogLine lineOf(const LogEntry& entry) {
    return {entry.id, entry.level, localTime(entry.timestamp), displayLine(entry.message, kLongestMessage),
            entry.message};
}

} // namespace

bool LogListModel::setEntries(const std::deque<LogEntry>& entries) {
    const auto isFirst = [&](const LogLine& line) { return !entries.empty() && line.id == entries.front().id; };
    const auto firstKept = std::ranges::find_if(lines_, isFirst);
    const auto removed = static_cast<int>(firstKept - lines_.begin());
    removeFront(removed);
    const auto kept = lines_.size();
    append(entries, kept);
    return removed > 0 || lines_.size() != kept;
}

void LogListModel::removeFront(int count) {
    if (count == 0) {
        return;
    }
    beginRemoveRows({}, 0, count - 1);
    lines_.erase(lines_.begin(), lines_.begin() + count);
    endRemoveRows();
}

void LogListModel::append(const std::deque<LogEntry>& entries, std::size_t from) {
    if (entries.size() <= from) {
        return;
    }
    beginInsertRows({}, static_cast<int>(from), static_cast<int>(entries.size()) - 1);
    std::ranges::transform(entries.begin() + static_cast<std::ptrdiff_t>(from), entries.end(),
                           std::back_inserter(lines_), lineOf);
    endInsertRows();
}

QString LogListModel::copyText(int row) const {
    return line(row).time + QLatin1Char(' ') + QString::fromStdString(line(row).text);
}

int LogListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(lines_.size());
}

QVariant LogListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    return role == Qt::DisplayRole || role == Qt::AccessibleTextRole ? QVariant(line(index.row()).message)
                                                                     : QVariant();
}

} // namespace fernwick
