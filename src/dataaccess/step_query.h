// The date that is some samples before or after a moment: how a cursor goes from packet to packet.
#pragma once

#include "dataaccess/view_queries.h"

#include <functional>
#include <optional>

namespace Application_Tarvel {

class CTrvStepQuery final : public CTrvDataQuery {
  public:
    // On the UI thread, once. Not found: no packet lies in that direction.
    using Callback = std::function<void(EQueryEnd end, std::optional<CDateTimeSpan> date)>;

    // `steps`: positive to later packets, negative to earlier ones; 0 finds nothing. Packets of one date are
    // one step. Where fewer are left, the last of them is the answer. `onDone` may be empty.
    CTrvStepQuery(SChannelAddress address, CDateTimeSpan from, int steps, Callback onDone)
        : CTrvDataQuery(std::move(address)), m_from(from), m_steps(steps), m_onDone(std::move(onDone)) {}

    // Once Execute has returned.
    std::optional<CDateTimeSpan> GetDate() const { return m_date; }

    void OnFinished(bool success) override {
        if (m_onDone) m_onDone(success ? EQueryEnd::done : EQueryEnd::failed, m_date);
    }
    void OnCancelled() override {
        if (m_onDone) m_onDone(EQueryEnd::cancelled, {});
    }

  protected:
    EQueryEnd Search(Persistance_Xpf::CXpfChannel& channel,
                     std::unique_ptr<Persistance_Xpf::CXpfDatedPacket> packet) override;

  private:
    EQueryEnd StepOn(Persistance_Xpf::CXpfChannel& channel, Persistance_Xpf::CXpfDatedPacket& packet,
                     std::uint32_t number);
    EQueryEnd StepBack(Persistance_Xpf::CXpfChannel& channel, Persistance_Xpf::CXpfDatedPacket& packet,
                       std::uint32_t number);

    CDateTimeSpan m_from;
    int m_steps;
    Callback m_onDone;
    std::optional<CDateTimeSpan> m_date;
};

} // namespace Application_Tarvel
