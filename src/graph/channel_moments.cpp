#include "graph/channel_moments.h"

#include <algorithm>
#include <utility>

namespace Presentation_Tarvel_Graphics {

using namespace Application_Tarvel;

class CTrvChannelMoments::CQuery final : public CTrvViewValueDataQuery {
  public:
    using Done = std::function<void(CQuery& query, bool success, bool cancelled)>;

    CQuery(SChannelAddress address, CDateTimeSpan time, Done onDone)
        : CTrvViewValueDataQuery(std::move(address), time, {}), m_onDone(std::move(onDone)) {}

    void OnFinished(bool success) override { m_onDone(*this, success, false); }
    void OnCancelled() override { m_onDone(*this, false, true); }

  private:
    Done m_onDone;
};

namespace {

ESample ToState(CTrvDataQuery::EError error) {
    switch (error) {
    case CTrvDataQuery::EError::noFile: return ESample::noFile;
    case CTrvDataQuery::EError::noChannel: return ESample::noChannel;
    case CTrvDataQuery::EError::noPackets: return ESample::noPackets;
    default: return ESample::damaged;
    }
}

} // namespace

CTrvChannelMoments::CTrvChannelMoments(CTrvDocument& document, std::function<void()> onChanged)
    : m_document(document),
      m_onChanged(std::move(onChanged)),
      m_self(std::make_shared<CTrvChannelMoments*>(this)) {}

CTrvChannelMoments::~CTrvChannelMoments() {
    *m_self = nullptr;
    Follow({});
}

void CTrvChannelMoments::Follow(const std::set<SChannelKey>& channels) {
    for (auto place = m_channels.begin(); place != m_channels.end();) {
        if (channels.contains(place->first)) {
            ++place;
            continue;
        }
        for (SMoment& moment : place->second.moments) Withdraw(moment);
        place = m_channels.erase(place);
    }
    for (const SChannelKey& key : channels) {
        if (!key.file) continue;
        SChannelAddress address = m_document.GetFiles()->GetAddress(*key.file, key.channel);
        // A date that is a sample of the cache makes the search answer with an end of the file. A search
        // without the cache costs a few reads more.
        address.cache = nullptr;
        const CDateTimeSpan origin = Metier_Tarvel::ToSpan(key.file->timeOffset);
        const auto [place, isNew] = m_channels.try_emplace(key);
        SChannel& channel = place->second;
        const bool isMoved = channel.address.path != address.path || channel.origin != origin;
        channel.address = std::move(address);
        channel.origin = origin;
        if (!isNew && !isMoved) continue;
        for (std::size_t moment = 0; moment < kMoments; ++moment) Ask(key, channel, moment);
    }
}

void CTrvChannelMoments::SetTime(std::size_t moment, std::optional<CDateTimeSpan> time) {
    if (m_times[moment] == time) return;
    m_times[moment] = time;
    for (auto& [key, channel] : m_channels) Ask(key, channel, moment);
}

void CTrvChannelMoments::Refresh(const Outils_Objets::CObject* file) {
    for (auto& [key, channel] : m_channels)
        for (std::size_t moment = 0; moment < kMoments; ++moment)
            if (!file || key.file == file) Ask(key, channel, moment);
}

const SSample& CTrvChannelMoments::Get(const SChannelKey& channel, std::size_t moment) const {
    static const SSample kNone;
    const auto place = m_channels.find(channel);
    return place == m_channels.end() ? kNone : place->second.moments[moment].sample;
}

bool CTrvChannelMoments::IsLoading() const {
    return std::ranges::any_of(m_channels, [](const auto& entry) {
        return std::ranges::any_of(entry.second.moments,
                                   [](const SMoment& moment) { return moment.query != nullptr; });
    });
}

void CTrvChannelMoments::Withdraw(SMoment& moment) {
    // Forgotten before it is cancelled, so that its answer finds nobody.
    if (const auto old = std::exchange(moment.query, nullptr)) m_document.GetQueryManager().Cancel(old);
}

void CTrvChannelMoments::Ask(const SChannelKey& key, SChannel& channel, std::size_t moment) {
    SMoment& asked = channel.moments[moment];
    Withdraw(asked);
    if (!m_times[moment]) {
        asked.sample = {};
        return;
    }
    asked.sample.state = ESample::loading;
    const auto answer = [self = m_self, key, moment](CQuery& query, bool success, bool cancelled) {
        if (*self) (*self)->OnAnswer(key, moment, query, success, cancelled);
    };
    asked.query = std::make_shared<CQuery>(channel.address, *m_times[moment] - channel.origin, answer);
    m_document.GetQueryManager().Submit(asked.query);
}

void CTrvChannelMoments::OnAnswer(const SChannelKey& key, std::size_t moment, CQuery& query, bool success,
                                  bool cancelled) {
    const auto place = m_channels.find(key);
    if (place == m_channels.end()) return;
    SChannel& channel = place->second;
    SMoment& asked = channel.moments[moment];
    if (asked.query.get() != &query) return;
    const auto keep = std::exchange(asked.query, nullptr);
    if (cancelled) return; // by the document, which is about to report what has become of the file
    SSample sample;
    sample.packet = query.TakePacket();
    if (!success) {
        sample.state = ToState(query.GetError());
        const bool isFault = sample.state == ESample::noFile || sample.state == ESample::damaged;
        if (CProjectFiles* files = m_document.GetFiles(); files && isFault) files->OnQueryFailed(*key.file);
    } else if (sample.packet) {
        sample.state = ESample::found;
        sample.packet->GetDate(0, sample.date);
        sample.date += channel.origin;
        sample.place = query.GetPlace();
    } else {
        sample.state = ESample::outside;
        sample.first = query.GetExtent().lowerDate + channel.origin;
        sample.last = query.GetExtent().upperDate + channel.origin;
    }
    asked.sample = std::move(sample);
    m_onChanged();
}

} // namespace Presentation_Tarvel_Graphics
