#include "plot/clipping.h"

#include <QPolygonF>

#include <gtest/gtest.h>

#include <random>

using namespace Outils_Plot2D;

TEST(PolygonToColumns, CoversPixelsByTheirCentres) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(-20, 60);
    const QRect bounds(3, 5, 40, 30);
    for (int round = 0; round < 50; ++round) {
        QPolygonF polygon; // crosses itself and its bounds
        for (int i = 0; i < 3 + round % 9; ++i) polygon.append({place(random), place(random)});
        std::vector<QRect> rects;
        ASSERT_TRUE(PolygonToColumns(polygon, bounds, rects));
        std::vector<int> covered(100 * 100, 0);
        for (const QRect& rect : rects) {
            ASSERT_TRUE(bounds.contains(rect));
            for (int x = rect.left(); x <= rect.right(); ++x)
                for (int y = rect.top(); y <= rect.bottom(); ++y)
                    ++covered[static_cast<std::size_t>(y * 100 + x)];
        }
        for (int x = bounds.left(); x <= bounds.right(); ++x)
            for (int y = bounds.top(); y <= bounds.bottom(); ++y)
                ASSERT_EQ(covered[static_cast<std::size_t>(y * 100 + x)],
                          polygon.containsPoint(QPointF(x + 0.5, y + 0.5), Qt::OddEvenFill))
                    << round << ": " << x << "," << y;
    }
}

TEST(PolygonToColumns, MergesColumnsUnlessTangled) {
    std::vector<QRect> rects;
    const std::vector<QPointF> box = {{-1e30, 10}, {1e30, 10}, {1e30, 20}, {-1e30, 20}};
    ASSERT_TRUE(PolygonToColumns(box, QRect(0, 0, 100, 100), rects));
    ASSERT_EQ(rects.size(), 1u);
    EXPECT_EQ(rects[0], QRect(0, 10, 100, 10));
    std::vector<QPointF> tangle;
    for (int i = 0; i < 1000; ++i) tangle.emplace_back(i % 2 ? 0 : 5000, i);
    EXPECT_FALSE(PolygonToColumns(tangle, QRect(0, 0, 5000, 100), rects));
    EXPECT_TRUE(PolygonToColumns(tangle, QRect(0, 0, 1000, 100), rects));
}

TEST(ClipSegment, KeepsWhatLiesWithin) {
    const SRect bounds = {0, 0, 10, 10};
    SPoint from = {-10, -5}, to = {30, 15}; // y = x / 2
    ASSERT_TRUE(ClipSegment(from, to, bounds));
    EXPECT_FLOAT_EQ(from.x, 0);
    EXPECT_FLOAT_EQ(from.y, 0);
    EXPECT_FLOAT_EQ(to.x, 10);
    EXPECT_FLOAT_EQ(to.y, 5);
    from = {-1, 5}, to = {-1, 8};
    EXPECT_FALSE(ClipSegment(from, to, bounds));
    from = {-8, 5}, to = {5, -8}; // passes by the corner
    EXPECT_FALSE(ClipSegment(from, to, bounds));
    from = to = {5, 5};
    EXPECT_TRUE(ClipSegment(from, to, bounds));
}
