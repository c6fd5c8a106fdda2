// Draws one row of the popover: status dot, name, and where the tunnel leads. The button at its end is a widget
// of the list's, since only one row has it at a time. Threads: main thread only.
#pragma once

#include "screens/menubar/PopoverTunnelModel.h"
#include "screens/theme/Theme.h"

#include <QFontMetrics>
#include <QStyledItemDelegate>

#include <functional>

namespace fernwick {

class PopoverTunnelRow final : public QStyledItemDelegate {
public:
    static constexpr int kHeight = 42; // of a row, unless the desktop's text is enlarged
    static constexpr int kHorizontalPadding = 14;
    static constexpr int kVerticalPadding = 6;
    static constexpr int kButtonSize = 24;

    // How much of its ground and its button a row shows at this moment, 0 to 1.
    using Highlight = std::function<double(int)>;

    // The theme and the model outlive the delegate.
    PopoverTunnelRow(const Theme& theme, const PopoverTunnelModel& model, Highlight highlight, QObject* parent);

    [[nodiscard]] int height() const;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void paintDot(QPainter& painter, const QRectF& area, const std::optional<TunnelStatus>& status) const;

    const Theme& theme_;
    const PopoverTunnelModel& model_;
    Highlight highlight_;
    QFont nameFont_;
    QFont endpointFont_;
    QFontMetrics nameMetrics_;
    QFontMetrics endpointMetrics_;
};

} // namespace fernwick
