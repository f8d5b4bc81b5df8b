// Statistics of fields over one interval, over every packet, in the background. They have a loader of their
// own: a walk over hours of data holds up no graph. UI thread.
#pragma once

#include "dataaccess/statistics_query.h"
#include "document/document.h"
#include "graph/dataset.h"
#include "graph/period.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace Presentation_Tarvel_Graphics {

class CTrvIntervalStatistics {
  public:
    using Fields = std::map<SChannelKey, std::vector<Application_Tarvel::SStatisticsField>>;

    // `document` must outlive the object. Calls `onChanged` after each answer.
    CTrvIntervalStatistics(Application_Tarvel::CTrvDocument& document, std::function<void()> onChanged);
    // Ends what is under way; answers are dropped.
    ~CTrvIntervalStatistics();
    CTrvIntervalStatistics(const CTrvIntervalStatistics&) = delete;
    CTrvIntervalStatistics& operator=(const CTrvIntervalStatistics&) = delete;

    // Asks about these fields in this interval of simulation time, ends included; about none without an
    // interval. What is known of them stays, unless `again`: the files have changed.
    void Ask(const Fields& fields, const std::optional<SPeriod>& interval, bool again = false);
    // Ends what is under way; what has been counted so far stays, as incomplete.
    void Stop();

    // 0 to 1 while any query is under way.
    std::optional<double> GetProgress() const;
    enum class EState { none, running, complete, cut, stopped, failed };
    EState GetState(const SChannelKey& channel) const;
    // Of the field at this place of its channel's list, also while the query runs; null when nothing is
    // known. Valid until the next operation.
    const Application_Tarvel::SFieldStatistics* Get(const SChannelKey& channel, std::size_t place) const;
    // Takes what running queries have published since.
    void Poll();

  private:
    struct SChannel {
        Application_Tarvel::SChannelAddress address;
        std::vector<Application_Tarvel::SStatisticsField> fields;
        Application_Tarvel::SClosedPeriod period; // on the file's clock
        EState state = EState::none;
        std::shared_ptr<Application_Tarvel::CTrvStatisticsQuery> query; // under way, or null
        Application_Tarvel::SStatistics statistics;
    };

    void Start(const SChannelKey& key, SChannel& channel);
    void Withdraw(SChannel& channel);
    void OnAnswer(const SChannelKey& key, Application_Tarvel::CTrvStatisticsQuery& query,
                  Application_Tarvel::EQueryEnd end);

    Application_Tarvel::CTrvDocument& m_document;
    std::function<void()> m_onChanged;
    std::map<SChannelKey, SChannel> m_channels;
    std::shared_ptr<CTrvIntervalStatistics*> m_self; // null inside after the end: answers look here
    Application_Tarvel::CAsyncQueryManager m_manager;
};

} // namespace Presentation_Tarvel_Graphics
