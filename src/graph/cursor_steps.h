// Moves the first cursor from sample to sample, or from change to change of a state, as the file has them. UI
// thread; searches run in the background, one after the other.
#pragma once

#include "document/document.h"
#include "foundation/text_id.h"
#include "graph/dataset.h"
#include "graph/view_state.h"

#include <functional>
#include <memory>
#include <optional>

namespace Presentation_Tarvel_Graphics {

class CTrv1DCursorSteps final : public Application_Tarvel::IDocumentView {
  public:
    // Both must outlive the object. Calls `onEnd` when a step found nothing in its direction, with the text
    // that says so.
    CTrv1DCursorSteps(Application_Tarvel::CTrvDocument& document, CViewState& viewState,
                      std::function<void(Outils_Texte::EText)> onEnd);
    // Answers still under way are dropped.
    ~CTrv1DCursorSteps() override;
    CTrv1DCursorSteps(const CTrv1DCursorSteps&) = delete;
    CTrv1DCursorSteps& operator=(const CTrv1DCursorSteps&) = delete;

    // By this many samples of the channel, positive to later ones. Steps that come while one is under way are
    // added to it. Without a cursor in the displayed time it goes to the middle of that first. `channel.file`
    // must be of the project.
    void Step(const SChannelKey& channel, int steps);
    // To the next change of a status field after the cursor, or before it.
    void StepToChange(const SChannelKey& channel, std::uint32_t field, bool forward);
    bool IsBusy() const { return m_query != nullptr; }
    // Ends what is under way.
    void Cancel();

    void OnUpdate(Application_Tarvel::EHint hint, const Outils_Objets::CObject* object) override;

  private:
    struct SStep {
        SChannelKey channel;
        CDateTimeSpan origin; // file time to simulation time
        int steps = 0;        // samples, if no field is given
        std::optional<std::uint32_t> field;

        bool JoinsWith(const SStep& other) const {
            return channel == other.channel && !field && !other.field;
        }
    };

    void Add(SStep step);
    void Start();
    void OnFound(const Application_Tarvel::CAsyncQuery* query, std::optional<CDateTimeSpan> date);
    void MoveTo(CDateTimeSpan time);

    Application_Tarvel::CTrvDocument& m_document;
    CViewState& m_viewState;
    std::function<void(Outils_Texte::EText)> m_onEnd;
    Application_Tarvel::CAsyncQueryManager m_queries;
    std::shared_ptr<Application_Tarvel::CAsyncQuery> m_query; // under way, or null
    SStep m_running;
    std::optional<SStep> m_waiting;
    std::shared_ptr<CTrv1DCursorSteps*> m_self; // null inside after the end: answers look here
};

} // namespace Presentation_Tarvel_Graphics
