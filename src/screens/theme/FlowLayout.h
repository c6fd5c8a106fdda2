// Lays its items out like words: side by side, and on another line where there is no room.
// Threads: main thread only.
#pragma once

#include <QLayout>
#include <QList>

namespace fernwick {

class FlowLayout final : public QLayout {
public:
    // `spacing` lies between items and between lines.
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
    // Goes through the items in an area of that width, and puts them there if `place` is set. Returns the
    // height.
    int flow(const QRect& area, bool place) const;

    QList<QLayoutItem*> items_;
};

} // namespace fernwick
