// How many packets the channels of the project have, and from when to when: two packets read for each, in the
// background, one round of questions at a time. UI thread.
#pragma once

#include "document/document.h"
#include "graph/dataset.h"
#include "graph/extent_query.h"

#include <functional>
#include <map>
#include <memory>
#include <set>

namespace Presentation_Tarvel_Graphics {

// Dates on the file's own clock.
struct SChannelExtent {
    CDateTimeSpan first, last;
    std::uint64_t count = 0;
};

class CTrvChannelExtents {
  public:
    // `document` must outlive the object. Calls `onChanged` after each answer.
    CTrvChannelExtents(Application_Tarvel::CTrvDocument& document, std::function<void()> onChanged);
    // Answers still under way are dropped.
    ~CTrvChannelExtents();
    CTrvChannelExtents(const CTrvChannelExtents&) = delete;
    CTrvChannelExtents& operator=(const CTrvChannelExtents&) = delete;

    // The channels to ask about; their files must be of the project. Others are forgotten.
    void Follow(const std::set<SChannelKey>& channels);
    // Asks again about the channels of a file, of all files for null. What is known stays until the answer.
    void Refresh(const Outils_Objets::CObject* file);
    // Null while it is not known, and for a channel without packets.
    const SChannelExtent* Find(const SChannelKey& channel) const;
    bool IsLoading() const;

  private:
    struct SChannel {
        std::filesystem::path path;
        std::optional<SChannelExtent> extent;
        bool due = false;
        std::shared_ptr<CTrv1DExtentQuery> query; // under way, or null
    };

    void Withdraw(SChannel& channel);
    void StartRound();
    void OnAnswer(const SChannelKey& key, const CTrv1DExtentQuery& query, bool success);

    Application_Tarvel::CTrvDocument& m_document;
    std::function<void()> m_onChanged;
    std::map<SChannelKey, SChannel> m_channels;
    std::shared_ptr<CTrvChannelExtents*> m_self; // null inside after the end: answers look here
    Application_Tarvel::CAsyncQueryManager m_manager;
};

} // namespace Presentation_Tarvel_Graphics
