#include "graph/view_state.h"

#include <algorithm>
#include <utility>

namespace Presentation_Tarvel_Graphics {

CViewState::CSubscription CViewState::Listen(Listener listener) {
    const std::size_t key = m_listeners->next++;
    m_listeners->listeners.emplace(key, std::move(listener));
    return {m_listeners, key};
}

// A listener may end itself or others, or subscribe new ones, which hear of later changes.
void CViewState::Notify(EViewChange change) {
    const auto all = m_listeners;
    std::vector<std::size_t> keys;
    for (const auto& [key, listener] : all->listeners) keys.push_back(key);
    for (const std::size_t key : keys) {
        const auto place = all->listeners.find(key);
        if (place == all->listeners.end()) continue;
        const Listener listener = place->second;
        listener(change);
    }
}

void CViewState::Keep(const SView& view) {
    // The first view of a project comes from nowhere.
    if (view.period.IsEmpty()) return;
    m_back.push_back(view);
    if (m_back.size() > kKeptViews) m_back.pop_front();
    m_forward.clear();
}

bool CViewState::Show(SView view) {
    if (view == m_view) return false;
    const SView former = std::exchange(m_view, std::move(view));
    if (!m_beforeGesture) Keep(former);
    Notify(EViewChange::view);
    return true;
}

bool CViewState::SetPeriod(const SPeriod& period) { return SetView({period, m_view.ranges}); }

bool CViewState::SetRange(const SGraphKey& graph, const std::optional<SRange>& range) {
    SView view = m_view;
    if (range && !IsUsable(*range)) return false;
    if (range)
        view.ranges[graph] = *range;
    else
        view.ranges.erase(graph);
    return Show(std::move(view));
}

bool CViewState::SetView(const SView& view) {
    const bool isSound =
        std::ranges::all_of(view.ranges, [](const auto& row) { return IsUsable(row.second); });
    return isSound && !view.period.IsEmpty() && Show(view);
}

bool CViewState::FollowData(const SPeriod& period) {
    if (period.IsEmpty() || period == m_view.period) return false;
    m_view.period = period;
    Notify(EViewChange::view);
    return true;
}

void CViewState::BeginGesture() {
    if (!m_beforeGesture) m_beforeGesture = m_view;
}

void CViewState::EndGesture() {
    if (const auto before = std::exchange(m_beforeGesture, {}); before && *before != m_view) Keep(*before);
}

void CViewState::CancelGesture() {
    const auto before = std::exchange(m_beforeGesture, {});
    if (!before || *before == m_view) return;
    m_view = *before;
    Notify(EViewChange::view);
}

bool CViewState::Go(std::deque<SView>& from, std::deque<SView>& to) {
    EndGesture();
    if (from.empty()) return false;
    to.push_back(std::exchange(m_view, std::move(from.back())));
    from.pop_back();
    Notify(EViewChange::view);
    return true;
}

bool CViewState::GoBack() { return Go(m_back, m_forward); }

bool CViewState::GoForward() { return Go(m_forward, m_back); }

void CViewState::ForgetGraph(const SGraphKey& graph) {
    for (auto* views : {&m_back, &m_forward})
        for (SView& view : *views) view.ranges.erase(graph);
    if (m_beforeGesture) m_beforeGesture->ranges.erase(graph);
    if (m_view.ranges.erase(graph)) Notify(EViewChange::view);
}

void CViewState::RenameGraph(const SGraphKey& before, const SGraphKey& after) {
    const auto rename = [&](SView& view) {
        if (auto row = view.ranges.extract(before)) {
            row.key() = after;
            view.ranges.insert(std::move(row));
        }
    };
    for (auto* views : {&m_back, &m_forward})
        for (SView& view : *views) rename(view);
    if (m_beforeGesture) rename(*m_beforeGesture);
    rename(m_view);
}

void CViewState::Clear() {
    m_view = {};
    m_beforeGesture.reset();
    m_back.clear();
    m_forward.clear();
    m_cursors[0].reset();
    m_cursors[1].reset();
    Notify(EViewChange::view);
    Notify(EViewChange::cursor);
}

bool CViewState::SetCursor(ECursor cursor, std::optional<CDateTimeSpan> time) {
    if (time && !time->IsValid()) time.reset();
    if (std::exchange(m_cursors[Index(cursor)], time) == time) return false;
    Notify(EViewChange::cursor);
    return true;
}

std::optional<SPeriod> CViewState::GetInterval() const {
    if (!m_cursors[0] || !m_cursors[1]) return {};
    const auto [first, second] = std::minmax(*m_cursors[0], *m_cursors[1]);
    const SPeriod interval{first, second};
    return interval.IsEmpty() ? std::nullopt : std::optional(interval);
}

} // namespace Presentation_Tarvel_Graphics
