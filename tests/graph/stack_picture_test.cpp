#include "graph/stack_picture.h"

#include "graph/fabricated.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

using namespace test;

namespace {

const SChannelKey kChannel = {reinterpret_cast<const Metier_Tarvel::CTrvDataFile*>(8), 1}; // only compared
constexpr int kWidth = 900, kHeight = 200;

class StackPicture : public testing::Test {
  protected:
    StackPicture() {
        const SCurveDescription curve{"a curve", kChannel, kLatitude, 1.0, 0xFF4682B4};
        m_stack.SetGraphs({{nullptr, "latitude", &m_adaptors.GetNumeric(), {curve}, {}}}, m_settings);
        m_stack.Layout({kWidth, kHeight}, ELayout::fit);
        m_stack.Show({{Seconds(0), Seconds(1000)}, {}});
        m_stack.SetDataset(kChannel, MakeDataset(0, 1000, [](double t) { return t; }));
    }
    QImage Draw(const CViewState& state) {
        QImage image(kWidth, kHeight, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        CGraphics graphics(painter);
        DrawStack(m_stack, graphics, {0, 0, kWidth, kHeight}, false);
        DrawCursors(m_stack, graphics, state, {}, true);
        return image;
    }
    SRect Area() const { return m_stack.GetPortlets()[0]->GetPlottingRect(); }
    // Which columns of the labels under the plotting area have no more than one colour.
    std::vector<QRgb> LabelColumns(const QImage& image, bool& same, int x) {
        std::vector<QRgb> pixels;
        same = true;
        for (int y = static_cast<int>(Area().Bottom()) + 5; y < kHeight - 5; ++y) {
            pixels.push_back(image.pixel(x, y));
            same = same && pixels.back() == pixels.front();
        }
        return pixels;
    }

    Outils_Valeurs::CTrvAdaptors m_adaptors;
    Outils_Plot2D::CPlot2DSettings m_settings;
    CTrv1DGraphStack m_stack;
};

// A label of the time axis is seen as a whole or not at all, wherever the length of the interval is written.
TEST_F(StackPicture, LengthOfTheIntervalCutsNoLabel) {
    const QImage plain = Draw(CViewState());
    const int left = static_cast<int>(Area().x), right = static_cast<int>(Area().Right());
    // The labels: columns with ink, no further apart than two letters.
    std::vector<std::pair<int, int>> labels;
    for (int x = left - 40; x < right; ++x) {
        bool same = false;
        LabelColumns(plain, same, x);
        if (same) continue;
        if (!labels.empty() && x - labels.back().second < 12)
            labels.back().second = x;
        else
            labels.emplace_back(x, x);
    }
    ASSERT_GE(labels.size(), 3u);
    int untouched = 0, covered = 0;
    for (int begin = 100; begin < 600; begin += 23) {
        CViewState state;
        state.SetCursor(ECursor::first, Seconds(begin));
        state.SetCursor(ECursor::second, Seconds(begin + 90));
        const QImage image = Draw(state);
        const QRgb box = Outils_Plot2D::kLightTheme.selectedTo;
        for (const auto& [from, to] : labels) {
            int inBox = 0, changed = 0, inked = 0;
            for (int x = from; x <= to; ++x) {
                bool same = false;
                const auto before = LabelColumns(plain, same, x), now = LabelColumns(image, same, x);
                const bool isBox = std::ranges::find(now, box) != now.end();
                inBox += isBox;
                changed += now != before;
                inked += !isBox && !same;
            }
            if (changed == 0) {
                ++untouched;
            } else {
                ++covered;
                EXPECT_GT(inBox, 0) << "a label goes only for the length";
                EXPECT_EQ(inked, 0) << "a part of the label at " << from << " is left, at " << begin;
            }
        }
    }
    EXPECT_GT(untouched, 0);
    EXPECT_GT(covered, 0);
}

} // namespace
