// What the queries have in common that look for a date about a moment.
#pragma once

#include "dataaccess/view_queries.h"

#include <functional>
#include <optional>
#include <utility>

namespace Application_Tarvel {

class CTrvDateQuery : public CTrvDataQuery {
  public:
    // On the UI thread, once. No date: there is none in that direction.
    using Callback = std::function<void(EQueryEnd end, std::optional<CDateTimeSpan> date)>;

    // Once Execute has returned.
    std::optional<CDateTimeSpan> GetDate() const { return m_date; }

    void OnFinished(bool success) override {
        if (m_onDone) m_onDone(success ? EQueryEnd::done : EQueryEnd::failed, m_date);
    }
    void OnCancelled() override {
        if (m_onDone) m_onDone(EQueryEnd::cancelled, {});
    }

  protected:
    // `onDone` may be empty.
    CTrvDateQuery(SChannelAddress address, CDateTimeSpan from, Callback onDone)
        : CTrvDataQuery(std::move(address)), m_from(from), m_onDone(std::move(onDone)) {}

    const CDateTimeSpan m_from;
    std::optional<CDateTimeSpan> m_date; // the answer

  private:
    Callback m_onDone;
};

} // namespace Application_Tarvel
