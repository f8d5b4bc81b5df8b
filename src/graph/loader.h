// Makes a stack of graphs follow the document and the settings, and does its commands. Knows no widget. UI
// thread.
#pragma once

#include "graph/channel_feed.h"
#include "values/adaptors.h"

#include <functional>
#include <map>
#include <optional>

namespace Presentation_Tarvel_Graphics {

class CTrv1DGraphLoader final : public Application_Tarvel::IDocumentView {
  public:
    // Registers with the document and listens to the view state: the stack shows what that says. All four
    // must outlive the loader; `settings` is the one of the process.
    CTrv1DGraphLoader(Application_Tarvel::CTrvDocument& document, CViewState& viewState,
                      const Outils_Valeurs::CTrvAdaptors& adaptors, Outils_Plot2D::CPlot2DSettings& settings);
    ~CTrv1DGraphLoader() override;

    CTrv1DGraphStack& GetStack() { return m_stack; }
    const CTrv1DGraphStack& GetStack() const { return m_stack; }
    Application_Tarvel::CTrvDocument& GetDocument() const { return m_document; }
    CViewState& GetViewState() const { return m_viewState; }

    // Calls `onChanged` when something else is to be drawn; with `layout` when portlets came or went, so that
    // the stack's height or margins may differ. The stack is laid out again before.
    void SetOnChanged(std::function<void(bool layout)> onChanged) { m_onChanged = std::move(onChanged); }

    // The size at which the stack is shown, in pixels, and how many device pixels one of them has. Lays the
    // stack out and asks for data as fine as its width. Until the first call data is fit for a width of 1000
    // pixels.
    void SetViewSize(SSize size, double devicePixelRatio, ELayout layout = ELayout::scroll);
    // Lays out again after the user changed a height or the legends.
    void Relayout();

    // Queries are under way: the picture is not final yet.
    bool IsLoading() const;
    // What graphs without points say, brought up to date: nobody reports the end of an analysis. True while
    // one is under way, and it may change again.
    bool UpdateNotices();
    // The result grows, and its end is on the way to the screen. The document hears of growth every few
    // seconds; a view that wants to keep up looks itself while this is true.
    bool IsResultGrowing() const { return m_feed.IsResultGrowing(); }
    void LookForGrowth();
    // There is a project to show.
    bool HasProject() const { return m_document.GetProject() != nullptr; }

    // Commands. A step of 1 zooms in or moves by the factor of the settings, to later times or greater
    // values; a negative one does the opposite; a fraction does its part. New data is asked for; the old
    // stays on the screen, moved.
    void ZoomTime(double steps);
    void ScrollTime(double steps);
    // Shows the time from the first to the last data of all that is shown.
    void ViewAll();
    // Lets the values of every graph follow what is visible again.
    void FitValues();
    // Keeps the length of the displayed time: by whole windows, positive to later times; to the first data;
    // to the last.
    void PageTime(int windows);
    void ShowBegin();
    void ShowEnd();
    // Puts the cursor at a time, in the middle of what is shown unless it is shown already.
    void GoTo(CDateTimeSpan time);
    // Zoom about a time; about a value of a graph of measures.
    void ZoomTimeAt(double steps, CDateTimeSpan at);
    void ZoomValuesAt(const CTrv1DGraphMeasurePortlet& graph, double steps, double value);
    // Act on the selected graph, if that is one of measures.
    void ZoomValues(double steps);
    void ScrollValues(double steps);
    // The selected graph in the stack: one place up (negative) or down; alone or with all others again.
    void MoveSelected(int step);
    void ShowAlone(bool alone);
    // Forgets the heights that the user gave.
    void EqualHeights();
    // Makes the default graphs part of the project before one of them changes. True when the project has
    // graphs of its own then; every graph keeps its place and what it shows.
    bool SaveDefaults();
    // For all graphs; at the start the settings decide.
    void SetLegendsVisible(bool visible);
    // Shows this period; ignores an empty one.
    void ShowPeriod(const SPeriod& period) { m_viewState.SetPeriod(period); }
    // A drag keeps one view to go back to and asks for data at its end; without `accept` it leaves the view
    // as it was.
    void BeginDrag();
    void EndDrag(bool accept);
    // Takes texts, units, colours and sampling from the settings again.
    void Reformat();

    void OnUpdate(Application_Tarvel::EHint hint, const Outils_Objets::CObject* object) override;

  private:
    void OnViewChanged();
    void UpdateGraphs();
    void MoveRanges(const std::map<const CTrv1DGraphPortlet*, SGraphKey>& before);
    double GetTimeFactor(double steps) const;
    double GetValueFactor(double steps) const;
    void ForgetResult();
    SSimulationTimeText MakeTimeText() const;
    void Changed(bool layout);
    const Outils_Configuration::CTrvCnfConfigFile& Config() const { return m_document.GetConfiguration(); }

    Application_Tarvel::CTrvDocument& m_document;
    const Outils_Valeurs::CTrvAdaptors& m_adaptors;
    Outils_Plot2D::CPlot2DSettings& m_settings;
    CViewState& m_viewState;
    CTrv1DGraphStack m_stack;
    std::function<void(bool)> m_onChanged;
    CTrv1DChannelFeed m_feed;
    SSize m_size{};
    ELayout m_layout = ELayout::scroll;
    double m_devicePixelRatio = 1;
    std::optional<bool> m_legendSetting; // as it was read last
    bool m_running = false;              // the engine is at work
    bool m_dragging = false;
    CViewState::CSubscription m_subscription;
};

} // namespace Presentation_Tarvel_Graphics
