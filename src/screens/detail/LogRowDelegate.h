// Draws one line of a log: time, level, and the message over as many lines as it needs.
// Threads: main thread only.
#pragma once

#include "screens/detail/LogListModel.h"
#include "screens/theme/Theme.h"

#include <QFontMetrics>
#include <QHash>
#include <QStyledItemDelegate>

class QTextLayout;

namespace fernwick {

// How a level is shown.
struct LogLevelLook {
    Icon icon;
    QColor Palette::* iconColor;
    QColor Palette::* messageColor;
};

[[nodiscard]] LogLevelLook lookOf(LogLevel level);

class LogRowDelegate final : public QStyledItemDelegate {
public:
    LogRowDelegate(const Theme& theme, const LogListModel& model, QObject* parent);

    // The width that rows have from now on. Returns whether it is another one; then all heights are other ones,
    // too.
    bool setRowWidth(int width);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    // Breaks the text into lines for the width of a message; returns their height.
    int layOut(QTextLayout& layout) const;
    [[nodiscard]] int messageLeft() const;

    const Theme& theme_;
    const LogListModel& model_;
    QFont font_;
    QFontMetrics metrics_;
    int timeWidth_;
    int rowWidth_ = 0;
    mutable QHash<QString, int> heights_; // of messages, by their text
};

} // namespace fernwick
