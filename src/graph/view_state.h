// What all views of one project share: the displayed time, the vertical ranges that the user set, two
// cursors, and the views to go back to. Graphs, instant values, variables and exports listen to it. Knows no
// widget. UI thread.
#pragma once

#include "graph/period.h"
#include "graph/range.h"

#include <compare>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Presentation_Tarvel_Graphics {

// A saved graph, or a default one, which is known by its title. Compared only: the graph may be gone.
struct SGraphKey {
    const void* graph = nullptr; // null for a default one
    std::string title;           // empty for a saved one

    friend auto operator<=>(const SGraphKey&, const SGraphKey&) = default;
};

// In the units of the graphs. A graph without a range follows its data.
struct SView {
    SPeriod period;
    std::map<SGraphKey, SRange> ranges;

    friend bool operator==(const SView&, const SView&) = default;
};

enum class ECursor { first, second };
enum class EViewChange { view, cursor };

class CViewState {
  public:
    static constexpr std::size_t kKeptViews = 50; // each way

    using Listener = std::function<void(EViewChange)>;
    // Ends its subscription when it goes; may outlive the state.
    class CSubscription;

    CViewState() = default;
    CViewState(const CViewState&) = delete;
    CViewState& operator=(const CViewState&) = delete;

    // Calls the listener after each change, once; it may change the state and end subscriptions.
    [[nodiscard]] CSubscription Listen(Listener listener);

    const SView& GetView() const { return m_view; }
    bool HasPeriod() const { return !m_view.period.IsEmpty(); }
    // Each shows something else and keeps the former view to go back to, save during a gesture. False when
    // nothing changes: an empty period, a range that is not usable, what is shown already.
    bool SetPeriod(const SPeriod& period);
    bool SetRange(const SGraphKey& graph, const std::optional<SRange>& range);
    bool SetView(const SView& view);
    // The data has grown or come, or the cursor has left it: the displayed time follows, and no view is kept.
    bool FollowData(const SPeriod& period);

    // A drag or a turn of the wheel shows many views, of which only the one before it is kept.
    void BeginGesture();
    void EndGesture();
    // Back to the view before the gesture.
    void CancelGesture();

    // The view before, or after going back, the next one. False without one.
    bool GoBack();
    bool GoForward();
    bool CanGoBack() const { return !m_back.empty(); }
    bool CanGoForward() const { return !m_forward.empty(); }

    // Drops the ranges of a graph that was removed, in the kept views as well.
    void ForgetGraph(const SGraphKey& graph);
    // A default graph has become a saved one, and keeps its ranges.
    void RenameGraph(const SGraphKey& before, const SGraphKey& after);
    // Another project: no view, no cursor, nothing kept.
    void Clear();

    std::optional<CDateTimeSpan> GetCursor(ECursor cursor) const { return m_cursors[Index(cursor)]; }
    // An invalid time is none.
    bool SetCursor(ECursor cursor, std::optional<CDateTimeSpan> time);
    // From the earlier cursor to the later one; none without both, or when they are at one time.
    std::optional<SPeriod> GetInterval() const;

  private:
    struct SListeners;

    static std::size_t Index(ECursor cursor) { return cursor == ECursor::first ? 0 : 1; }
    bool Show(SView view);
    void Keep(const SView& view);
    bool Go(std::deque<SView>& from, std::deque<SView>& to);
    void Notify(EViewChange change);

    SView m_view;
    std::optional<SView> m_beforeGesture;
    std::deque<SView> m_back, m_forward; // the nearest last
    std::optional<CDateTimeSpan> m_cursors[2];
    std::shared_ptr<SListeners> m_listeners = std::make_shared<SListeners>();
};

struct CViewState::SListeners {
    std::map<std::size_t, Listener> listeners; // in the order of subscription
    std::size_t next = 0;
};

class CViewState::CSubscription {
  public:
    CSubscription() = default;
    CSubscription(std::weak_ptr<SListeners> listeners, std::size_t key)
        : m_listeners(std::move(listeners)), m_key(key) {}
    CSubscription(CSubscription&& other) noexcept { *this = std::move(other); }
    CSubscription& operator=(CSubscription&& other) noexcept {
        std::swap(m_listeners, other.m_listeners);
        std::swap(m_key, other.m_key);
        return *this;
    }
    ~CSubscription() {
        if (const auto listeners = m_listeners.lock()) listeners->listeners.erase(m_key);
    }

  private:
    std::weak_ptr<SListeners> m_listeners;
    std::size_t m_key = 0;
};

} // namespace Presentation_Tarvel_Graphics
