// What a serie draws: one field of a shared dataset, its dates as percentages of the displayed time. UI
// thread.
#pragma once

#include "graph/dataset.h"
#include "plot/data_source.h"

namespace Presentation_Tarvel_Graphics {

class CTrv1DGraphDataSource : public Outils_Plot2D::CPlot2DDataSource {
  public:
    // `factor` is multiplied onto every value.
    CTrv1DGraphDataSource(SChannelKey channel, std::uint32_t field, double factor)
        : m_channel(channel), m_field(field), m_factor(factor) {}

    const SChannelKey& GetChannel() const { return m_channel; }
    // Null until the first data has arrived.
    const std::shared_ptr<const CTrv1DGraphDataset>& GetDataset() const { return m_dataset; }
    void SetDataset(std::shared_ptr<const CTrv1DGraphDataset> dataset) { m_dataset = std::move(dataset); }
    // The displayed time. The data stays and moves with it, until better data arrives. REQUIRES: start < end.
    void SetDisplay(CDateTimeSpan start, CDateTimeSpan end);

    bool HasExtremum() const override { return m_dataset && m_dataset->HasExtremum(); }
    double GetPeriod() const override;
    std::uint32_t GetCount() const override;
    // False also for a field that the packet does not have.
    bool GetPoint(std::uint32_t index, double& x, double& y) const override;
    bool GetMinimum(std::uint32_t index, double& x, double& y) const override;
    bool GetMaximum(std::uint32_t index, double& x, double& y) const override;

    // Widens `low` and `high` by every finite value of the dataset, extremes included. False when there is
    // none.
    bool IncludeValues(double& low, double& high) const;
    // The point nearest to a simulation time; false for none within a bucket and a half of it.
    bool GetNearestPoint(CDateTimeSpan time, double& x, double& y) const;

  protected:
    virtual bool ReadValue(const CXpfPacket& packet, double& value) const;
    std::uint32_t GetField() const { return m_field; }

  private:
    bool Read(const PacketList& packets, std::uint32_t index, double& x, double& y) const;

    SChannelKey m_channel;
    std::uint32_t m_field;
    double m_factor;
    std::shared_ptr<const CTrv1DGraphDataset> m_dataset;
    std::int64_t m_start = 0;    // ticks of simulation time
    double m_percentPerTick = 0; // 0 until the displayed time is known
};

// The states of an enumeration, by the index of their literal. The field is a status field.
class CTrv1DGraphDataSourceEnum : public CTrv1DGraphDataSource {
  public:
    CTrv1DGraphDataSourceEnum(SChannelKey channel, std::uint32_t field)
        : CTrv1DGraphDataSource(channel, field, 1.0) {}

  protected:
    bool ReadValue(const CXpfPacket& packet, double& value) const override;
};

} // namespace Presentation_Tarvel_Graphics
