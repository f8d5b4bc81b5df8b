#include "graph/interval_statistics.h"

#include <algorithm>
#include <utility>

namespace Presentation_Tarvel_Graphics {

using namespace Application_Tarvel;

namespace {

bool IsSame(const std::vector<SStatisticsField>& left, const std::vector<SStatisticsField>& right) {
    return std::ranges::equal(
        left, right, [](const auto& a, const auto& b) { return a.field == b.field && a.turn == b.turn; });
}

} // namespace

CTrvIntervalStatistics::CTrvIntervalStatistics(CTrvDocument& document, std::function<void()> onChanged)
    : m_document(document),
      m_onChanged(std::move(onChanged)),
      m_self(std::make_shared<CTrvIntervalStatistics*>(this)),
      m_manager(document.GetMessageTarget()) {}

CTrvIntervalStatistics::~CTrvIntervalStatistics() {
    *m_self = nullptr;
    Ask({}, {});
}

void CTrvIntervalStatistics::Ask(const Fields& fields, const std::optional<SPeriod>& interval, bool again) {
    std::map<SChannelKey, SChannel> channels;
    for (const auto& [key, list] : fields) {
        if (!interval || !key.file || list.empty()) continue;
        const CDateTimeSpan origin = Metier_Tarvel::ToSpan(key.file->timeOffset);
        SChannel& channel = channels[key];
        channel.address = m_document.GetFiles()->GetAddress(*key.file, key.channel);
        channel.fields = list;
        channel.period = {interval->start - origin, interval->end - origin};
        const auto known = m_channels.find(key);
        const bool isKnown = !again && known != m_channels.end() && known->second.state != EState::stopped &&
                             known->second.address.path == channel.address.path &&
                             known->second.period.start == channel.period.start &&
                             known->second.period.end == channel.period.end &&
                             IsSame(known->second.fields, list);
        if (!isKnown) continue;
        channel = std::move(known->second);
        m_channels.erase(known);
    }
    for (auto& [key, channel] : m_channels) Withdraw(channel);
    m_channels = std::move(channels);
    for (auto& [key, channel] : m_channels)
        if (channel.state == EState::none) Start(key, channel);
}

void CTrvIntervalStatistics::Stop() {
    Poll();
    for (auto& [key, channel] : m_channels) {
        if (!channel.query) continue;
        Withdraw(channel);
        channel.state = EState::stopped;
    }
}

std::optional<double> CTrvIntervalStatistics::GetProgress() const {
    double sum = 0;
    bool isRunning = false;
    for (const auto& [key, channel] : m_channels) {
        isRunning = isRunning || channel.query;
        sum += channel.query ? channel.query->GetProgress() : 1;
    }
    if (!isRunning) return std::nullopt;
    return sum / static_cast<double>(m_channels.size());
}

CTrvIntervalStatistics::EState CTrvIntervalStatistics::GetState(const SChannelKey& channel) const {
    const auto place = m_channels.find(channel);
    return place == m_channels.end() ? EState::none : place->second.state;
}

const SFieldStatistics* CTrvIntervalStatistics::Get(const SChannelKey& channel, std::size_t index) const {
    const auto place = m_channels.find(channel);
    if (place == m_channels.end() || index >= place->second.statistics.fields.size()) return nullptr;
    return &place->second.statistics.fields[index];
}

void CTrvIntervalStatistics::Poll() {
    for (auto& [key, channel] : m_channels)
        if (channel.query) channel.statistics = channel.query->GetStatistics();
}

void CTrvIntervalStatistics::Start(const SChannelKey& key, SChannel& channel) {
    channel.state = EState::running;
    channel.query = std::make_shared<CTrvStatisticsQuery>(
        channel.address, channel.period, channel.fields,
        [self = m_self, key](CTrvStatisticsQuery& query, EQueryEnd end) {
            if (*self) (*self)->OnAnswer(key, query, end);
        });
    m_manager.Submit(channel.query);
}

void CTrvIntervalStatistics::Withdraw(SChannel& channel) {
    // Forgotten before it is cancelled, so that its answer finds nobody.
    if (const auto old = std::exchange(channel.query, nullptr)) m_manager.Cancel(old);
}

void CTrvIntervalStatistics::OnAnswer(const SChannelKey& key, CTrvStatisticsQuery& query, EQueryEnd end) {
    const auto place = m_channels.find(key);
    if (place == m_channels.end() || place->second.query.get() != &query) return;
    SChannel& channel = place->second;
    channel.statistics = query.GetStatistics();
    channel.state = end != EQueryEnd::done ? EState::failed : query.IsCut() ? EState::cut : EState::complete;
    const auto keep = std::exchange(channel.query, nullptr);
    m_onChanged();
}

} // namespace Presentation_Tarvel_Graphics
