#include "graph/channel_extents.h"

#include <algorithm>
#include <utility>

namespace Presentation_Tarvel_Graphics {

using namespace Application_Tarvel;

CTrvChannelExtents::CTrvChannelExtents(CTrvDocument& document, std::function<void()> onChanged)
    : m_document(document),
      m_onChanged(std::move(onChanged)),
      m_self(std::make_shared<CTrvChannelExtents*>(this)),
      m_manager(document.GetMessageTarget()) {}

CTrvChannelExtents::~CTrvChannelExtents() {
    *m_self = nullptr;
    Follow({});
}

void CTrvChannelExtents::Follow(const std::set<SChannelKey>& channels) {
    std::map<SChannelKey, SChannel> followed;
    for (const SChannelKey& key : channels) {
        SChannel& channel = followed[key];
        channel.path = key.file->path;
        channel.due = true;
        const auto known = m_channels.find(key);
        if (known == m_channels.end() || known->second.path != channel.path) continue;
        channel = std::move(known->second);
        m_channels.erase(known);
    }
    for (auto& [key, channel] : m_channels) Withdraw(channel);
    m_channels = std::move(followed);
    StartRound();
}

void CTrvChannelExtents::Refresh(const Outils_Objets::CObject* file) {
    for (auto& [key, channel] : m_channels) channel.due = channel.due || !file || key.file == file;
    StartRound();
}

const SChannelExtent* CTrvChannelExtents::Find(const SChannelKey& channel) const {
    const auto place = m_channels.find(channel);
    return place != m_channels.end() && place->second.extent ? &*place->second.extent : nullptr;
}

bool CTrvChannelExtents::IsLoading() const {
    return std::ranges::any_of(m_channels,
                               [](const auto& entry) { return entry.second.query || entry.second.due; });
}

void CTrvChannelExtents::Withdraw(SChannel& channel) {
    // Forgotten before it is cancelled, so that its answer finds nobody.
    if (const auto old = std::exchange(channel.query, nullptr)) m_manager.Cancel(old);
}

// A file that grows faster than it is read would otherwise fill the queue.
void CTrvChannelExtents::StartRound() {
    for (const auto& [key, channel] : m_channels)
        if (channel.query) return;
    for (auto& [key, channel] : m_channels) {
        if (!std::exchange(channel.due, false)) continue;
        channel.query = std::make_shared<CTrv1DExtentQuery>(
            m_document.GetFiles()->GetAddress(*key.file, key.channel),
            [self = m_self, channelKey = key](const CTrv1DExtentQuery& query, bool success, bool) {
                if (*self) (*self)->OnAnswer(channelKey, query, success);
            });
        m_manager.Submit(channel.query);
    }
}

void CTrvChannelExtents::OnAnswer(const SChannelKey& key, const CTrv1DExtentQuery& query, bool success) {
    const auto place = m_channels.find(key);
    if (place == m_channels.end() || place->second.query.get() != &query) return;
    SChannel& channel = place->second;
    channel.extent.reset();
    if (success) channel.extent = SChannelExtent{query.GetFirst(), query.GetLast(), query.GetCount()};
    const auto keep = std::exchange(channel.query, nullptr);
    StartRound();
    m_onChanged();
}

} // namespace Presentation_Tarvel_Graphics
