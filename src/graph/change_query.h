// Where a state changes. Runs on the loader thread; the answer comes on the UI thread.
#pragma once

#include "dataaccess/view_queries.h"

#include <functional>
#include <optional>

namespace Presentation_Tarvel_Graphics {

using Application_Tarvel::EQueryEnd;
using Application_Tarvel::SChannelAddress;
using Outils_Temps::CDateTimeSpan;

// The nearest change of a status field before or after a moment: the date of the first packet with the new
// state.
class CTrv1DChangeQuery final : public Application_Tarvel::CTrvDataQuery {
  public:
    // Once. No date: the state does not change in that direction.
    using Callback = std::function<void(EQueryEnd end, std::optional<CDateTimeSpan> date)>;

    CTrv1DChangeQuery(SChannelAddress address, std::uint32_t field, CDateTimeSpan from, bool forward,
                      Callback onDone)
        : CTrvDataQuery(std::move(address)),
          m_field(field),
          m_from(from),
          m_forward(forward),
          m_onDone(std::move(onDone)) {}

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
    EQueryEnd SearchOn(Persistance_Xpf::CXpfChannel& channel, Persistance_Xpf::CXpfDatedPacket& packet,
                       std::uint32_t number);
    EQueryEnd SearchBack(Persistance_Xpf::CXpfChannel& channel, Persistance_Xpf::CXpfDatedPacket& packet,
                         std::uint32_t number);
    std::optional<std::uint32_t> ReadState(const Persistance_Xpf::CXpfDatedPacket& packet) const;

    std::uint32_t m_field;
    CDateTimeSpan m_from;
    bool m_forward;
    Callback m_onDone;
    std::optional<CDateTimeSpan> m_date;
};

} // namespace Presentation_Tarvel_Graphics
