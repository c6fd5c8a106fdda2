// The lines of one tunnel's log as rows. A new state of the log is compared with what is shown, so that only
// what left at the front and came at the end changes. Threads: main thread only.
#pragma once

#include "catalogue/LogEntry.h"

#include <QAbstractListModel>
#include <QString>

#include <deque>

namespace fernwick {

struct LogLine {
    support::Uuid id;
    LogLevel level = LogLevel::info;
    QString time;     // "HH:mm:ss", local
    QString message;  // fit to be drawn
    std::string text; // the message as it came
};

class LogListModel final : public QAbstractListModel {
public:
    explicit LogListModel(QObject* parent) : QAbstractListModel(parent) {}

    // Shows these lines. Returns whether anything changed.
    bool setEntries(const std::deque<LogEntry>& entries);

    // The line of a row, which must exist.
    [[nodiscard]] const LogLine& line(int row) const { return lines_[static_cast<std::size_t>(row)]; }

    // The line as it is copied: time and message.
    [[nodiscard]] QString copyText(int row) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

private:
    void removeFront(int count);
    void append(const std::deque<LogEntry>& entries, std::size_t from);

    std::deque<LogLine> lines_;
};

} // namespace fernwick
