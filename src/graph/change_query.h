// Where a state changes. Runs on the loader thread; the answer comes on the UI thread.
#pragma once

#include "dataaccess/date_query.h"

namespace Presentation_Tarvel_Graphics {

using Application_Tarvel::EQueryEnd;
using Application_Tarvel::SChannelAddress;
using Outils_Temps::CDateTimeSpan;

// The nearest change of a status field before or after a moment: the date of the first packet with the new
// state.
class CTrv1DChangeQuery final : public Application_Tarvel::CTrvDateQuery {
  public:
    CTrv1DChangeQuery(SChannelAddress address, std::uint32_t field, CDateTimeSpan from, bool forward,
                      Callback onDone)
        : CTrvDateQuery(std::move(address), from, std::move(onDone)), m_field(field), m_forward(forward) {}

  protected:
    EQueryEnd Search(Persistance_Xpf::CXpfChannel& channel,
                     std::unique_ptr<Persistance_Xpf::CXpfDatedPacket> packet) override;

  private:
    EQueryEnd SearchOn(Persistance_Xpf::CXpfChannel& channel, Persistance_Xpf::CXpfDatedPacket& packet,
                       std::uint32_t number);
    EQueryEnd SearchBack(Persistance_Xpf::CXpfChannel& channel, Persistance_Xpf::CXpfDatedPacket& packet,
                         std::uint32_t number);
    std::optional<std::uint32_t> ReadState(const Persistance_Xpf::CXpfDatedPacket& packet) const;

    std::uint32_t m_field;
    bool m_forward;
};

} // namespace Presentation_Tarvel_Graphics
