// Where a serie takes its points from: one per bucket of the display, in the order of x.
#pragma once

#include <cstdint>

namespace Outils_Plot2D {

class CPlot2DDataSource {
  public:
    virtual ~CPlot2DDataSource() = default;

    // Minimum and maximum are there for all points.
    virtual bool HasExtremum() const = 0;
    // The width of a bucket on the horizontal scale.
    virtual double GetPeriod() const = 0;
    virtual std::uint32_t GetCount() const = 0;
    // The representative point of a bucket, its minimum and its maximum. False: there is none, and the serie
    // passes over it.
    virtual bool GetPoint(std::uint32_t index, double& x, double& y) const = 0;
    virtual bool GetMinimum(std::uint32_t index, double& x, double& y) const = 0;
    virtual bool GetMaximum(std::uint32_t index, double& x, double& y) const = 0;
    // Points to show where the exact ones have not come yet, paler and without a band; null for none. Lives
    // as long as this source.
    virtual const CPlot2DDataSource* GetProvisional() const { return nullptr; }
};

} // namespace Outils_Plot2D
