#include "graph/cursor_steps.h"

#include "dataaccess/step_query.h"
#include "foundation/texts.h"
#include "graph/change_query.h"

#include <utility>

namespace Presentation_Tarvel_Graphics {

using namespace Application_Tarvel;
using Outils_Texte::EText;

CTrv1DCursorSteps::CTrv1DCursorSteps(CTrvDocument& document, CViewState& viewState,
                                     std::function<void(EText)> onEnd)
    : m_document(document),
      m_viewState(viewState),
      m_onEnd(std::move(onEnd)),
      m_queries(document.GetMessageTarget()),
      m_self(std::make_shared<CTrv1DCursorSteps*>(this)) {
    m_document.AddView(this);
}

CTrv1DCursorSteps::~CTrv1DCursorSteps() {
    *m_self = nullptr;
    m_document.RemoveView(this);
    Cancel();
}

// A file that goes takes the steps on it along.
void CTrv1DCursorSteps::OnUpdate(EHint hint, const Outils_Objets::CObject*) {
    if (hint == hintRefresh || hint == hintDataFileRemoved) Cancel();
}

void CTrv1DCursorSteps::Cancel() {
    m_waiting.reset();
    // Forgotten before it is cancelled, so that its answer finds nobody.
    if (const auto query = std::exchange(m_query, nullptr)) m_queries.Cancel(query);
}

void CTrv1DCursorSteps::Step(const SChannelKey& channel, int steps) {
    Add({channel, Metier_Tarvel::ToSpan(channel.file->timeOffset), steps, {}});
}

void CTrv1DCursorSteps::StepToChange(const SChannelKey& channel, std::uint32_t field, bool forward) {
    Add({channel, Metier_Tarvel::ToSpan(channel.file->timeOffset), forward ? 1 : -1, field});
}

// A held key asks faster than a file answers.
void CTrv1DCursorSteps::Add(SStep step) {
    if (m_query && m_waiting && m_waiting->JoinsWith(step))
        m_waiting->steps += step.steps;
    else if (m_query)
        m_waiting = step;
    else {
        m_running = step;
        Start();
    }
}

void CTrv1DCursorSteps::Start() {
    CProjectFiles* files = m_document.GetFiles();
    const SPeriod& period = m_viewState.GetView().period;
    if (!files || period.IsEmpty() || m_running.steps == 0) return;
    auto cursor = m_viewState.GetCursor(ECursor::first);
    if (!cursor) cursor = period.start + CDateTimeSpan((period.end - period.start).GetTicks() / 2);
    const CDateTimeSpan from = *cursor - m_running.origin;
    const auto address = files->GetAddress(*m_running.channel.file, m_running.channel.channel);
    // The callbacks know their query by a pointer that they get when it exists.
    const auto made = std::make_shared<const CAsyncQuery*>(nullptr);
    const auto onDone = [self = m_self, made](EQueryEnd, std::optional<CDateTimeSpan> date) {
        if (*self) (*self)->OnFound(*made, date);
    };
    if (m_running.field)
        m_query =
            std::make_shared<CTrv1DChangeQuery>(address, *m_running.field, from, m_running.steps > 0, onDone);
    else
        m_query = std::make_shared<CTrvStepQuery>(address, from, m_running.steps, onDone);
    *made = m_query.get();
    m_queries.Submit(m_query);
}

void CTrv1DCursorSteps::OnFound(const CAsyncQuery* query, std::optional<CDateTimeSpan> date) {
    if (!m_query || m_query.get() != query) return;
    const auto ended = std::exchange(m_query, nullptr);
    if (date)
        MoveTo(*date + m_running.origin);
    else if (m_onEnd)
        m_onEnd(m_running.field ? EText::noOtherState : EText::noOtherSample);
    if (const auto next = std::exchange(m_waiting, std::nullopt)) {
        m_running = *next;
        Start();
    }
}

void CTrv1DCursorSteps::MoveTo(CDateTimeSpan time) {
    const SPeriod period = m_viewState.GetView().period;
    if (time < period.start || time > period.end) {
        const double half = static_cast<double>((period.end - period.start).GetTicks()) / 2;
        m_viewState.FollowData(Move(period, static_cast<double>((time - period.start).GetTicks()) - half));
    }
    m_viewState.SetCursor(ECursor::first, time);
}

} // namespace Presentation_Tarvel_Graphics
