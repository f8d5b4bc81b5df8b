// Saves what is visible as tables: every packet of each shown channel in the displayed time, a file a
// channel. UI thread; the files are written in the background, one after the other.
#pragma once

#include "dataaccess/csv_query.h"
#include "document/document.h"
#include "graph/stack.h"
#include "values/adaptors.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Presentation_Tarvel_Graphics {

class CTrv1DCsvExport {
  public:
    enum class EEnd { done, failed, cancelled };
    struct SOutcome {
        EEnd end = EEnd::done;
        // One a file that was written, then the one that failed.
        std::vector<std::pair<std::filesystem::path, std::uint64_t>> files; // with their rows
    };
    using Callback = std::function<void(const SOutcome& outcome)>;

    // What there is to save: the channels of the shown graphs that are not hidden. All three must outlive the
    // export. Values are in the units of the display.
    CTrv1DCsvExport(Application_Tarvel::CTrvDocument& document, const CTrv1DGraphStack& stack,
                    const Outils_Valeurs::CTrvAdaptors& adaptors);
    // Ends what is under way; nothing is left of the file at hand.
    ~CTrv1DCsvExport();
    CTrv1DCsvExport(const CTrv1DCsvExport&) = delete;
    CTrv1DCsvExport& operator=(const CTrv1DCsvExport&) = delete;

    bool IsEmpty() const { return m_channels.empty(); }
    // The files that a save under this name writes: the name itself for a single channel, else one beside it
    // for each, with the file's and the channel's name.
    std::vector<std::filesystem::path> GetTargets(const std::filesystem::path& path) const;
    // Calls `onDone` once. Existing files are replaced. REQUIRES: it is not empty, and was not started.
    void Start(const std::filesystem::path& path, Callback onDone);
    // The files that are written stay.
    void Cancel();
    // 0 to 1.
    double GetProgress() const;

  private:
    struct SChannel {
        Application_Tarvel::SChannelAddress address;
        Application_Tarvel::SClosedPeriod period; // on the file's clock
        Application_Tarvel::SCsvClock clock;
        std::vector<Application_Tarvel::SCsvColumn> columns;
        std::string name; // of the channel
    };

    void Add(const SChannelKey& key, const SSimulationTimeText& time, const SPeriod& period);
    void StartNext();
    void OnDone(Application_Tarvel::CTrvCsvQuery& query, Application_Tarvel::EQueryEnd end);

    Application_Tarvel::CTrvDocument& m_document;
    const Outils_Valeurs::CTrvAdaptors& m_adaptors;
    std::vector<SChannel> m_channels;
    std::vector<std::filesystem::path> m_targets;
    std::size_t m_next = 0; // the channel at hand
    std::shared_ptr<Application_Tarvel::CTrvCsvQuery> m_query;
    SOutcome m_outcome;
    Callback m_onDone;
    Application_Tarvel::CAsyncQueryManager m_queries; // of its own: panning does not wait for it
};

} // namespace Presentation_Tarvel_Graphics
