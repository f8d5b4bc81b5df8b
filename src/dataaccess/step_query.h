// The date that is some samples before or after a moment: how a cursor goes from packet to packet.
#pragma once

#include "dataaccess/date_query.h"

namespace Application_Tarvel {

class CTrvStepQuery final : public CTrvDateQuery {
  public:
    // `steps`: positive to later packets, negative to earlier ones; 0 finds nothing. Packets of one date are
    // one step. Where fewer are left, the last of them is the answer. `onDone` may be empty.
    CTrvStepQuery(SChannelAddress address, CDateTimeSpan from, int steps, Callback onDone)
        : CTrvDateQuery(std::move(address), from, std::move(onDone)), m_steps(steps) {}

  protected:
    EQueryEnd Search(Persistance_Xpf::CXpfChannel& channel,
                     std::unique_ptr<Persistance_Xpf::CXpfDatedPacket> packet) override;

  private:
    EQueryEnd StepOn(Persistance_Xpf::CXpfChannel& channel, Persistance_Xpf::CXpfDatedPacket& packet,
                     std::uint32_t number);
    EQueryEnd StepBack(Persistance_Xpf::CXpfChannel& channel, Persistance_Xpf::CXpfDatedPacket& packet,
                       std::uint32_t number);

    int m_steps;
};

} // namespace Application_Tarvel
