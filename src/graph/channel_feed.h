// Keeps the curves of a stack supplied: asks for the data of each shown channel in the background and hands
// the answers to the stack. UI thread; answers come through the document's message target.
#pragma once

#include "document/document.h"
#include "foundation/text_id.h"
#include "graph/stack.h"

#include <functional>
#include <map>
#include <memory>

namespace Presentation_Tarvel_Graphics {

class CTrv1DExtentQuery;

class CTrv1DChannelFeed {
  public:
    // `document` and `stack` must outlive the feed. Calls `onChanged` after each answer.
    CTrv1DChannelFeed(Application_Tarvel::CTrvDocument& document, CTrv1DGraphStack& stack,
                      std::function<void()> onChanged);
    // Answers still under way are dropped.
    ~CTrv1DChannelFeed();
    CTrv1DChannelFeed(const CTrv1DChannelFeed&) = delete;
    CTrv1DChannelFeed& operator=(const CTrv1DChannelFeed&) = delete;

    // Queries are under way or due.
    bool IsLoading() const;
    // Data of this file has come. `file` is compared only.
    bool HasDataOf(const Outils_Objets::CObject* file) const;
    // What a graph without points has to say.
    Outils_Texte::EText GetNotice(const CTrv1DGraphPortlet& portlet) const;

    // Follows the channels that the stack shows now: asks about new ones, drops those that left, and hands
    // what is known to every curve.
    void Update();
    // Drops what is known of a file, or of all files for null.
    void Forget(const Outils_Objets::CObject* file);
    // Looks at the channels of a file again, of all files for null. `force` reads the displayed time again
    // even where the file has not grown.
    void Refresh(const Outils_Objets::CObject* file, bool force);
    // Asks for the displayed time of every channel. Data on the screen stays until better data comes.
    void AskWindows();
    // The same if the stack's width has changed by more than the eye sees. `devicePixelRatio` is the number
    // of device pixels in one pixel of the stack.
    void FollowWidth(double devicePixelRatio);

  private:
    class CWindowQuery;

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

    const Outils_Configuration::CTrvCnfConfigFile& Config() const { return m_document.GetConfiguration(); }
    void Withdraw(SChannel& channel);
    void StartRefreshes();
    void AskExtent(const SChannelKey& key, SChannel& channel);
    void AskWindow(const SChannelKey& key, SChannel& channel);
    void OnExtent(const SChannelKey& key, const CTrv1DExtentQuery& query, bool success, bool cancelled);
    void OnWindow(const SChannelKey& key, CWindowQuery& query, bool success, bool cancelled);
    bool UpdateFullExtent();
    SPeriod FindFullExtent() const;

    Application_Tarvel::CTrvDocument& m_document;
    CTrv1DGraphStack& m_stack;
    std::function<void()> m_onChanged;
    Channels m_channels;
    double m_devicePixelRatio = 1;
    double m_askedWidth = 0;                    // device pixels for which data was asked last
    std::shared_ptr<CTrv1DChannelFeed*> m_self; // null inside after the end: answers look here
};

} // namespace Presentation_Tarvel_Graphics
