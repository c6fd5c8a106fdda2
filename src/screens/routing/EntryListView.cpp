#include "screens/routing/EntryListView.h"

#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QAbstractListModel>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QWheelEvent>

#include <algorithm>
#include <utility>

namespace fernwick {

namespace {

constexpr int kMarkSize = 14;
constexpr int kDotSize = 8;
constexpr int kTallest = QWIDGETSIZE_MAX / 2; // half a million lines

class EntryModel final : public QAbstractListModel {
public:
    EntryModel(std::vector<EntryLine> lines, QObject* parent)
        : QAbstractListModel(parent), lines_(std::move(lines)) {}

    [[nodiscard]] const EntryLine& line(int row) const { return lines_[static_cast<std::size_t>(row)]; }

    [[nodiscard]] int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(lines_.size());
    }

    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::AccessibleTextRole)) {
            return {};
        }
        const EntryLine& shown = line(index.row());
        return role == Qt::AccessibleTextRole && !shown.spoken.isEmpty() ? shown.spoken : shown.text;
    }

private:
    std::vector<EntryLine> lines_;
};

class EntryDelegate final : public QStyledItemDelegate {
public:
    EntryDelegate(const Theme& theme, const EntryModel& model, QObject* parent)
        : QStyledItemDelegate(parent), theme_(theme), model_(model) {}

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& /*index*/) const override {
        return {1, std::max(option.fontMetrics.height(), kMarkSize) + grid::kTight + 2};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const EntryLine& line = model_.line(index.row());
        const Palette& colors = theme_.colors();
        QRect area = option.rect;
        if (line.icon) {
            theme_.icons().paint(*painter, *line.icon, colors.secondary,
                                 QRectF(area.left(), area.top(), kMarkSize, area.height()), kMarkSize);
            area.setLeft(area.left() + kMarkSize + grid::kSmall);
        } else if (line.dot != nullptr) {
            const QRectF dot(area.left(), area.top() + (area.height() - kDotSize) / 2.0, kDotSize, kDotSize);
            stylepaint::roundedBox(*painter, dot, colors.*line.dot, Qt::transparent, kDotSize / 2.0);
            area.setLeft(area.left() + kDotSize + grid::kSmall);
        }
        painter->setFont(option.font);
        painter->setPen(colors.text);
        drawLine(*painter, area, line.text, line.isAddress ? Qt::LeftToRight : Qt::LayoutDirectionAuto);
    }

private:
    const Theme& theme_;
    const EntryModel& model_;
};

} // namespace

EntryListView::EntryListView(const Theme& theme, const QString& name, const QFont& font,
                             std::vector<EntryLine> lines, QWidget* parent)
    : QListView(parent) {
    setObjectName(QStringLiteral("entryList"));
    setAccessibleName(name);
    setFont(font);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setSelectionMode(QAbstractItemView::NoSelection);
    setUniformItemSizes(true);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    const auto count = static_cast<qint64>(lines.size());
    auto* model = new EntryModel(std::move(lines), this);
    setModel(model);
    setItemDelegate(new EntryDelegate(theme, *model, this));
    setFixedHeight(static_cast<int>(std::min<qint64>(count * sizeHintForRow(0), kTallest)));
}

void EntryListView::wheelEvent(QWheelEvent* event) {
    event->ignore(); // it is what it stands in that scrolls
}

} // namespace fernwick
