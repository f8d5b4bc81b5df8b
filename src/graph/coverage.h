// Where the files of a project have data: begin and end of each, gaps, and jumps of its clock. Found by one
// walk over the main channel of each file in the background. UI thread.
#pragma once

#include "dataaccess/period_query.h"
#include "document/document.h"
#include "graph/period.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Presentation_Tarvel_Graphics {

struct SClockJump {
    CDateTimeSpan at; // the time before it
    CDateTimeSpan by; // below zero: the clock only jumps back, forwards is a gap

    friend bool operator==(const SClockJump&, const SClockJump&) = default;
};

// Of one channel, on the file's clock.
struct SCoverage {
    std::optional<SPeriod> extent; // none without packets
    std::vector<SPeriod> gaps;     // the first kMostMarks of each
    std::vector<SClockJump> jumps;

    static constexpr std::size_t kMostMarks = 1000;
};

// A gap is a step of more than ten times the usual one, which the first packets show.
class CTrv1DCoverageQuery final : public Application_Tarvel::TPeriodQuery<CTrv1DCoverageQuery> {
  public:
    // `onDone` may be empty.
    CTrv1DCoverageQuery(Application_Tarvel::SChannelAddress address, Callback onDone);

    // Once Execute has returned.
    const SCoverage& GetCoverage() const { return m_coverage; }

  protected:
    bool Begin(const Persistance_Xpf::SPacketLayout& layout) override;
    bool Take(Payloads payloads) override;
    bool Finish() override;

  private:
    void AddStep(CDateTimeSpan from, CDateTimeSpan to);

    SCoverage m_coverage;
    std::optional<CDateTimeSpan> m_last;
    std::vector<std::pair<CDateTimeSpan, CDateTimeSpan>> m_firstSteps; // until the usual one is known
    std::int64_t m_gap = 0;                                            // ticks above which a step is one
};

// Follows the files of the document.
class CTrv1DCoverage final : public Application_Tarvel::IDocumentView {
  public:
    struct SFile {
        const Metier_Tarvel::CTrvDataFile* file; // of the project
        std::string name;
        bool known = false; // the walk has ended
        SCoverage coverage; // in simulation time
    };

    // `document` must outlive the object. Calls `onChanged` after each answer and change of the files.
    CTrv1DCoverage(Application_Tarvel::CTrvDocument& document, std::function<void()> onChanged);
    ~CTrv1DCoverage() override;

    // The main recording, the result, the external files.
    const std::vector<SFile>& GetFiles() const { return m_files; }
    bool IsBusy() const;

    void OnUpdate(Application_Tarvel::EHint hint, const Outils_Objets::CObject* object) override;

  private:
    struct SWalk {
        std::shared_ptr<CTrv1DCoverageQuery> query;
        bool again = false; // the file has changed since
    };

    // `removed` is about to leave the project.
    void Rebuild(const Outils_Objets::CObject* removed = nullptr);
    void Ask(const Metier_Tarvel::CTrvDataFile& file);
    void OnDone(const void* file, CTrv1DCoverageQuery& query, Application_Tarvel::EQueryEnd end);

    Application_Tarvel::CTrvDocument& m_document;
    std::function<void()> m_onChanged;
    std::vector<SFile> m_files;
    std::map<const void*, SWalk> m_walks;             // under way, by file
    std::shared_ptr<CTrv1DCoverage*> m_self;          // null inside after the end: answers look here
    Application_Tarvel::CAsyncQueryManager m_queries; // of its own: the graphs do not wait for it
};

} // namespace Presentation_Tarvel_Graphics
