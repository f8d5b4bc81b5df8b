// Fills the stack of graphs: builds it from the project, asks for the data of the displayed time behind the
// screen, and follows the document. Knows no widget. UI thread; results come through the document's message
// target.
#pragma once

#include "document/document.h"
#include "graph/stack.h"
#include "values/adaptors.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>

namespace Presentation_Tarvel_Graphics {

class CTrv1DExtentQuery;

class CTrv1DGraphLoader final : public Application_Tarvel::IDocumentView {
  public:
    // Registers with the document. All three must outlive the loader; `settings` is the one of the process.
    CTrv1DGraphLoader(Application_Tarvel::CTrvDocument& document,
                      const Outils_Valeurs::CTrvAdaptors& adaptors, Outils_Plot2D::CPlot2DSettings& settings);
    ~CTrv1DGraphLoader() override;

    CTrv1DGraphStack& GetStack() { return m_stack; }
    const CTrv1DGraphStack& GetStack() const { return m_stack; }
    Application_Tarvel::CTrvDocument& GetDocument() const { return m_document; }

    // Called when something else is to be drawn; `layout` when portlets came or went, so that the stack's
    // height or margins may differ. The stack is laid out again before.
    void SetOnChanged(std::function<void(bool layout)> onChanged) { m_onChanged = std::move(onChanged); }

    // The size at which the stack is shown, in pixels, and how many device pixels one of them has. Lays the
    // stack out and asks for data as fine as its width. Until the first call data is fit for a width of 1000
    // pixels.
    void SetViewSize(SSize size, double devicePixelRatio, ELayout layout = ELayout::scroll);
    // Lays out again after the user changed a height or the legends.
    void Relayout();

    // Queries are under way: the picture is not final yet.
    bool IsLoading() const;
    // There is a project to show.
    bool HasProject() const { return m_document.GetProject() != nullptr; }

    // Commands, by the factors of the settings. New data is asked for; the old stays on the screen, moved.
    void ZoomHorizontal();
    void UnzoomHorizontal();
    void ScrollLeft();
    void ScrollRight();
    void ViewAll();
    void ZoomVertical();
    void UnzoomVertical();
    void ScrollUp();
    void ScrollDown();
    // For all graphs; at the start the settings decide.
    void ToggleLegends();
    // Shows this period; ignored when empty.
    void ShowPeriod(const SPeriod& period);
    // The stack's period was changed by its own operations: asks for its data.
    void PeriodChanged();
    // Takes texts, units, colours and sampling from the settings again.
    void Reformat();

    void OnUpdate(Application_Tarvel::EHint hint, const Outils_Objets::CObject* object) override;

  private:
    class CWindowQuery;

    // What is known of one shown channel.
    struct SChannel {
        Application_Tarvel::SChannelAddress address;
        CDateTimeSpan origin;                              // file time to simulation time
        std::shared_ptr<const CTrv1DGraphDataset> dataset; // the last that came; may be null
        CDateTimeSpan first, last;                         // of the data, in file time
        bool hasData = false;
        bool answered = false; // where its data lies is known, or that it has none
        bool refresh = false;  // look at the file again as soon as no query is under way
        bool force = false;    // and read the window again even if the file has not grown
        std::shared_ptr<Application_Tarvel::CAsyncQuery> extentQuery; // under way, or null
        std::shared_ptr<Application_Tarvel::CAsyncQuery> windowQuery; // under way, or null
    };
    using Channels = std::map<SChannelKey, SChannel>;

    void Rebuild(bool forget);
    bool ShowsDataOf(const Outils_Objets::CObject* file) const;
    void ForgetResult();
    SSimulationTimeText MakeTimeText() const;
    void AddPortlets();
    void UpdateChannels();
    void Withdraw(SChannel& channel);
    // Looks at the channels of a file again, of all files for null.
    void Refresh(const Outils_Objets::CObject* file, bool force);
    void StartRefreshes();
    void AskExtent(const SChannelKey& key, SChannel& channel);
    void AskWindow(const SChannelKey& key, SChannel& channel);
    void AskAllWindows();
    void AskIfWidthChanged();
    void OnExtent(const SChannelKey& key, const CTrv1DExtentQuery& query, bool success, bool cancelled);
    void OnWindow(const SChannelKey& key, CWindowQuery& query, bool success, bool cancelled);
    bool UpdateFullExtent();
    SPeriod FindFullExtent() const;
    void UpdateNotices();
    void Changed(bool layout);
    const Outils_Configuration::CTrvCnfConfigFile& Config() const { return m_document.GetConfiguration(); }

    Application_Tarvel::CTrvDocument& m_document;
    const Outils_Valeurs::CTrvAdaptors& m_adaptors;
    Outils_Plot2D::CPlot2DSettings& m_settings;
    CTrv1DGraphStack m_stack;
    Channels m_channels;
    std::function<void(bool)> m_onChanged;
    SSize m_size{};
    ELayout m_layout = ELayout::scroll;
    double m_devicePixelRatio = 1;
    double m_askedWidth = 0;                    // device pixels for which data was asked last
    std::optional<bool> m_legendSetting;        // as it was read last
    bool m_running = false;                     // the engine is at work
    std::shared_ptr<CTrv1DGraphLoader*> m_self; // null inside once the loader is gone: answers look here
};

} // namespace Presentation_Tarvel_Graphics
