#include "graph/channel_feed.h"

#include "config/config_file.h"
#include "dataaccess/sampled_view_query.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "graph/extent_query.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

namespace Presentation_Tarvel_Graphics {

using namespace Application_Tarvel;
using Outils_Configuration::Cnf;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

// Until the size of the picture is known.
constexpr double kDefaultWidth = 1000;

// The file is the reason of the failure, and not that it holds nothing to show.
bool IsFault(const CTrvDataQuery& query) {
    return query.GetError() == CTrvDataQuery::EError::noFile ||
           query.GetError() == CTrvDataQuery::EError::damaged;
}

// Whether the data at hand reaches over all of the window that the channel has data for. A little that is
// missing at an end is no reason to show less of the rest.
bool Covers(const CTrv1DGraphDataset* dataset, const SWindow& window, CDateTimeSpan first,
            CDateTimeSpan last) {
    CDateTimeSpan begin, end;
    if (!dataset || !dataset->GetExtent(begin, end)) return first > window.end || last < window.start;
    const CDateTimeSpan slack((window.end - window.start).GetTicks() / 10);
    return begin <= std::max(first, window.start) + slack && end >= std::min(last, window.end) - slack;
}

// The project may have been closed since the query began.
void ReportFault(const CTrvDocument& document, const SChannelKey& key) {
    if (CProjectFiles* files = document.GetFiles()) files->OnQueryFailed(*key.file);
}

} // namespace

// A window query that reports its cancelling too: the document also cancels queries.
class CTrv1DChannelFeed::CWindowQuery final : public CTrvView1DDataQuery {
  public:
    using Done = std::function<void(CWindowQuery& query, bool success, bool cancelled)>;

    CWindowQuery(SChannelAddress address, SWindow window, Done onDone)
        : CTrvView1DDataQuery(std::move(address), window, {}), m_onDone(std::move(onDone)) {}

    void OnFinished(bool success) override { m_onDone(*this, success, false); }
    void OnCancelled() override { m_onDone(*this, false, true); }

  private:
    Done m_onDone;
};

CTrv1DChannelFeed::CTrv1DChannelFeed(CTrvDocument& document, CTrv1DGraphStack& stack, CViewState& viewState,
                                     std::function<void()> onChanged)
    : m_document(document),
      m_stack(stack),
      m_viewState(viewState),
      m_onChanged(std::move(onChanged)),
      m_self(std::make_shared<CTrv1DChannelFeed*>(this)) {}

CTrv1DChannelFeed::~CTrv1DChannelFeed() {
    *m_self = nullptr;
    for (auto& [key, channel] : m_channels) Withdraw(channel);
}

bool CTrv1DChannelFeed::IsLoading() const {
    return std::any_of(m_channels.begin(), m_channels.end(), [](const auto& entry) {
        const SChannel& channel = entry.second;
        return channel.extentQuery || channel.windowQuery || channel.refresh;
    });
}

bool CTrv1DChannelFeed::IsResultGrowing() const {
    return std::any_of(m_channels.begin(), m_channels.end(), [this](const auto& entry) {
        return entry.second.quietLooks < SChannel::kQuiet && IsResult(entry.first);
    });
}

bool CTrv1DChannelFeed::HasDataOf(const Outils_Objets::CObject* file) const {
    return std::any_of(m_channels.begin(), m_channels.end(), [file](const auto& entry) {
        return entry.first.file == file && entry.second.dataset;
    });
}

std::string CTrv1DChannelFeed::GetNotice(const CTrv1DGraphPortlet& portlet) const {
    if (portlet.GetPlot().GetSeries().empty()) return GetCurvelessNotice(portlet);
    bool waits = false, visible = false;
    std::string empty;
    std::optional<SPeriod> extent;
    portlet.ForEachVisible([&](const CPlot2DSerie&, const CTrv1DGraphDataSource& source) {
        visible = true;
        const auto place = m_channels.find(source.GetChannel());
        if (place == m_channels.end()) return;
        const SChannel& channel = place->second;
        waits = waits || !channel.answered || channel.windowQuery;
        if (!channel.hasData) {
            empty = GetEmptyNotice(place->first, channel);
            return;
        }
        const SPeriod own = {channel.first + channel.origin, channel.last + channel.origin};
        extent = extent ? SPeriod{std::min(extent->start, own.start), std::max(extent->end, own.end)} : own;
    });
    if (!visible) return std::string(GetText(EText::curveHidden));
    if (waits) return std::string(GetText(EText::loading));
    if (!extent) return empty.empty() ? std::string(GetText(EText::noData)) : empty;
    const SSimulationTimeText& text = m_stack.GetTimeText();
    const SPeriod& shown = m_stack.GetPeriod();
    return FormatText(EText::noDataBetween, {text.Format(shown.start), text.Format(shown.end),
                                             text.Format(extent->start), text.Format(extent->end)});
}

// A default graph has no curve as long as its files have no layers.
std::string CTrv1DChannelFeed::GetCurvelessNotice(const CTrv1DGraphPortlet& portlet) const {
    const auto* project = m_document.GetProject();
    if (portlet.GetGraph() || !project) return std::string(GetText(EText::graphWithoutCurves));
    if (m_document.IsAnalysing()) return std::string(GetText(EText::loading));
    const auto& result = *project->simulationParameters->outputFile;
    return FormatText(EText::resultMissing, {Outils_Fichiers::ToText(result.path.filename())});
}

std::string CTrv1DChannelFeed::GetEmptyNotice(const SChannelKey& key, const SChannel& channel) const {
    const std::string name = Outils_Fichiers::ToText(channel.address.path.filename());
    if (!channel.fault) return FormatText(EText::channelWithoutPackets, {name});
    return FormatText(IsResult(key) ? EText::resultMissing : EText::fileUnreadable, {name});
}

void CTrv1DChannelFeed::Update() {
    Channels channels;
    std::vector<SChannelKey> changed;
    for (const auto& portlet : m_stack.GetPortlets())
        portlet->ForEachSource([&](const CTrv1DGraphDataSource& source) {
            const SChannelKey& key = source.GetChannel();
            if (!key.file || channels.contains(key)) return;
            const SChannelAddress address = m_document.GetFiles()->GetAddress(*key.file, key.channel);
            const CDateTimeSpan origin = Metier_Tarvel::ToSpan(key.file->timeOffset);
            SChannel& channel = channels[key];
            const auto known = m_channels.find(key);
            if (known != m_channels.end() && known->second.address.path == address.path) {
                channel = std::move(known->second);
                m_channels.erase(known);
                if (channel.origin == origin) return;
                // The data moves on the screen as a whole; what is shown of it is read again.
                channel.dataset.reset();
                channel.preview.reset();
                channel.growing.reset();
                changed.push_back(key);
            }
            channel.address = address;
            channel.origin = origin;
        });
    for (auto& [key, channel] : m_channels) Withdraw(channel);
    m_channels = std::move(channels);
    for (const SChannelKey& key : changed) AskAgain(key, m_channels[key]);
    for (auto& [key, channel] : m_channels)
        if (!channel.answered && !channel.extentQuery) AskExtent(key, channel);
    for (const auto& [key, channel] : m_channels) Show(key, channel);
    UpdateFullExtent();
}

void CTrv1DChannelFeed::Forget(const Outils_Objets::CObject* file) {
    if (!file) m_askedPeriod = {};
    for (auto& [key, channel] : m_channels) {
        if (file && key.file != file) continue;
        Withdraw(channel);
        channel = {};
    }
}

void CTrv1DChannelFeed::Withdraw(SChannel& channel) {
    // Forgotten before it is cancelled, so that its answer finds nobody.
    for (auto* query : {&channel.extentQuery, &channel.previewQuery, &channel.windowQuery})
        if (const auto old = std::exchange(*query, nullptr)) m_document.GetQueryManager().Cancel(old);
}

void CTrv1DChannelFeed::Refresh(const Outils_Objets::CObject* file, bool force) {
    for (auto& [key, channel] : m_channels) {
        if (file && key.file != file) continue;
        channel.refresh = true;
        channel.force = channel.force || force;
    }
    StartRefreshes();
}

// One round at a time: a file that grows faster than it is read would otherwise fill the queue, and the
// questions of a user who pans would wait after them.
void CTrv1DChannelFeed::StartRefreshes() {
    for (const auto& [key, channel] : m_channels)
        if (channel.extentQuery || channel.windowQuery) return;
    for (auto& [key, channel] : m_channels)
        if (channel.refresh) AskExtent(key, channel);
}

void CTrv1DChannelFeed::AskExtent(const SChannelKey& key, SChannel& channel) {
    channel.refresh = false;
    auto query = std::make_shared<CTrv1DExtentQuery>(
        channel.address, [self = m_self, key](const CTrv1DExtentQuery& answer, bool success, bool cancelled) {
            if (*self) (*self)->OnExtent(key, answer, success, cancelled);
        });
    channel.extentQuery = query;
    m_document.GetQueryManager().Submit(query);
}

std::optional<SWindow> CTrv1DChannelFeed::MakeWindow(const SChannel& channel) const {
    const auto& [start, end] = m_stack.GetPeriod();
    const CDateTimeSpan first = start - channel.origin, last = end - channel.origin;
    if (!m_stack.HasPeriod() || !channel.hasData || !first.IsValid() || !last.IsValid()) return {};

    const double ratio = Config().Get(Cnf<"view1D/subSamplingRatio">);
    const double width = m_askedWidth > 0 ? m_askedWidth : kDefaultWidth;
    const double slice = static_cast<double>((end - start).GetTicks()) / width *
                         (std::isfinite(ratio) && ratio > 0 ? ratio : 1);
    SWindow window;
    window.start = first;
    window.end = last;
    window.slice = CDateTimeSpan(static_cast<std::int64_t>(std::clamp(slice, 1.0, 1e18)));
    window.collectExtremum = Config().Get(Cnf<"view1D/collectExtremum">);
    return window;
}

void CTrv1DChannelFeed::SChannel::Grow(const SWindow& window, SReducedSeries part) {
    if (!growing) growing = std::make_shared<CTrv1DGraphDataset>(SReducedSeries(), window.slice, origin);
    growing->Append(std::move(part));
}

// What has come so far of the window stays on the screen.
void CTrv1DChannelFeed::WithdrawWindow(SChannel& channel) {
    for (auto* query : {&channel.previewQuery, &channel.windowQuery})
        if (const auto old = std::exchange(*query, nullptr)) m_document.GetQueryManager().Cancel(old);
    if (channel.ShowsGrowing()) channel.dataset = channel.growing;
    channel.growing.reset();
}

void CTrv1DChannelFeed::AskAgain(const SChannelKey& key, SChannel& channel) {
    WithdrawWindow(channel);
    AskPreview(key, channel);
    AskWindow(key, channel);
}

void CTrv1DChannelFeed::AskPreview(const SChannelKey& key, SChannel& channel) {
    const auto window = MakeWindow(channel);
    if (!window || Covers(channel.dataset.get(), *window, channel.first, channel.last)) return;
    auto query = std::make_shared<CTrvSampledViewQuery>(
        channel.address, *window, [self = m_self, key](CTrvSampledViewQuery& answer, SReducedSeries series) {
            if (*self) (*self)->OnPreview(key, answer, std::move(series), answer.GetWindow());
        });
    channel.previewQuery = query;
    m_document.GetQueryManager().Submit(query);
}

void CTrv1DChannelFeed::AskWindow(const SChannelKey& key, SChannel& channel) {
    const auto window = MakeWindow(channel);
    if (!window) return;
    auto query = std::make_shared<CWindowQuery>(
        channel.address, *window, [self = m_self, key](CWindowQuery& answer, bool success, bool cancelled) {
            if (*self) (*self)->OnWindow(key, answer, success, cancelled);
        });
    // The query is not destroyed before its end has been posted, after all of its parts.
    query->SetPartSink([self = m_self, key, sender = query.get(),
                        target = &m_document.GetMessageTarget()](SReducedSeries part) {
        target->Post([self, key, sender, held = std::make_shared<SReducedSeries>(std::move(part))] {
            if (*self) (*self)->OnPart(key, *sender, std::move(*held));
        });
    });
    channel.windowQuery = query;
    m_document.GetQueryManager().Submit(query);
}

void CTrv1DChannelFeed::AskWindows() {
    m_askedWidth = static_cast<double>(m_stack.GetPlotWidth()) * m_devicePixelRatio;
    m_askedPeriod = m_stack.GetPeriod();
    // All of the old period are withdrawn before the first of the new one is queued, and the top graph comes
    // first.
    for (auto& [key, channel] : m_channels) WithdrawWindow(channel);
    const auto forEachChannel = [this](auto&& ask) {
        for (const auto& portlet : m_stack.GetPortlets())
            portlet->ForEachSource([&](const CTrv1DGraphDataSource& source) {
                const auto place = m_channels.find(source.GetChannel());
                if (place != m_channels.end()) ask(place->first, place->second);
            });
    };
    forEachChannel([this](const SChannelKey& key, SChannel& channel) {
        if (!channel.previewQuery) AskPreview(key, channel);
    });
    forEachChannel([this](const SChannelKey& key, SChannel& channel) {
        if (!channel.windowQuery) AskWindow(key, channel);
    });
}

void CTrv1DChannelFeed::FollowPeriod() {
    if (m_stack.GetPeriod() != m_askedPeriod) AskWindows();
}

void CTrv1DChannelFeed::FollowWidth(double devicePixelRatio) {
    m_devicePixelRatio = devicePixelRatio;
    // A little coarser or finer than asked for cannot be seen, and a window is dragged in many small steps.
    const double width = static_cast<double>(m_stack.GetPlotWidth()) * m_devicePixelRatio;
    if (m_stack.HasPeriod() && std::abs(width - m_askedWidth) > m_askedWidth * 0.1) AskWindows();
}

void CTrv1DChannelFeed::OnExtent(const SChannelKey& key, const CTrv1DExtentQuery& query, bool success,
                                 bool cancelled) {
    const auto place = m_channels.find(key);
    if (place == m_channels.end() || place->second.extentQuery.get() != &query) return;
    SChannel& channel = place->second;
    channel.extentQuery.reset();
    if (cancelled) return;

    if (!success && IsFault(query)) {
        ReportFault(m_document, key);
        // What was read of the file, and where it began and ended, is all that is left of it.
        if (channel.dataset) {
            channel.answered = true;
            StartRefreshes();
            return m_onChanged();
        }
    }
    const SPeriod& period = m_stack.GetPeriod();
    channel.fault = !success && IsFault(query);
    const bool hadData = std::exchange(channel.hasData, success);
    const bool sameStart = hadData && success && channel.first == query.GetFirst();
    // What was appended after the displayed time changes nothing in it.
    const bool growth = channel.last != query.GetLast() && !(period.end < channel.last + channel.origin);
    const bool read = std::exchange(channel.force, false) || !sameStart || growth;
    channel.answered = true;
    const CDateTimeSpan formerEnd = channel.last + channel.origin;
    const bool grew = hadData && success && query.GetLast() > channel.last;
    channel.quietLooks = grew ? 0 : std::min(channel.quietLooks + 1, SChannel::kQuiet);
    channel.first = query.GetFirst();
    channel.last = query.GetLast();
    if (!success) {
        // The file is whole and has no such channel, or no packet of it yet: its curves are no longer true.
        Withdraw(channel);
        channel.dataset.reset();
        channel.preview.reset();
        channel.growing.reset();
        Show(key, channel);
    }
    const SPeriod asked = m_askedPeriod;
    if (hadData && success && IsResult(key)) FollowEnd(formerEnd, channel.last + channel.origin);
    UpdateFullExtent();
    // Where the displayed time followed, all was asked for.
    if (read && m_askedPeriod == asked) AskAgain(key, channel);
    StartRefreshes();
    m_onChanged();
}

void CTrv1DChannelFeed::Show(const SChannelKey& key, const SChannel& channel) {
    m_stack.SetDataset(key, channel.GetShown(), channel.preview);
}

void CTrv1DChannelFeed::OnPreview(const SChannelKey& key, const CAsyncQuery& query, SReducedSeries series,
                                  const SWindow& window) {
    const auto place = m_channels.find(key);
    if (place == m_channels.end() || place->second.previewQuery.get() != &query) return;
    SChannel& channel = place->second;
    channel.previewQuery.reset();
    const auto count = static_cast<std::int64_t>(series.representatives.size());
    if (count < 2) return;
    const CDateTimeSpan bucket((window.end - window.start).GetTicks() / count);
    channel.preview = std::make_shared<CTrv1DGraphDataset>(std::move(series), bucket, channel.origin);
    Show(key, channel);
    m_onChanged();
}

void CTrv1DChannelFeed::OnPart(const SChannelKey& key, const CWindowQuery& query, SReducedSeries part) {
    const auto place = m_channels.find(key);
    if (place == m_channels.end() || place->second.windowQuery.get() != &query) return;
    SChannel& channel = place->second;
    if (part.representatives.empty()) channel.growing.reset(); // what came before is taken back
    channel.Grow(query.GetWindow(), std::move(part));
    if (!channel.ShowsGrowing()) return;
    Show(key, channel);
    m_onChanged();
}

void CTrv1DChannelFeed::OnWindow(const SChannelKey& key, CWindowQuery& query, bool success, bool cancelled) {
    const auto place = m_channels.find(key);
    if (place == m_channels.end() || place->second.windowQuery.get() != &query) return;
    SChannel& channel = place->second;
    channel.windowQuery.reset();
    if (!success && !cancelled && IsFault(query)) ReportFault(m_document, key);
    if (success && !cancelled) {
        channel.Grow(query.GetWindow(), query.TakeSeries());
        channel.dataset = channel.growing;
    }
    // Of a window that was not read to its end nothing stays: what was shown before comes back.
    channel.growing.reset();
    channel.preview.reset();
    Show(key, channel);
    StartRefreshes();
    m_onChanged();
}

bool CTrv1DChannelFeed::IsResult(const SChannelKey& key) const {
    const auto* project = m_document.GetProject();
    return project && key.file == project->simulationParameters->outputFile.get();
}

// The last screenful stays the last one. A view of everything grows instead.
void CTrv1DChannelFeed::FollowEnd(CDateTimeSpan formerEnd, CDateTimeSpan end) {
    const SPeriod period = m_viewState.GetView().period;
    if (m_stack.ShowsFullExtent() || end <= formerEnd || formerEnd < period.start || formerEnd > period.end)
        return;
    m_viewState.FollowData(Move(period, static_cast<double>((end - formerEnd).GetTicks())));
}

// A view of everything stays one.
void CTrv1DChannelFeed::UpdateFullExtent() {
    const bool followed = !m_stack.HasPeriod() || m_stack.ShowsFullExtent();
    // The first picture waits until all ends are known, so that it need not be drawn over and over.
    if (!m_stack.HasPeriod())
        for (const auto& [key, channel] : m_channels)
            if (!channel.answered) return;
    const SPeriod extent = FindFullExtent();
    if (extent.IsEmpty()) return;
    m_stack.SetFullExtent(extent);
    if (followed) m_viewState.FollowData(extent);
}

SPeriod CTrv1DChannelFeed::FindFullExtent() const {
    SPeriod extent;
    bool found = false;
    for (const auto& [key, channel] : m_channels) {
        const CDateTimeSpan first = channel.first + channel.origin, last = channel.last + channel.origin;
        if (!channel.hasData || !first.IsValid() || !last.IsValid()) continue;
        extent.start = found ? std::min(extent.start, first) : first;
        extent.end = found ? std::max(extent.end, last) : last;
        found = true;
    }
    // A single packet is shown in the second that follows it.
    if (found && extent.IsEmpty()) extent.end = extent.start + CDateTimeSpan(Outils_Temps::kTicksPerSecond);
    const auto* project = m_document.GetProject();
    if (!found && project)
        extent = {Metier_Tarvel::ToSpan(project->simulationParameters->begin),
                  Metier_Tarvel::ToSpan(project->simulationParameters->end)};
    return extent;
}

} // namespace Presentation_Tarvel_Graphics
