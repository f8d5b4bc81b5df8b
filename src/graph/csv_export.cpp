#include "graph/csv_export.h"

#include "xpf/layout.h"

#include <algorithm>
#include <set>

namespace Presentation_Tarvel_Graphics {

using namespace Application_Tarvel;
using Outils_Valeurs::CPhysicalValueAdaptor;

namespace {

// "Depth [m]", in the unit of the display.
SCsvColumn MakeColumn(const Persistance_Xpf::SFieldLayout& field, std::uint32_t index,
                      const Outils_Valeurs::CTrvAdaptors& adaptors) {
    SCsvColumn column{std::string(field.name), index, 1, 0};
    const auto& adaptor = adaptors.GetForNature(field.nature);
    if (const auto* physical = dynamic_cast<const CPhysicalValueAdaptor*>(&adaptor)) {
        const auto& unit = physical->GetCurrentUnit();
        column.factor = unit.B / unit.A;
        column.offset = unit.C;
        if (!unit.symbol.empty()) column.heading += " [" + unit.symbol + ']';
    } else if (dynamic_cast<const Outils_Valeurs::CLatitudeLongitudeAdaptor*>(&adaptor))
        column.heading += " [°]";
    return column;
}

// What a file system takes in a name.
std::string ToFileName(std::string name) {
    std::ranges::replace_if(
        name, [](char c) { return c == '/' || c == '\\' || c == ':'; }, '_');
    return name;
}

} // namespace

CTrv1DCsvExport::CTrv1DCsvExport(CTrvDocument& document, const CTrv1DGraphStack& stack,
                                 const Outils_Valeurs::CTrvAdaptors& adaptors)
    : m_document(document), m_adaptors(adaptors), m_queries(document.GetMessageTarget()) {
    if (!stack.HasPeriod() || !document.GetProject()) return;
    std::set<SChannelKey> known;
    for (const CTrv1DGraphPortlet* portlet : stack.GetShown())
        portlet->ForEachVisible([&](const CPlot2DSerie&, const CTrv1DGraphDataSource& source) {
            if (source.GetCount() > 0 && known.insert(source.GetChannel()).second)
                Add(source.GetChannel(), stack.GetTimeText(), stack.GetPeriod());
        });
}

CTrv1DCsvExport::~CTrv1DCsvExport() {
    m_onDone = {};
    Cancel();
}

void CTrv1DCsvExport::Add(const SChannelKey& key, const SSimulationTimeText& time, const SPeriod& period) {
    const auto* layer = m_document.GetProject()->dataModel->FindLayer(key.file, key.channel);
    const auto* known = layer ? Persistance_Xpf::FindChannelLayout(layer->m_name) : nullptr;
    const auto* layout = known ? Persistance_Xpf::FindPacketLayout(known->packetType) : nullptr;
    if (!layout) return;
    SChannel& channel = m_channels.emplace_back();
    channel.address = m_document.GetFiles()->GetAddress(*key.file, key.channel);
    const CDateTimeSpan origin = Metier_Tarvel::ToSpan(key.file->timeOffset);
    channel.period = {period.start - origin, period.end - origin};
    channel.name = layer->m_name;
    channel.clock.origin = origin;
    // Whatever the axis counts: another program needs no reference to read a date.
    channel.clock.heading = time.utcReference ? "Date [UTC]" : "Date [s]";
    if (time.utcReference) channel.clock.zero = *time.utcReference + origin;
    for (std::uint32_t i = 0; i < layout->fields.size(); ++i)
        if (layout->fields[i].type != Persistance_Xpf::EFieldType::date)
            channel.columns.push_back(MakeColumn(layout->fields[i], i, m_adaptors));
}

std::vector<std::filesystem::path> CTrv1DCsvExport::GetTargets(const std::filesystem::path& path) const {
    if (m_channels.size() == 1) return {path};
    std::vector<std::filesystem::path> targets;
    for (const SChannel& channel : m_channels) {
        const auto name = path.stem().concat(' ' + channel.address.path.filename().string() + ' ' +
                                             ToFileName(channel.name));
        auto target = path.parent_path() / name.string().append(path.extension().string());
        // Files of one name in two folders.
        for (int i = 2; std::ranges::find(targets, target) != targets.end(); ++i)
            target = path.parent_path() /
                     name.string().append(' ' + std::to_string(i) + path.extension().string());
        targets.push_back(std::move(target));
    }
    return targets;
}

void CTrv1DCsvExport::Start(const std::filesystem::path& path, Callback onDone) {
    m_targets = GetTargets(path);
    m_onDone = std::move(onDone);
    StartNext();
}

void CTrv1DCsvExport::StartNext() {
    const SChannel& channel = m_channels[m_next];
    m_query = std::make_shared<CTrvCsvQuery>(
        channel.address, channel.period, channel.clock, channel.columns, m_targets[m_next],
        [this](CTrvCsvQuery& query, EQueryEnd end) { OnDone(query, end); });
    m_queries.Submit(m_query);
}

// The manager drops answers that come after its end, and with it that of the export.
void CTrv1DCsvExport::OnDone(CTrvCsvQuery& query, EQueryEnd end) {
    if (&query != m_query.get()) return;
    if (end == EQueryEnd::failed) m_outcome.end = EEnd::failed;
    if (end == EQueryEnd::cancelled) m_outcome.end = EEnd::cancelled;
    if (end != EQueryEnd::cancelled) m_outcome.files.emplace_back(query.GetTarget(), query.GetRowCount());
    if (end == EQueryEnd::done && ++m_next < m_channels.size()) return StartNext();
    // The callback may destroy the export.
    if (const auto onDone = std::exchange(m_onDone, {})) onDone(SOutcome(m_outcome));
}

void CTrv1DCsvExport::Cancel() {
    if (m_query) m_queries.Cancel(m_query);
}

double CTrv1DCsvExport::GetProgress() const {
    if (m_channels.empty()) return 1;
    return (static_cast<double>(m_next) +
            (m_query && m_next < m_channels.size() ? m_query->GetProgress() : 0)) /
           static_cast<double>(m_channels.size());
}

} // namespace Presentation_Tarvel_Graphics
