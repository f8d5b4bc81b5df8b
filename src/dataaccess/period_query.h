// The base of queries that visit every packet of a channel in a period, in one pass along the file.
//
// Dates may be damaged, and a clock may jump for some packets: the walk starts kTolerance packets before the
// period and ends only after so many packets in a row lie after it. Packets are taken by their own date, so
// that a stray one neither ends the walk nor is counted. Where dates or packet numbers mislead the search,
// the walk starts at the first packet of the channel. A clock that is set back for longer brings no second
// visit.
#pragma once

#include "dataaccess/view_queries.h"

#include <atomic>
#include <functional>
#include <span>

namespace Application_Tarvel {

// Both ends belong to it. On the file's own clock.
struct SClosedPeriod {
    CDateTimeSpan start;
    CDateTimeSpan end;
};

class CTrvPeriodQuery : public CTrvDataQuery {
  public:
    static constexpr std::uint32_t kTolerance = 4096; // packets

    const SClosedPeriod& GetPeriod() const { return m_period; }
    // Damage in the file has ended the walk before the channel's last packet. Once Execute has returned.
    bool IsCut() const { return m_cut; }
    // The part of the period that is done, 0 to 1, never falling. Any thread.
    double GetProgress() const { return m_progress.load(std::memory_order_relaxed); }

  protected:
    using Payloads = std::span<const std::uint8_t* const>;

    CTrvPeriodQuery(SChannelAddress address, SClosedPeriod period)
        : CTrvDataQuery(std::move(address)), m_period(period) {}

    // All on the loader thread. False from Begin or Take fails the query.
    virtual bool Begin(const Persistance_Xpf::SPacketLayout& layout) = 0;
    // Packets within the period, in the order of the file; valid during the call.
    virtual bool Take(Payloads payloads) = 0;
    // Runs for a walk that came to its end, not for one that failed or was cancelled.
    virtual bool Finish() = 0;
    // Runs after Begin when the query fails or is cancelled.
    virtual void Abandon() {}

  private:
    EQueryEnd Search(Persistance_Xpf::CXpfChannel& channel,
                     std::unique_ptr<Persistance_Xpf::CXpfDatedPacket> packet) final;
    EQueryEnd Walk(Persistance_Xpf::CXpfChannel& channel, Persistance_Xpf::CXpfDatedPacket& packet);
    EDateSearch SeekStart(Persistance_Xpf::CXpfChannel& channel,
                          Persistance_Xpf::CXpfDatedPacket& packet) const;
    // Whether packets from here on lie before the period.
    bool IsBefore(Persistance_Xpf::CXpfChannel& channel, Persistance_Xpf::CXpfDatedPacket& packet) const;
    // False when nothing more is to come, or `failed` is set.
    bool TakeWithin(Payloads payloads, bool& failed);
    void Report(std::int64_t date);

    SClosedPeriod m_period;
    bool m_cut = false;
    std::uint32_t m_beyond = 0; // packets after the period since the last one within
    std::atomic<double> m_progress{0};
};

// A query of the class `Query` that reports its end by a callback.
template <class Query>
class TPeriodQuery : public CTrvPeriodQuery {
  public:
    // On the UI thread, once.
    using Callback = std::function<void(Query& query, EQueryEnd end)>;

    void OnFinished(bool success) override { Report(success ? EQueryEnd::done : EQueryEnd::failed); }
    void OnCancelled() override { Report(EQueryEnd::cancelled); }

  protected:
    // `onDone` may be empty.
    TPeriodQuery(SChannelAddress address, SClosedPeriod period, Callback onDone)
        : CTrvPeriodQuery(std::move(address), period), m_onDone(std::move(onDone)) {}

  private:
    void Report(EQueryEnd end) {
        if (m_onDone) m_onDone(static_cast<Query&>(*this), end);
    }

    Callback m_onDone;
};

} // namespace Application_Tarvel
