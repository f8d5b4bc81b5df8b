// A first look at a time window of a large file: packets at even places, long before all packets between them
// have been read.
#pragma once

#include "dataaccess/view_queries.h"

#include <functional>

namespace Application_Tarvel {

// Representatives without extremes, in the order of the file. Reads a block at each place and no more: at
// most kMostReads of them, whatever the size of the file. A window that the exact query answers as soon gives
// no packets: one of a few megabytes, or of a channel with few packets, which are found along their links.
class CTrvSampledViewQuery : public CTrvDataQuery {
  public:
    static constexpr std::size_t kMostReads = 2000; // those of the search for the window's ends included
    // Bytes. Windows of less are left to the exact query.
    static constexpr std::int64_t kWorthwhile = std::int64_t{16} << 20;

    // On the UI thread, for every end; a failure is an empty series.
    using Callback = std::function<void(CTrvSampledViewQuery& query, SReducedSeries series)>;

    // `onDone` may be empty. `window` as for the exact query; no more packets than it has slices.
    CTrvSampledViewQuery(SChannelAddress address, SWindow window, Callback onDone,
                         std::int64_t worthwhile = kWorthwhile)
        : CTrvDataQuery(std::move(address)),
          m_window(window),
          m_onDone(std::move(onDone)),
          m_worthwhile(worthwhile) {}

    const SWindow& GetWindow() const { return m_window; }
    // For callers without a callback, once Execute has returned.
    SReducedSeries TakeSeries() { return std::move(m_series); }

    void OnFinished(bool success) override { Report(success); }
    void OnCancelled() override { Report(false); }

  protected:
    EQueryEnd Search(Persistance_Xpf::CXpfChannel& channel,
                     std::unique_ptr<Persistance_Xpf::CXpfDatedPacket> packet) override;

  private:
    // Between two packets of the channel.
    struct SExtent {
        std::int64_t begin = 0, end = 0;   // places in bytes
        std::uint32_t first = 0, last = 0; // numbers
    };

    void Report(bool success) {
        if (!success) m_series = {};
        if (m_onDone) m_onDone(*this, std::move(m_series));
    }
    // None when the window holds nothing, or `end` says why not.
    std::optional<SExtent> FindExtent(Persistance_Xpf::CXpfChannel& channel,
                                      Persistance_Xpf::CXpfDatedPacket& packet, EQueryEnd& end) const;
    void SampleBytes(Persistance_Xpf::CXpfChannel& channel, std::uint32_t payloadSize, const SExtent& extent,
                     std::size_t block, std::size_t count);
    void SampleNumbers(Persistance_Xpf::CXpfChannel& channel, const SExtent& extent, std::size_t count);
    void Add(std::unique_ptr<Persistance_Xpf::CXpfPacket> packet);

    SWindow m_window;
    Callback m_onDone;
    std::int64_t m_worthwhile;
    SReducedSeries m_series;
};

} // namespace Application_Tarvel
