#include "graph/coverage.h"

#include "foundation/bytes.h"
#include "foundation/paths.h"
#include "xpf/layout.h"

#include <algorithm>
#include <utility>

namespace Presentation_Tarvel_Graphics {

using namespace Application_Tarvel;
using Metier_Tarvel::CTrvDataFile;

namespace {

constexpr std::size_t kFirstSteps = 200;
constexpr std::int64_t kGapSteps = 10;
// All dates that a recording can have.
constexpr std::int64_t kAnyTime = 4'000'000'000'000'000'000;
constexpr std::string_view kMainChannel = "IMU";

// The channel that tells of the whole file; null for a file of which nothing is known.
const Metier_Tarvel_DataModel::CTrvDataLayer* FindMainLayer(const Metier_Tarvel::CTrvProject& project,
                                                            const CTrvDataFile& file) {
    const Metier_Tarvel_DataModel::CTrvDataLayer* first = nullptr;
    for (const auto& layer : project.dataModel->m_layers) {
        if (layer->m_dataFile != &file) continue;
        if (layer->m_name == kMainChannel || layer->m_name == Persistance_Xpf::kResultChannel)
            return layer.get();
        if (!first || (layer->m_hasData && !first->m_hasData)) first = layer.get();
    }
    return first;
}

void MoveTo(SCoverage& coverage, CDateTimeSpan origin) {
    const auto move = [origin](SPeriod& period) { period = {period.start + origin, period.end + origin}; };
    if (coverage.extent) move(*coverage.extent);
    for (SPeriod& gap : coverage.gaps) move(gap);
    for (SClockJump& jump : coverage.jumps) jump.at += origin;
}

} // namespace

CTrv1DCoverageQuery::CTrv1DCoverageQuery(SChannelAddress address, Callback onDone)
    : TPeriodQuery(std::move(address), {CDateTimeSpan(-kAnyTime), CDateTimeSpan(kAnyTime)},
                   std::move(onDone)) {}

bool CTrv1DCoverageQuery::Begin(const Persistance_Xpf::SPacketLayout&) {
    m_coverage = {};
    m_last.reset();
    m_firstSteps.clear();
    m_gap = 0;
    return true;
}

bool CTrv1DCoverageQuery::Take(Payloads payloads) {
    for (const std::uint8_t* payload : payloads) {
        const CDateTimeSpan date(Outils::Load<std::int64_t>(payload));
        if (m_last) {
            const std::int64_t step = date.GetTicks() - m_last->GetTicks();
            if (m_gap == 0)
                m_firstSteps.emplace_back(*m_last, date);
            else if (step > m_gap || step < 0)
                AddStep(*m_last, date);
            if (m_firstSteps.size() == kFirstSteps) Finish();
        }
        auto& extent = m_coverage.extent;
        if (!extent) extent = SPeriod{date, date};
        if (date > extent->end) extent->end = date;
        if (date < extent->start) extent->start = date;
        m_last = date;
    }
    return true;
}

// Also once enough steps are known to tell what is usual.
bool CTrv1DCoverageQuery::Finish() {
    if (m_firstSteps.empty()) return true;
    std::vector<std::int64_t> ticks;
    for (const auto& [from, to] : m_firstSteps) ticks.push_back((to - from).GetTicks());
    const auto middle = ticks.begin() + static_cast<std::ptrdiff_t>(ticks.size() / 2);
    std::nth_element(ticks.begin(), middle, ticks.end());
    m_gap = std::max<std::int64_t>(*middle, 1) * kGapSteps;
    for (const auto& [from, to] : std::exchange(m_firstSteps, {})) AddStep(from, to);
    return true;
}

void CTrv1DCoverageQuery::AddStep(CDateTimeSpan from, CDateTimeSpan to) {
    const std::int64_t step = to.GetTicks() - from.GetTicks();
    if (step > m_gap && m_coverage.gaps.size() < SCoverage::kMostMarks) m_coverage.gaps.push_back({from, to});
    if (step < 0 && m_coverage.jumps.size() < SCoverage::kMostMarks)
        m_coverage.jumps.push_back({from, CDateTimeSpan(step)});
}

CTrv1DCoverage::CTrv1DCoverage(CTrvDocument& document, std::function<void()> onChanged)
    : m_document(document),
      m_onChanged(std::move(onChanged)),
      m_self(std::make_shared<CTrv1DCoverage*>(this)),
      m_queries(document.GetMessageTarget()) {
    m_document.AddView(this);
    Rebuild();
}

CTrv1DCoverage::~CTrv1DCoverage() {
    *m_self = nullptr;
    m_document.RemoveView(this);
}

bool CTrv1DCoverage::IsBusy() const { return !m_walks.empty(); }

void CTrv1DCoverage::OnUpdate(EHint hint, const Outils_Objets::CObject* object) {
    switch (hint) {
    case hintRefresh:
    case hintDataFileAdded:
    case hintDataFileTimeOffsetChanged:
    case hintOutputFileNameChanged:
    case hintRunStarted: Rebuild(); break;
    case hintDataFileRemoved: Rebuild(object); break;
    case hintRunEnded:
    case hintDataLayersRebuilt:
    case hintDataFileContentChanged:
        for (const SFile& file : m_files)
            if (!object || file.file == object) Ask(*file.file);
        break;
    default: break;
    }
}

void CTrv1DCoverage::Rebuild(const Outils_Objets::CObject* removed) {
    for (const auto& [file, walk] : std::exchange(m_walks, {})) m_queries.Cancel(walk.query);
    m_files.clear();
    if (const auto* project = m_document.GetProject())
        for (const CTrvDataFile* file : project->simulationParameters->GetDataFiles())
            if (file != removed)
                m_files.push_back({file, Outils_Fichiers::ToText(file->path.filename()), false, {}});
    for (const SFile& file : m_files) Ask(*file.file);
    m_onChanged();
}

void CTrv1DCoverage::Ask(const CTrvDataFile& file) {
    const auto* project = m_document.GetProject();
    const auto* layer = project && m_document.GetFiles() ? FindMainLayer(*project, file) : nullptr;
    if (!layer) return;
    if (const auto walk = m_walks.find(&file); walk != m_walks.end()) {
        walk->second.again = true;
        return;
    }
    auto query = std::make_shared<CTrv1DCoverageQuery>(
        m_document.GetFiles()->GetAddress(file, layer->m_channelNumber),
        [self = m_self, key = &file](CTrv1DCoverageQuery& answer, EQueryEnd end) {
            if (*self) (*self)->OnDone(key, answer, end);
        });
    m_walks[&file] = {query, false};
    m_queries.Submit(query);
}

// `key` may be a file that has gone, also with its project, which is reported later.
void CTrv1DCoverage::OnDone(const void* key, CTrv1DCoverageQuery& query, EQueryEnd end) {
    const auto walk = m_walks.find(key);
    if (walk == m_walks.end() || walk->second.query.get() != &query) return;
    const bool again = walk->second.again;
    m_walks.erase(walk);
    const auto* project = m_document.GetProject();
    const auto files = project ? project->simulationParameters->GetDataFiles() : std::vector<CTrvDataFile*>();
    const auto place =
        std::ranges::find(m_files, key, [](const SFile& own) -> const void* { return own.file; });
    if (place == m_files.end() || std::ranges::find(files, place->file) == files.end()) return;
    place->known = end != EQueryEnd::cancelled;
    place->coverage = query.GetCoverage();
    MoveTo(place->coverage, Metier_Tarvel::ToSpan(place->file->timeOffset));
    if (again) Ask(*place->file);
    m_onChanged();
}

} // namespace Presentation_Tarvel_Graphics
