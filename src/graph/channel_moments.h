// The samples of channels at a few moments: what the cursors show. One question for each channel and moment,
// in the background; of a cursor that moves quickly only the last place is answered. UI thread.
#pragma once

#include "dataaccess/view_queries.h"
#include "document/document.h"
#include "graph/dataset.h"

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>

namespace Presentation_Tarvel_Graphics {

using Application_Tarvel::CTrvDocument;

enum class ESample {
    noTime,  // the moment is nowhere
    loading, // asked for; the packet, if any, is the one of the former moment
    found,
    outside, // of the data, which reaches from `first` to `last`
    noFile,
    noChannel,
    noPackets,
    damaged
};

// Times in simulation time.
struct SSample {
    ESample state = ESample::noTime;
    std::shared_ptr<const CXpfPacket> packet; // null unless found or loading
    CDateTimeSpan date;                       // of the packet
    Application_Tarvel::SPacketPlace place;   // of the packet
    CDateTimeSpan first, last;                // of the channel, when outside
};

class CTrvChannelMoments {
  public:
    static constexpr std::size_t kMoments = 2;

    // `document` must outlive the object. Calls `onChanged` after each answer.
    CTrvChannelMoments(CTrvDocument& document, std::function<void()> onChanged);
    // Answers still under way are dropped.
    ~CTrvChannelMoments();
    CTrvChannelMoments(const CTrvChannelMoments&) = delete;
    CTrvChannelMoments& operator=(const CTrvChannelMoments&) = delete;

    // The channels to ask about; their files must be of the project. Others are forgotten. Looks up again
    // where their files are.
    void Follow(const std::set<SChannelKey>& channels);
    // REQUIRES: moment < kMoments.
    void SetTime(std::size_t moment, std::optional<CDateTimeSpan> time);
    // Asks again about the channels of a file, of all files for null.
    void Refresh(const Outils_Objets::CObject* file);

    // The state noTime for a channel that is not followed.
    const SSample& Get(const SChannelKey& channel, std::size_t moment) const;
    bool IsLoading() const;

  private:
    class CQuery;
    struct SMoment {
        SSample sample;
        std::shared_ptr<CQuery> query; // under way, or null
    };
    struct SChannel {
        Application_Tarvel::SChannelAddress address;
        CDateTimeSpan origin; // file time to simulation time
        std::array<SMoment, kMoments> moments;
    };

    void Withdraw(SMoment& moment);
    void Ask(const SChannelKey& key, SChannel& channel, std::size_t moment);
    void OnAnswer(const SChannelKey& key, std::size_t moment, CQuery& query, bool success, bool cancelled);

    CTrvDocument& m_document;
    std::function<void()> m_onChanged;
    std::array<std::optional<CDateTimeSpan>, kMoments> m_times;
    std::map<SChannelKey, SChannel> m_channels;
    std::shared_ptr<CTrvChannelMoments*> m_self; // null inside after the end: answers look here
};

} // namespace Presentation_Tarvel_Graphics
