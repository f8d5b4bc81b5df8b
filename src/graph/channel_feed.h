// Keeps the curves of a stack supplied: asks for the data of each shown channel in the background and hands
// the answers to the stack. UI thread; answers come through the document's message target.
//
// A window that is not on the screen yet is asked for twice: packets here and there first, for all channels,
// then every packet. What comes of the second answer while it is being read takes the place of the first from
// left to right.
#pragma once

#include "document/document.h"
#include "graph/stack.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace Presentation_Tarvel_Graphics {

class CTrv1DExtentQuery;

class CTrv1DChannelFeed {
  public:
    // The first three must outlive the feed. Tells the view state where the data begins and ends, and expects
    // the stack to show what that says. Calls `onChanged` after each answer.
    CTrv1DChannelFeed(Application_Tarvel::CTrvDocument& document, CTrv1DGraphStack& stack,
                      CViewState& viewState, std::function<void()> onChanged);
    // Answers still under way are dropped.
    ~CTrv1DChannelFeed();
    CTrv1DChannelFeed(const CTrv1DChannelFeed&) = delete;
    CTrv1DChannelFeed& operator=(const CTrv1DChannelFeed&) = delete;

    // Queries are under way or due.
    bool IsLoading() const;
    // Data of this file has come. `file` is compared only.
    bool HasDataOf(const Outils_Objets::CObject* file) const;
    // What a graph without points has to say: why it has none, and what helps.
    std::string GetNotice(const CTrv1DGraphPortlet& portlet) const;

    // Follows the channels that the stack shows now: asks about new ones, drops those that left, and hands
    // what is known to every curve.
    void Update();
    // Drops what is known of a file, or of all files for null.
    void Forget(const Outils_Objets::CObject* file);
    // Looks at the channels of a file again, of all files for null. `force` reads the displayed time again
    // even where the file has not grown.
    void Refresh(const Outils_Objets::CObject* file, bool force);
    // The result has grown at one of the last looks, and may go on.
    bool IsResultGrowing() const;
    // Asks for the displayed time of every channel. Data on the screen stays until better data comes.
    void AskWindows();
    // The same if the displayed time is not the one that was asked for last.
    void FollowPeriod();
    // The same if the stack's width has changed by more than the eye sees. `devicePixelRatio` is the number
    // of device pixels in one pixel of the stack.
    void FollowWidth(double devicePixelRatio);

  private:
    class CWindowQuery;
    using Dataset = std::shared_ptr<CTrv1DGraphDataset>;

    struct SChannel {
        Application_Tarvel::SChannelAddress address;
        CDateTimeSpan origin; // file time to simulation time
        Dataset dataset;      // the last that came whole, or that was shown when another window was asked for
        Dataset preview;      // of the window under way; may be null, as the others
        Dataset growing;      // what has come so far of the window under way
        CDateTimeSpan first, last; // of the data, in file time
        bool hasData = false;
        bool fault = false;    // the file could not be read
        bool answered = false; // where its data lies is known, or that it has none
        bool refresh = false;  // look at the file again as soon as no query is under way
        bool force = false;    // and read the window again even if the file has not grown
        // Looks since the last that saw it grow. A writer that fills a buffer first grows in leaps.
        static constexpr int kQuiet = 20;
        int quietLooks = kQuiet;
        std::shared_ptr<Application_Tarvel::CAsyncQuery> extentQuery;  // under way, or null
        std::shared_ptr<Application_Tarvel::CAsyncQuery> previewQuery; // the same
        std::shared_ptr<Application_Tarvel::CAsyncQuery> windowQuery;

        // Data at hand that covers the window is not replaced by less.
        bool ShowsGrowing() const { return growing && (preview || !dataset); }
        // The next slices of the window have come.
        void Grow(const Application_Tarvel::SWindow& window, Application_Tarvel::SReducedSeries part);
        const Dataset& GetShown() const { return ShowsGrowing() ? growing : dataset; }
    };
    using Channels = std::map<SChannelKey, SChannel>;

    const Outils_Configuration::CTrvCnfConfigFile& Config() const { return m_document.GetConfiguration(); }
    void Withdraw(SChannel& channel);
    void StartRefreshes();
    void AskExtent(const SChannelKey& key, SChannel& channel);
    // Both ends of the displayed time, on the channel's own clock; none when there is nothing to ask for.
    std::optional<Application_Tarvel::SWindow> MakeWindow(const SChannel& channel) const;
    void AskPreview(const SChannelKey& key, SChannel& channel);
    void AskWindow(const SChannelKey& key, SChannel& channel);
    void WithdrawWindow(SChannel& channel);
    void AskAgain(const SChannelKey& key, SChannel& channel);
    void Show(const SChannelKey& key, const SChannel& channel);
    void OnExtent(const SChannelKey& key, const CTrv1DExtentQuery& query, bool success, bool cancelled);
    void OnPreview(const SChannelKey& key, const Application_Tarvel::CAsyncQuery& query,
                   Application_Tarvel::SReducedSeries series, const Application_Tarvel::SWindow& window);
    void OnPart(const SChannelKey& key, const CWindowQuery& query, Application_Tarvel::SReducedSeries part);
    void OnWindow(const SChannelKey& key, CWindowQuery& query, bool success, bool cancelled);
    void UpdateFullExtent();
    bool IsResult(const SChannelKey& key) const;
    std::string GetCurvelessNotice(const CTrv1DGraphPortlet& portlet) const;
    std::string GetEmptyNotice(const SChannelKey& key, const SChannel& channel) const;
    void FollowEnd(CDateTimeSpan formerEnd, CDateTimeSpan end);
    SPeriod FindFullExtent() const;

    Application_Tarvel::CTrvDocument& m_document;
    CTrv1DGraphStack& m_stack;
    CViewState& m_viewState;
    std::function<void()> m_onChanged;
    Channels m_channels;
    double m_devicePixelRatio = 1;
    double m_askedWidth = 0; // device pixels for which data was asked last
    SPeriod m_askedPeriod;
    std::shared_ptr<CTrv1DChannelFeed*> m_self; // null inside after the end: answers look here
};

} // namespace Presentation_Tarvel_Graphics
