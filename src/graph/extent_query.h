// Where the data of a channel begins and ends: two packets read, however long the file is.
#pragma once

#include "dataaccess/view_queries.h"

#include <functional>

namespace Presentation_Tarvel_Graphics {

class CTrv1DExtentQuery final : public Application_Tarvel::CTrvDataQuery {
  public:
    // On the UI thread, once: success, which a file without this channel or a channel without packets is not;
    // and whether the query was cancelled.
    using Callback = std::function<void(const CTrv1DExtentQuery& query, bool success, bool cancelled)>;

    CTrv1DExtentQuery(Application_Tarvel::SChannelAddress address, Callback onDone)
        : CTrvDataQuery(std::move(address)), m_onDone(std::move(onDone)) {}

    // Dates of the first and the last packet on the file's own clock.
    Outils_Temps::CDateTimeSpan GetFirst() const { return m_first; }
    Outils_Temps::CDateTimeSpan GetLast() const { return m_last; }
    // By the running numbers of these two packets.
    std::uint64_t GetCount() const { return m_count; }

    void OnFinished(bool success) override { m_onDone(*this, success, false); }
    void OnCancelled() override { m_onDone(*this, false, true); }

  protected:
    Application_Tarvel::EQueryEnd Search(Persistance_Xpf::CXpfChannel& channel,
                                         std::unique_ptr<Persistance_Xpf::CXpfDatedPacket> packet) override;

  private:
    Callback m_onDone;
    Outils_Temps::CDateTimeSpan m_first;
    Outils_Temps::CDateTimeSpan m_last;
    std::uint64_t m_count = 0;
};

} // namespace Presentation_Tarvel_Graphics
