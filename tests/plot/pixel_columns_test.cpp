#include "recording.h"

#include <QImage>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <random>

using namespace Outils_Plot2D;
using Buckets = std::vector<SBucketOfTest>;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// The plot on a picture. Pictures that are not premultiplied are drawn by the
// general means of the painter.
QImage Paint(CPlot2D& plot, double ratio, QImage::Format format, const STheme& theme = kLightTheme) {
    QImage image(QSize(220, 160) * ratio, format);
    image.setDevicePixelRatio(ratio);
    image.fill(QColor::fromRgba(theme.ground));
    {
        QPainter painter(&image);
        CGraphics graphics(painter);
        graphics.SetTheme(theme);
        plot.Draw(graphics);
    }
    return image.convertToFormat(QImage::Format_RGB32);
}

// The painter leaves out the last pixel of some lines.
constexpr int kEnds = 4;
constexpr Colour kColour = 0xFF2060C0;
constexpr std::uint8_t kTransparency = 100;

enum Drawn : unsigned { ground = 0, line = 1, band = 2 };

// What lies at a pixel. A band has the colour of its line, and over the line it is not seen.
unsigned FindDrawn(QRgb pixel, const STheme& theme) {
    const QColor under = QColor::fromRgba(theme.ground), shown = QColor::fromRgba(theme.OnGround(kColour));
    const double part = (qRed(pixel) - under.red() + qGreen(pixel) - under.green()) /
                        static_cast<double>(shown.red() - under.red() + shown.green() - under.green());
    return part > 0.9 ? line : part > 0.1 ? band : Drawn::ground;
}

// How many pixels of `picture` within `area` show a line or a band that `other` has neither there nor a
// point's width beside it.
int CountForeign(const QImage& picture, const QImage& other, const QRect& area, const STheme& theme) {
    const int reach = static_cast<int>(std::ceil(picture.devicePixelRatio()));
    int foreign = 0;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x) {
            unsigned missing = FindDrawn(picture.pixel(x, y), theme);
            for (int dy = -reach; dy <= reach && missing; ++dy)
                for (int dx = -reach; dx <= reach && missing; ++dx)
                    if (const unsigned found = FindDrawn(other.pixel(x + dx, y + dy), theme))
                        missing &= found == line ? 0 : ~found;
            foreign += missing != 0;
        }
    return foreign;
}

// Slices as recordings give them: even with some jitter, of a wave, with spikes
// beyond the plot, with gaps, and here and there one by itself.
Buckets MakeSlices(std::mt19937& random, int count) {
    const auto chance = [&](double part) { return std::uniform_real_distribution<>()(random) < part; };
    std::uniform_real_distribution<> noise(0, std::exp(std::uniform_real_distribution<>(0, 4)(random)));
    const double step = 110.0 / count;
    std::uniform_real_distribution<> jitter(0, 0.09);
    Buckets slices;
    for (int i = 0; i < count; ++i) {
        const double middle = 50 + 30 * std::sin(i * step * 0.1);
        SBucketOfTest slice{-5 + (i + jitter(random)) * step, middle, middle - noise(random),
                            middle + noise(random)};
        if (chance(0.05)) slice.maximum = 1e9;
        if (chance(0.03)) slice.y = -500;
        if (chance(0.05)) slice.y = kNaN;
        if (chance(0.05)) slice.minimum = kNaN;
        if (chance(0.1)) slice.x += 4 * step, i += 4;
        slices.push_back(slice);
    }
    return slices;
}

} // namespace

TEST(PixelColumns, PictureIsThatOfThePaths) {
    std::mt19937 random(7);
    for (int round = 0; round < 80; ++round) {
        // Each bucket has a pixel at least and keeps clear of the next: of others the painter loses some.
        const int count = std::uniform_int_distribution<>(1, 80)(random);
        const Buckets slices = MakeSlices(random, count);
        for (const double ratio : {1.0, 1.5, 2.0}) {
            // Without its edge, at which a dot half cut may be seen or not.
            const QRect area = QRectF(62 * ratio, 22 * ratio, 96 * ratio, 96 * ratio).toRect();
            SPlotOfTest test;
            test.settings.extremumTransparency = kTransparency;
            test.plot.AddCurve(std::make_unique<CTestSource>(100.0 / count, round % 3 > 0, slices), "")
                .SetColor(kColour);
            const STheme& theme = round % 2 ? kDarkTheme : kLightTheme;
            const QImage paths = Paint(test.plot, ratio, QImage::Format_ARGB32, theme);
            for (const auto format : {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied}) {
                const QImage columns = Paint(test.plot, ratio, format, theme);
                ASSERT_LE(CountForeign(columns, paths, area, theme), kEnds)
                    << "too much, round " << round << " at " << ratio;
                ASSERT_LE(CountForeign(paths, columns, area, theme), kEnds)
                    << "too little, round " << round << " at " << ratio;
            }
        }
    }
}

TEST(PixelColumns, ExtremesOfNarrowBucketsStay) {
    // Twenty buckets in each pixel, of which one has a spike.
    Buckets slices;
    for (int i = 0; i < 2000; ++i) slices.push_back({i * 0.05, 50, 49, i == 1005 ? 80.0 : 51.0});
    SPlotOfTest test;
    test.plot.AddCurve(std::make_unique<CTestSource>(0.05, true, slices), "").SetColor(0xFF0000FF);
    const QImage image = Paint(test.plot, 1, QImage::Format_RGB32);
    const QPointF spike = SPlotOfTest::At(50, 79);
    EXPECT_NE(image.pixel(static_cast<int>(spike.x()), static_cast<int>(spike.y()) + 2), qRgb(255, 255, 255));
}

TEST(PixelColumns, NothingLeavesThePlottingArea) {
    for (const double ratio : {1.0, 1.25, 2.0}) {
        SPlotOfTest test;
        test.plot.AddCurve(
            std::make_unique<CTestSource>(
                10, true, Buckets{{-50, -50, -1e9, 1e9}, {50, 1e30, -1e9, 1e9}, {150, -1e9, -1e9, 1e9}}),
            "");
        const QImage image = Paint(test.plot, ratio, QImage::Format_RGB32);
        const QRectF area(QPointF(60, 20) * ratio, QSizeF(100, 100) * ratio);
        int inside = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixel(x, y) == qRgb(255, 255, 255)) continue;
                ++inside;
                ASSERT_TRUE(area.contains(QPointF(x + 0.5, y + 0.5))) << x << ", " << y << " at " << ratio;
            }
        EXPECT_EQ(inside, std::lround(area.width()) * std::lround(area.height())) << "the band fills it";
    }
}

// What cannot be drawn as one stretch a column, or with a plain line, is left
// to the painter.
TEST(PixelColumns, RefusesWhatItCannotShow) {
    const std::vector<SPoint> line = {{0, 0}, {50, 50}};
    const std::vector<SBucket> inOrder = {{{10, 5}, {10, 9}}, {{20, 5}, {20, 9}}};
    const std::vector<SBucket> backwards = {inOrder[1], inOrder[0]}, skewed = {{{10, 5}, {12, 9}}};
    const QPen solid(QBrush(Qt::blue), 1), dashed(QBrush(Qt::blue), 1, Qt::DashLine),
        pale(QColor(0, 0, 255, 90), 1), wide(QBrush(Qt::blue), 9);
    const auto draws = [&](const QPen& pen, const std::vector<SBucket>& buckets, auto&& prepare) {
        QImage image(100, 100, QImage::Format_RGB32);
        image.fill(Qt::white);
        const QImage before = image.copy();
        bool drawn = false;
        {
            QPainter painter(&image);
            CGraphics graphics(painter);
            graphics.SetClipRect({0, 0, 100, 100});
            prepare(painter, graphics);
            drawn = graphics.DrawOnPixels(pen, line, 0x80FF0000, buckets, 2);
        }
        EXPECT_EQ(drawn, image != before) << "a refusal leaves the picture as it was";
        return drawn;
    };
    const auto nothing = [](QPainter&, CGraphics&) {};
    EXPECT_TRUE(draws(solid, inOrder, nothing));
    EXPECT_TRUE(draws(solid, {}, nothing));
    EXPECT_FALSE(draws(solid, backwards, nothing));
    EXPECT_FALSE(draws(solid, skewed, nothing));
    for (const QPen& pen : {dashed, pale, wide}) EXPECT_FALSE(draws(pen, inOrder, nothing));
    EXPECT_FALSE(draws(solid, inOrder, [](QPainter& painter, CGraphics&) { painter.setOpacity(0.5); }));
    EXPECT_FALSE(draws(solid, inOrder, [](QPainter& painter, CGraphics&) { painter.rotate(10); }));
    EXPECT_FALSE(draws(solid, inOrder, [](QPainter&, CGraphics& graphics) { graphics.ResetClip(); }));
}

TEST(PixelColumns, LinesOfTheGridAreThoseOfThePainter) {
    for (const double offset : {0.0, 0.4, 0.5, 0.8}) {
        QImage ours(60, 60, QImage::Format_RGB32), painters(60, 60, QImage::Format_RGB32);
        for (QImage* image : {&ours, &painters}) {
            image->fill(Qt::white);
            QPainter painter(image);
            CGraphics graphics(painter);
            const float at = static_cast<float>(10 + offset);
            for (const auto& [from, to] :
                 {std::pair{SPoint{5, at}, SPoint{40, at}}, {SPoint{at, 50}, SPoint{at, 8}}}) {
                if (image == &ours)
                    graphics.DrawLine(CPlot2DPen(0xFF000078).GetNative(), from, to);
                else {
                    painter.setPen(CPlot2DPen(0xFF000078).GetNative());
                    painter.drawLine(QPointF(from.x, from.y), QPointF(to.x, to.y));
                }
            }
        }
        EXPECT_EQ(ours, painters) << offset;
    }
}
