#include "screens/theme/FlowLayout.h"

#include <QWidget>
#include <gmock/gmock.h>

#include <memory>

namespace fernwick::tests {
namespace {

using testing::ElementsAre;

constexpr int kSpacing = 6;

// A widget of a natural size.
class Box final : public QWidget {
public:
    Box(QSize size, QWidget* parent) : QWidget(parent), size_(size) { show(); }
    [[nodiscard]] QSize sizeHint() const override { return size_; }

private:
    QSize size_;
};

TEST(FlowPlaces, ChipsWrapWhereThereIsNoRoom) {
    const auto flow = flowPlaces({{60, 24}, {60, 24}}, kSpacing, 100);
    EXPECT_THAT(flow.places, ElementsAre(QPoint(0, 0), QPoint(0, 30)));
    EXPECT_EQ(flow.size, QSize(100, 2 * 24 + 6));
}

TEST(FlowPlaces, ExactFitStaysInTheRow) {
    EXPECT_EQ(flowPlaces({{47, 10}, {47, 10}}, kSpacing, 100).size.height(), 10);
    EXPECT_EQ(flowPlaces({{47, 10}, {48, 10}}, kSpacing, 100).size.height(), 26);
}

TEST(FlowPlaces, NothingTakesNoRoom) {
    EXPECT_EQ(flowPlaces({}, kSpacing, 100).size, QSize(100, 0));
    EXPECT_EQ(flowPlaces({}, kSpacing, std::nullopt).size, QSize(0, 0));
}

TEST(FlowPlaces, WithoutAWidthThereIsOneRow) {
    const auto flow = flowPlaces({{5000, 10}, {5000, 30}, {1, 20}}, kSpacing, std::nullopt);
    EXPECT_THAT(flow.places, ElementsAre(QPoint(0, 0), QPoint(5006, 0), QPoint(10012, 0)));
    EXPECT_EQ(flow.size, QSize(0, 30));
}

TEST(FlowPlaces, RowIsAsHighAsItsHighestItem) {
    const auto flow = flowPlaces({{40, 10}, {40, 30}, {40, 20}}, kSpacing, 100);
    EXPECT_THAT(flow.places, ElementsAre(QPoint(0, 0), QPoint(46, 0), QPoint(0, 36)));
    EXPECT_EQ(flow.size.height(), 30 + 6 + 20);
}

TEST(FlowPlaces, WideItemStandsAloneAndOverflows) {
    const auto flow = flowPlaces({{40, 10}, {300, 10}, {40, 10}}, kSpacing, 100);
    EXPECT_THAT(flow.places, ElementsAre(QPoint(0, 0), QPoint(0, 16), QPoint(0, 32)));
    EXPECT_EQ(flowPlaces({{300, 10}}, kSpacing, 100).size, QSize(100, 10));
}

TEST(FlowPlaces, ItemWithoutWidthFillsARowAllTheSame) {
    const auto flow = flowPlaces({{0, 10}, {200, 10}}, 0, 100);
    EXPECT_THAT(flow.places, ElementsAre(QPoint(0, 0), QPoint(0, 10)));
}

class FlowLayoutTest : public testing::Test {
protected:
    FlowLayoutTest() {
        ground.setLayout(layout);
        for (const QSize size : {QSize(60, 20), QSize(30, 20), QSize(250, 20), QSize(20, 30)}) {
            boxes.push_back(new Box(size, &ground));
            layout->addWidget(boxes.back());
        }
    }

    QWidget ground;
    FlowLayout* layout = new FlowLayout(nullptr, kSpacing);
    std::vector<Box*> boxes;
};

TEST_F(FlowLayoutTest, ItemsHaveTheirNaturalSizeAtTheirPlace) {
    layout->setGeometry(QRect(10, 20, 100, 200));
    EXPECT_EQ(boxes[0]->geometry(), QRect(10, 20, 60, 20));
    EXPECT_EQ(boxes[1]->geometry(), QRect(76, 20, 30, 20));
    EXPECT_EQ(boxes[2]->geometry(), QRect(10, 46, 250, 20));
    EXPECT_EQ(boxes[3]->geometry(), QRect(10, 72, 20, 30));
    EXPECT_EQ(layout->heightForWidth(100), 20 + 6 + 20 + 6 + 30);
}

TEST_F(FlowLayoutTest, MarginsLieAround) {
    layout->setContentsMargins(1, 2, 3, 4);
    layout->setGeometry(QRect(0, 0, 104, 200));
    EXPECT_EQ(boxes[0]->pos(), QPoint(1, 2));
    EXPECT_EQ(layout->heightForWidth(104), 20 + 6 + 20 + 6 + 30 + 6);
}

TEST_F(FlowLayoutTest, RightToLeftStartsAtTheRight) {
    ground.setLayoutDirection(Qt::RightToLeft);
    layout->setGeometry(QRect(0, 0, 100, 200));
    EXPECT_EQ(boxes[0]->geometry(), QRect(40, 0, 60, 20));
    EXPECT_EQ(boxes[1]->geometry(), QRect(4, 0, 30, 20));
}

TEST_F(FlowLayoutTest, HiddenItemsTakeNoRoom) {
    boxes[0]->hide();
    layout->setGeometry(QRect(0, 0, 100, 200));
    EXPECT_EQ(boxes[1]->pos(), QPoint(0, 0));
}

} // namespace
} // namespace fernwick::tests
