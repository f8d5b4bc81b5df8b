#include "graph/pages.h"

#include "graph/fabricated.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

using namespace test;

namespace {

// A sheet of 20 x 30 cm with 100 units a centimetre, of which half a centimetre on each side is not
// printable.
constexpr SPageMetrics kSheet = {{2000, 3000}, {50, 50}, {254, 254}};
constexpr SPageMargins kMargins = {2, 2, 2, 2, 0.5f}; // a box of 1600 x 2600 at (150, 150)

void ExpectNear(const SRect& found, const SRect& expected) {
    EXPECT_NEAR(found.x, expected.x, 0.01f);
    EXPECT_NEAR(found.y, expected.y, 0.01f);
    EXPECT_NEAR(found.width, expected.width, 0.01f);
    EXPECT_NEAR(found.height, expected.height, 0.01f);
}

TEST(PrintedPages, PortletsFillPagesFromTheTop) {
    struct SCase {
        const char* what;
        std::vector<SSize> sizes;
        std::vector<US_printedPageInfo> pages;
        std::vector<SRect> places;
    };
    const SCase cases[] = {
        {"nothing to print", {}, {}, {}},
        {"one", {{800, 400}}, {{0, 0}}, {{150, 150, 1600, 800}}},
        {"three just fit",
         {{800, 400}, {800, 400}, {800, 450}},
         {{0, 2}},
         {{150, 150, 1600, 800}, {150, 1000, 1600, 800}, {150, 1850, 1600, 900}}},
        {"the third does not fit",
         {{800, 400}, {800, 400}, {800, 451}, {800, 200}},
         {{0, 1}, {2, 3}},
         {{150, 150, 1600, 800}, {150, 1000, 1600, 800}, {150, 150, 1600, 902}, {150, 1102, 1600, 400}}},
        {"higher than a page",
         {{800, 100}, {800, 2600}, {800, 100}},
         {{0, 0}, {1, 1}, {2, 2}},
         {{150, 150, 1600, 200}, {150, 150, 800, 2600}, {150, 150, 1600, 200}}},
        {"a portlet without a size", {{800, 400}, {0, 0}}, {}, {}},
    };
    for (const SCase& row : cases) {
        SCOPED_TRACE(row.what);
        const SPrintedPages found = ComputePages(kSheet, kMargins, row.sizes);
        EXPECT_EQ(found.pages, row.pages);
        ASSERT_EQ(found.places.size(), row.places.size());
        for (std::size_t i = 0; i < row.places.size(); ++i) ExpectNear(found.places[i], row.places[i]);
    }
}

TEST(PrintedPages, MarginsThatMeetLeaveNoPage) {
    const SSize size{800, 400};
    EXPECT_TRUE(ComputePages(kSheet, {10, 10, 2, 2, 0}, std::span(&size, 1)).pages.empty());
    EXPECT_TRUE(ComputePages(kSheet, {2, 2, 20, 20, 0}, std::span(&size, 1)).pages.empty());
}

// The second page of two shows the second graph in its place and nothing elsewhere, and the screen stays.
TEST(PrintedPages, PagesAreDrawnIntoTheirPlaces) {
    const Outils_Valeurs::CTrvAdaptors adaptors;
    Outils_Plot2D::CPlot2DSettings settings;
    CTrv1DGraphStack stack;
    stack.SetGraphs({{nullptr, "first", &adaptors.GetNumeric(), {}, {}},
                     {nullptr, "second", &adaptors.GetNumeric(), {}, {}}},
                    settings);
    stack.Layout({400, 400}, ELayout::fit);
    const SRect screen = stack.GetPortlets()[1]->GetRect();
    const SPageMetrics sheet = {{800, 500}, {0, 0}, {254, 254}};
    const SPrintedPages pages = ComputePages(sheet, {1, 1, 1, 1, 0}, stack);
    ASSERT_EQ(pages.pages.size(), 2u);

    QImage image(800, 500, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    CGraphics graphics(painter);
    const QTransform before = graphics.GetTransform();
    DrawPage(stack, graphics, pages, 1);
    EXPECT_EQ(graphics.GetTransform(), before);
    painter.end();
    const auto count = [&image](const QRect& rect) {
        int drawn = 0;
        for (int y = rect.top(); y <= rect.bottom(); ++y)
            for (int x = rect.left(); x <= rect.right(); ++x)
                drawn += image.pixel(x, y) != QColor(Qt::white).rgb();
        return drawn;
    };
    const SRect& place = pages.places[1];
    EXPECT_GT(count(QRectF(static_cast<double>(place.x), static_cast<double>(place.y),
                           static_cast<double>(place.width), static_cast<double>(place.height))
                        .toRect()),
              100);
    EXPECT_EQ(count({0, 0, 800, 95}), 0);
    EXPECT_EQ(count({0, 410, 800, 90}), 0);
    EXPECT_EQ(stack.GetPortlets()[1]->GetRect().y, screen.y);
}

} // namespace
