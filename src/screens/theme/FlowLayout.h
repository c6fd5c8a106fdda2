// Lays its items out like words: side by side in their natural size, and in another row where there is no room.
// Threads: main thread only.
#pragma once

#include <QLayout>
#include <QList>

#include <optional>

namespace fernwick {

// Where items stand from the top left corner, and how much room all of them take.
struct FlowPlaces {
    QList<QPoint> places; // one for each item
    QSize size;
};

// Puts items of these sizes into rows of that width; without a width there is one row. An item wider than the
// width stands alone and overflows. A row is as high as its highest item; `spacing` lies between items and
// between rows. All of them are as wide as the width, 0 if there is none.
[[nodiscard]] FlowPlaces flowPlaces(const QList<QSize>& items, int spacing, std::optional<int> width);

class FlowLayout final : public QLayout {
public:
    FlowLayout(QWidget* parent, int spacing);
    FlowLayout(const FlowLayout&) = delete;
    FlowLayout& operator=(const FlowLayout&) = delete;
    ~FlowLayout() override;

    void addItem(QLayoutItem* item) override { items_.append(item); }
    [[nodiscard]] int count() const override { return static_cast<int>(items_.size()); }
    [[nodiscard]] QLayoutItem* itemAt(int index) const override { return items_.value(index); }
    QLayoutItem* takeAt(int index) override;
    [[nodiscard]] Qt::Orientations expandingDirections() const override { return {}; }
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override { return minimumSize(); }
    [[nodiscard]] QSize minimumSize() const override;
    void setGeometry(const QRect& area) override;

private:
    // Those that are to be seen, in order.
    [[nodiscard]] QList<QLayoutItem*> shown() const;

    QList<QLayoutItem*> items_;
};

} // namespace fernwick
