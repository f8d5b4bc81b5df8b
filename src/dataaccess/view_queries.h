// The questions of the views to a data file: the packet nearest to one moment, and a time window reduced to
// one packet per time slice. Both open a file object of their own on the loader thread and touch no object of
// the model. A cancelled query ends at its next packet or read, whichever comes first.
#pragma once

#include "dataaccess/async_query.h"
#include "dataaccess/date_search.h"
#include "xpf/file.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace Application_Tarvel {

class CChannelIndex;
class CFileIndexes;

// Which channel of which file.
struct SChannelAddress {
    std::filesystem::path path;
    Persistance_Xpf::EFileKind kind = Persistance_Xpf::EFileKind::tarin;
    std::uint16_t channel = 0;
    CXpfFileCache* cache = nullptr;        // must outlive the queries on this address; may be null
    const CFileIndexes* indexes = nullptr; // the same
};

using PacketList = std::vector<std::unique_ptr<Persistance_Xpf::CXpfPacket>>;

// A reduced window: three lists of packets, one element per slice that holds data, in time order. The
// extremes are full packets whose every numeric field is the smallest or greatest of the slice; both lists
// are empty when they were not asked for.
struct SReducedSeries {
    PacketList representatives;
    PacketList minima;
    PacketList maxima;
};

class CTrvDataQuery : public CAsyncQuery {
  public:
    enum class EError {
        none,
        noFile,    // cannot be opened, or is no packet file of its kind
        noChannel, // the file has no such channel, or one that is not decoded
        noPackets, // the channel is empty
        damaged    // its packets contradict each other, or end before the search does
    };

    explicit CTrvDataQuery(SChannelAddress address) : m_address(std::move(address)) {}

    const SChannelAddress& GetAddress() const { return m_address; }
    // Why Execute has failed; to be asked once it has returned.
    EError GetError() const { return m_error; }

    EQueryEnd Execute() final;
    void RequestCancel() override { m_cancel.Set(); }

  protected:
    // The search of the kind. Loader thread only. `packet` is a new packet of the channel's type. Once the
    // query is cancelled every read fails, and a failure counts as cancelled.
    virtual EQueryEnd Search(Persistance_Xpf::CXpfChannel& channel,
                             std::unique_ptr<Persistance_Xpf::CXpfDatedPacket> packet) = 0;

    SDateSearch MakeSearch(bool feedsCache) const {
        return {m_address.path, m_address.cache, feedsCache, m_cancel, m_index.get()};
    }
    // The index of the file at hand; null when there is none that fits it.
    const CFileIndex* GetIndex() const { return m_index.get(); }
    // The packets around a date, or with a date outside the data the first and the last one. Without the
    // cache, an exact hit in which would leave the bracket at both ends of the file. None when the bracket is
    // filled; else how the query ends.
    std::optional<EQueryEnd> FindNeighbours(Persistance_Xpf::CXpfChannel& channel,
                                            Persistance_Xpf::CXpfDatedPacket& packet, CDateTimeSpan date,
                                            SDateBracket& bracket) const;

    Outils::CEvent m_cancel;

  private:
    EQueryEnd SearchIn(Persistance_Xpf::CXpfFile& file);
    void ForgetReplaced(const Persistance_Xpf::CXpfFile& file) const;

    SChannelAddress m_address;
    EError m_error = EError::none;
    std::shared_ptr<const CFileIndex> m_index;
};

// Where a packet is in its file.
struct SPacketPlace {
    std::uint32_t number = 0; // within its channel
    Persistance_Xpf::CXpfFilePosition position;
    CDateTimeSpan date; // on the clock of the file
};

// The packet nearest to a moment, the earlier on a tie.
class CTrvViewValueDataQuery : public CTrvDataQuery {
  public:
    // On the UI thread: success, and the packet or null when the moment lies outside the channel's data.
    using Callback = std::function<void(bool success, std::unique_ptr<Persistance_Xpf::CXpfPacket> packet)>;

    // `onDone` may be empty; it runs for a finished query, not for a cancelled one.
    CTrvViewValueDataQuery(SChannelAddress address, CDateTimeSpan time, Callback onDone)
        : CTrvDataQuery(std::move(address)), m_time(time), m_onDone(std::move(onDone)) {}

    // The result, for callers without a callback; may be taken after Execute has returned.
    std::unique_ptr<Persistance_Xpf::CXpfPacket> TakePacket() { return std::move(m_packet); }
    // The place of that packet. / The dates of the channel's first and last packet when the moment lies
    // outside. Once Execute has returned.
    const SPacketPlace& GetPlace() const { return m_place; }
    const SDateBracket& GetExtent() const { return m_bracket; }

    void OnFinished(bool success) override {
        if (m_onDone) m_onDone(success, std::move(m_packet));
    }
    void OnCancelled() override {}

  protected:
    EQueryEnd Search(Persistance_Xpf::CXpfChannel& channel,
                     std::unique_ptr<Persistance_Xpf::CXpfDatedPacket> packet) override;

  private:
    CDateTimeSpan m_time;
    Callback m_onDone;
    std::unique_ptr<Persistance_Xpf::CXpfPacket> m_packet;
    SPacketPlace m_place;
    SDateBracket m_bracket;
};

struct SWindow {
    CDateTimeSpan start;
    CDateTimeSpan end;
    CDateTimeSpan slice; // above zero
    bool collectExtremum = true;
};

// A window reduced to slices. The walk starts at the packet at or before the window's start and ends with the
// first one at or beyond its end, so that a curve reaches both edges; a window that begins before the data
// starts at the first packet. Dates that jump to and fro begin a slice at every jump; after some ten thousand
// more slices than fit into the window the walk ends, and the series keeps what was collected.
class CTrvView1DDataQuery : public CTrvDataQuery {
  public:
    // On the UI thread; on failure the series is empty.
    using Callback = std::function<void(bool success, SReducedSeries series)>;

    CTrvView1DDataQuery(SChannelAddress address, SWindow window, Callback onDone)
        : CTrvDataQuery(std::move(address)), m_window(window), m_onDone(std::move(onDone)) {}

    const SWindow& GetWindow() const { return m_window; }
    SReducedSeries TakeSeries() { return std::move(m_series); }

    // Hands over what is complete of a long walk every `interval`, on the loader thread: the slices since the
    // last time. The series at the end has the rest. Before the query is submitted; `onPart` must not be
    // empty.
    using PartSink = std::function<void(SReducedSeries part)>;
    static constexpr std::chrono::milliseconds kPartInterval{100};
    void SetPartSink(PartSink onPart, std::chrono::milliseconds interval = kPartInterval) {
        m_onPart = std::move(onPart);
        m_partInterval = interval;
    }

    void OnFinished(bool success) override {
        if (m_onDone) m_onDone(success, std::move(m_series));
    }
    void OnCancelled() override {}

  protected:
    EQueryEnd Search(Persistance_Xpf::CXpfChannel& channel,
                     std::unique_ptr<Persistance_Xpf::CXpfDatedPacket> packet) override;

  private:
    // Positions the channel for the walk; `empty` when the window holds no data.
    EDateSearch SeekStart(Persistance_Xpf::CXpfChannel& channel, Persistance_Xpf::CXpfDatedPacket& packet,
                          bool& empty);

    // From the channel's position on; with the help of `index` unless it is null. None when the index does
    // not hold true.
    std::optional<EQueryEnd> Reduce(Persistance_Xpf::CXpfChannel& channel, std::uint32_t payloadSize,
                                    const CChannelIndex* index);

    SWindow m_window;
    Callback m_onDone;
    PartSink m_onPart;
    std::chrono::milliseconds m_partInterval{};
    SReducedSeries m_series;
};

} // namespace Application_Tarvel
