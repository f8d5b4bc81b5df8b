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
    CTrv1DGraphDataSource(const CTrv1DGraphDataSource&) = delete;
    CTrv1DGraphDataSource& operator=(const CTrv1DGraphDataSource&) = delete;

    const SChannelKey& GetChannel() const { return m_channel; }
    // Null until the first data has arrived.
    const std::shared_ptr<const CTrv1DGraphDataset>& GetDataset() const { return m_dataset; }
    // Packets here and there, for the times that the dataset does not reach; null for none.
    const std::shared_ptr<const CTrv1DGraphDataset>& GetPreview() const { return m_preview; }
    void SetDataset(std::shared_ptr<const CTrv1DGraphDataset> dataset,
                    std::shared_ptr<const CTrv1DGraphDataset> preview = nullptr) {
        m_dataset = std::move(dataset);
        m_preview = std::move(preview);
    }
    // The displayed time. The data stays and moves with it, until better data arrives. REQUIRES: start < end.
    void SetDisplay(CDateTimeSpan start, CDateTimeSpan end);

    bool HasExtremum() const override { return m_dataset && m_dataset->HasExtremum(); }
    double GetPeriod() const override;
    std::uint32_t GetCount() const override;
    // False also for a field that the packet does not have.
    bool GetPoint(std::uint32_t index, double& x, double& y) const override;
    bool GetMinimum(std::uint32_t index, double& x, double& y) const override;
    bool GetMaximum(std::uint32_t index, double& x, double& y) const override;
    const Outils_Plot2D::CPlot2DDataSource* GetProvisional() const override {
        return m_preview ? &m_provisional : nullptr;
    }
    // There is something to draw.
    bool HasPoints() const { return GetCount() > 0 || (m_preview && m_provisional.GetCount() > 0); }

    // Widens `low` and `high` by every finite value of dataset and preview, extremes included. False when
    // there is none.
    bool IncludeValues(double& low, double& high) const;
    // The point nearest to a simulation time; false for none within a bucket and a half of it.
    bool GetNearestPoint(CDateTimeSpan time, double& x, double& y) const;

  protected:
    virtual bool ReadValue(const CXpfPacket& packet, double& value) const;
    std::uint32_t GetField() const { return m_field; }

  private:
    // The points of the preview; those that the dataset covers break the line.
    class CProvisional final : public Outils_Plot2D::CPlot2DDataSource {
      public:
        explicit CProvisional(const CTrv1DGraphDataSource& owner) : m_owner(owner) {}
        bool HasExtremum() const override { return false; }
        double GetPeriod() const override;
        std::uint32_t GetCount() const override;
        bool GetPoint(std::uint32_t index, double& x, double& y) const override;
        bool GetMinimum(std::uint32_t, double&, double&) const override { return false; }
        bool GetMaximum(std::uint32_t, double&, double&) const override { return false; }

      private:
        const CTrv1DGraphDataSource& m_owner;
    };

    bool Read(const CTrv1DGraphDataset& dataset, const PacketList& packets, std::uint32_t index, double& x,
              double& y) const;
    bool FindNearest(const CTrv1DGraphDataset& dataset, CDateTimeSpan time, double& x, double& y) const;

    SChannelKey m_channel;
    std::uint32_t m_field;
    double m_factor;
    std::shared_ptr<const CTrv1DGraphDataset> m_dataset;
    std::shared_ptr<const CTrv1DGraphDataset> m_preview;
    CProvisional m_provisional{*this};
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
