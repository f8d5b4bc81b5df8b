// The plan view without a widget: the tracks of the result and of the position sensors over the ground, what
// part of the ground is seen, and what is known at the cursor. Follows the document and the shared view
// state. UI thread.
#pragma once

#include "graph/channel_moments.h"
#include "graph/field_text.h"
#include "graph/track_query.h"
#include "graph/view_state.h"
#include "plot/graphics.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Presentation_Tarvel_Graphics {

using Outils_Plot2D::SPoint;
using Outils_Plot2D::SSize;

// How a track is drawn, so that shape tells tracks apart where colour does not.
enum class ETrackMark { line, cross, circle, square, triangle, diamond };

struct SPlanTrack {
    SChannelKey channel;
    std::string name;
    ETrackMark mark = ETrackMark::line;
    std::size_t colour = 0;               // place in the palette
    CDateTimeSpan origin;                 // file time to simulation time
    std::shared_ptr<const STrack> whole;  // null until it is known
    std::shared_ptr<const STrack> detail; // finer, of a part of the ground; may be null
    SGeoBox detailBox;

    // What is to be drawn for a part of the ground.
    const STrack* GetBest(const SGeoBox& seen) const;
};

// The ground in a picture of `size` pixels, north up, the same scale both ways.
struct SPlanScale {
    SPlace centre;
    double metresPerPixel = 1;
    SSize size;

    SPoint ToPixel(const SPlace& place) const;
    SPlace ToPlace(SPoint pixel) const;
};

// What is known of a track at the cursor.
struct SPlanCursor {
    const SPlanTrack* track = nullptr;
    SPlace place;
    bool hasUncertainty = false;
    double north = 0, east = 0; // standard deviations, metres
    SUncertainty ellipse;
};

class CTrvPlan final : public Application_Tarvel::IDocumentView {
  public:
    // Registers with the document. All three must outlive the object. Asks for nothing until it is shown.
    CTrvPlan(CTrvDocument& document, CViewState& state, const Outils_Valeurs::CTrvAdaptors& adaptors);
    ~CTrvPlan() override;

    void SetOnChanged(std::function<void()> onChanged) { m_onChanged = std::move(onChanged); }
    // A hidden plan asks for no data.
    void SetShown(bool shown);
    // Pixels of the picture, and how many device pixels one of them has.
    void SetSize(SSize size, double devicePixelRatio);

    const std::vector<SPlanTrack>& GetTracks() const { return m_tracks; }
    const SPlanScale& GetScale() const { return m_scale; }
    const CLocalFrame* GetFrame() const { return m_frame ? &*m_frame : nullptr; }
    // The part of the ground that is seen.
    SGeoBox GetSeen() const;
    CTrvDocument& GetDocument() const { return m_document; }
    const Outils_Valeurs::CTrvAdaptors& GetAdaptors() const { return m_adaptors; }
    SPeriod GetPeriod() const { return m_state.GetView().period; }
    // Of each track that has a sample at the cursor.
    std::vector<SPlanCursor> GetCursors() const;
    // What a plan without positions says; empty for one with some.
    std::string GetNotice() const;
    bool IsLoading() const;

    // Factors below 1 show more detail; the ground at `pixel` stays where it is.
    void ZoomAt(SPoint pixel, double factor);
    // The picture follows the mouse by this many pixels.
    void Pan(float dx, float dy);
    // The whole of all tracks; also what growing tracks follow from now on.
    void ShowAll();
    // Puts the cursor to the sample of the first track that is nearest to the pixel; false without one within
    // some pixels.
    bool SetCursorAt(SPoint pixel);

    void Reformat() { UpdateTracks(nullptr); }
    void OnUpdate(Application_Tarvel::EHint hint, const Outils_Objets::CObject* object) override;

  private:
    struct SQuestion {
        std::shared_ptr<CTrvTrackQuery> whole, detail; // under way, or null
        bool isDue = true;
    };

    void UpdateTracks(const Outils_Objets::CObject* leaving);
    void Refresh(const Outils_Objets::CObject* file);
    void AskWhole();
    void AskDetail();
    void Ask(std::size_t track, bool whole, const STrackRequest& request);
    void OnAnswer(CTrvTrackQuery& query, Application_Tarvel::EQueryEnd end);
    void Withdraw(std::shared_ptr<CTrvTrackQuery>& query);
    void TakeFrame(const CLocalFrame& frame);
    void FollowView();
    bool FitAll();
    SGeoPoint ToGeo(const SPlace& place) const;
    void Changed();

    CTrvDocument& m_document;
    CViewState& m_state;
    const Outils_Valeurs::CTrvAdaptors& m_adaptors;
    std::function<void()> m_onChanged;
    bool m_shown = false;
    bool m_showsAll = true;
    double m_devicePixelRatio = 1;
    SPlanScale m_scale;
    std::optional<CLocalFrame> m_frame;
    std::vector<SPlanTrack> m_tracks;
    std::vector<SQuestion> m_questions; // of the tracks
    CTrvChannelMoments m_moments;
    std::shared_ptr<CTrvPlan*> m_self; // null inside after the end: answers look here
    Application_Tarvel::CAsyncQueryManager m_manager;
    CViewState::CSubscription m_subscription;
};

} // namespace Presentation_Tarvel_Graphics
