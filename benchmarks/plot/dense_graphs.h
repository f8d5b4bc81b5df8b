// Ten dense graphs for the benchmarks of painting, and how their work is timed.
#pragma once

#include "plot/plot.h"

#include <QPointF>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <ctime>
#include <memory>
#include <random>
#include <vector>

namespace bench {

using namespace Outils_Plot2D;

inline constexpr int kWidth = 1600, kHeight = 1000, kGraphs = 10;
inline constexpr std::uint32_t kBuckets = 2000;
inline constexpr float kGraphHeight = static_cast<float>(kHeight) / kGraphs;

// A slow wave with noise, the noise as band.
class CNoise : public CPlot2DDataSource {
  public:
    explicit CNoise(unsigned seed) {
        std::mt19937 random(seed);
        std::uniform_real_distribution<double> noise(0, 20);
        for (std::uint32_t i = 0; i < kBuckets; ++i) {
            const double middle = 50 + 20 * std::sin(i * 0.005 + seed);
            m_values.push_back({middle + noise(random) - 10, middle - noise(random), middle + noise(random)});
        }
    }
    bool HasExtremum() const override { return true; }
    double GetPeriod() const override { return 100.0 / kBuckets; }
    std::uint32_t GetCount() const override { return kBuckets; }
    bool GetPoint(std::uint32_t i, double& x, double& y) const override { return Get(i, 0, x, y); }
    bool GetMinimum(std::uint32_t i, double& x, double& y) const override { return Get(i, 1, x, y); }
    bool GetMaximum(std::uint32_t i, double& x, double& y) const override { return Get(i, 2, x, y); }

  private:
    bool Get(std::uint32_t i, std::size_t which, double& x, double& y) const {
        x = (i + 0.5) * 100.0 / kBuckets;
        y = m_values[i][which];
        return true;
    }
    std::vector<std::array<double, 3>> m_values;
};

struct SGraphs {
    CPlot2DSettings settings;
    std::vector<std::unique_ptr<CPlot2D>> plots;
    std::vector<std::vector<QPointF>> lines; // the same points, ready for a painter

    SGraphs() {
        for (unsigned g = 0; g < kGraphs; ++g) {
            auto& plot = *plots.emplace_back(std::make_unique<CPlot2D>(settings));
            const float top = static_cast<float>(g) * kGraphHeight;
            plot.SetRect({0, top, kWidth, kGraphHeight});
            plot.SetBrush(std::make_unique<CPlot2DSolidBrush>(0xFFFFFFFF));
            plot.GetPlottingArea().SetRect({200, 2, kWidth - 203, kGraphHeight - 20});
            plot.GetLegend().SetRect({0, 2, 150, kGraphHeight - 5});
            plot.GetVerticalAxis().GetGrid().SetPen(std::make_unique<CPlot2DPen>(0xFFE0E0E0));
            auto source = std::make_unique<CNoise>(g);
            auto& line = lines.emplace_back();
            const SRect& area = plot.GetPlottingArea().GetRect();
            for (std::uint32_t i = 0; i < kBuckets; ++i) {
                double x = 0, y = 0;
                source->GetPoint(i, x, y);
                line.emplace_back(area.x + x / 100 * area.width, top + area.Bottom() - y / 100 * area.height);
            }
            plot.AddCurve(std::move(source), "Velocity - North");
        }
    }
};

inline double Seconds(auto&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Of all threads: on a machine that others use too this says more than the clock on the wall.
inline double ProcessorSeconds(auto&& work) {
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    const double start = now();
    work();
    return now() - start;
}

inline double Median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                     values.end());
    return values[values.size() / 2];
}

} // namespace bench
