// Draws one row of the sidebar: status mark, name and kind, login, and the tags.
// Threads: main thread only.
#pragma once

#include "screens/main/TunnelListModel.h"
#include "screens/theme/Theme.h"

#include <QFontMetrics>
#include <QStyledItemDelegate>

namespace fernwick {

class TunnelRowDelegate final : public QStyledItemDelegate {
public:
    TunnelRowDelegate(const Theme& theme, const TunnelListModel& model, QObject* parent);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void paintMark(QPainter& painter, const QRectF& area, const std::optional<TunnelStatus>& status) const;
    void paintName(QPainter& painter, const QRect& line, const Tunnel& tunnel) const;
    void paintLogin(QPainter& painter, const QRect& line, const Tunnel& tunnel) const;
    void paintTags(QPainter& painter, const QRect& line, int row) const;

    const Theme& theme_;
    const TunnelListModel& model_;
    QFont nameFont_;
    QFont loginFont_;
    QFont tagFont_;
    QFontMetrics nameMetrics_;
    QFontMetrics loginMetrics_;
    QFontMetrics tagMetrics_;
};

} // namespace fernwick
