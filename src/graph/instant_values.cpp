#include "graph/instant_values.h"

#include "config/config_file.h"
#include "document/edits.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace Presentation_Tarvel_Graphics {

using namespace Application_Tarvel;
using namespace Metier_Tarvel_DataModel;
using namespace Metier_Tarvel_InstantValues;
using Outils_Configuration::Cnf;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

constexpr std::size_t kFirst = 0, kSecond = 1; // moments

std::string ToText(EText text) { return std::string(GetText(text)); }

// The saved row of a field of the dictionary, or null.
const CTrvInstantValue* FindSaved(const Metier_Tarvel::CTrvProject& project, const CTrvFieldDef& field) {
    const auto find = [&](const auto& values) -> const CTrvInstantValue* {
        for (const auto& value : values)
            if (value->dataFile == field.m_layer->m_dataFile &&
                value->channel == field.m_layer->m_channelNumber && value->field == field.m_index)
                return value.get();
        return nullptr;
    };
    const auto& settings = *project.instantValuesSettings;
    return field.IsKindOf(CTrvMeasureDef::Class()) ? find(settings.measures) : find(settings.enums);
}

const CTrvFieldDef* AsField(const Outils_Objets::CObject& object) {
    const bool isField = object.IsKindOf(CTrvMeasureDef::Class()) || object.IsKindOf(CTrvEnumDef::Class());
    return isField ? static_cast<const CTrvFieldDef*>(&object) : nullptr;
}

} // namespace

CTrvInstantValues::CTrvInstantValues(CTrvDocument& document, CViewState& state,
                                     const Outils_Valeurs::CTrvAdaptors& adaptors)
    : m_document(document),
      m_state(state),
      m_adaptors(adaptors),
      m_moments(document, [this] { ValuesChanged(); }),
      m_statistics(document, [this] { ValuesChanged(); }),
      m_subscription(state.Listen([this](EViewChange change) {
          if (change == EViewChange::cursor) FollowCursors();
      })) {
    m_document.AddView(this);
    FollowCursors();
    UpdateRows();
}

CTrvInstantValues::~CTrvInstantValues() { m_document.RemoveView(this); }

void CTrvInstantValues::SetOnChanged(std::function<void()> onRows, std::function<void()> onValues) {
    m_onRows = std::move(onRows);
    m_onValues = std::move(onValues);
}

const SValueRow* CTrvInstantValues::Find(const CTrvInstantValue* saved) const {
    const auto place = std::ranges::find(m_rows, saved, &SValueRow::saved);
    return place == m_rows.end() ? nullptr : &*place;
}

std::string CTrvInstantValues::GetHeading(EValueColumn column) {
    return ToText(EText::columnField + static_cast<int>(column));
}

std::vector<EValueColumn> CTrvInstantValues::GetColumns() const {
    std::vector<EValueColumn> columns{EValueColumn::field, EValueColumn::first};
    const auto append = [&](EValueColumn from, EValueColumn to) {
        for (auto column = from; column <= to;
             column = static_cast<EValueColumn>(static_cast<int>(column) + 1))
            columns.push_back(column);
    };
    if (m_state.GetCursor(ECursor::second)) append(EValueColumn::second, EValueColumn::difference);
    if (m_showStatistics) append(EValueColumn::minimum, EValueColumn::count);
    return columns;
}

std::string CTrvInstantValues::GetTimes() const {
    const auto first = m_state.GetCursor(ECursor::first), second = m_state.GetCursor(ECursor::second);
    const auto scale = GetText(m_timeText.ShowsUtc() ? EText::timeUtc : EText::timeElapsed);
    if (!first) return ToText(EText::whyNoCursor);
    if (!second) return FormatText(EText::cursorTime, {m_timeText.Format(*first), scale});
    std::string difference;
    m_timeText.span.ValueToText(*second - *first, difference);
    return FormatText(EText::cursorTimes,
                      {m_timeText.Format(*first), m_timeText.Format(*second), difference, scale});
}

std::string CTrvInstantValues::GetNotice() const {
    if (!m_document.GetProject()) return ToText(EText::valuesNoProject);
    return m_rows.empty() ? ToText(EText::valuesEmpty) : std::string();
}

// --- Cells

SValueCell CTrvInstantValues::GetCell(const SValueRow& row, EValueColumn column) const {
    switch (column) {
    case EValueColumn::field: return {row.label, {}, false};
    case EValueColumn::first: return GetMoment(row, kFirst);
    case EValueColumn::second: return GetMoment(row, kSecond);
    case EValueColumn::difference: return GetDifference(row);
    default: return GetStatistic(row, column);
    }
}

std::string CTrvInstantValues::WhyNoSample(const SValueRow& row, std::size_t moment) const {
    if (!row.channel.file) return ToText(EText::whyFileGone);
    const SSample& sample = m_moments.Get(row.channel, moment);
    const std::string path = Outils_Fichiers::ToText(row.channel.file->path);
    switch (sample.state) {
    case ESample::noTime: return ToText(moment == kFirst ? EText::whyNoCursor : EText::whyNoSecond);
    case ESample::loading: return ToText(EText::loading);
    case ESample::outside:
        return FormatText(EText::whyOutside,
                          {m_timeText.Format(sample.first), m_timeText.Format(sample.last)});
    case ESample::noFile: return FormatText(EText::whyNoFile, {path});
    case ESample::noChannel:
        return FormatText(EText::whyNoChannel, {std::to_string(row.channel.channel), path});
    case ESample::noPackets: return ToText(EText::whyNoPackets);
    case ESample::damaged: return FormatText(EText::whyDamaged, {path});
    case ESample::found: break;
    }
    return {};
}

bool CTrvInstantValues::GetValue(const SValueRow& row, std::size_t moment, double& value,
                                 std::string& why) const {
    const SSample& sample = m_moments.Get(row.channel, moment);
    if (!row.channel.file || !sample.packet) {
        why = WhyNoSample(row, moment);
        return false;
    }
    if (row.isState) {
        std::uint32_t state = 0;
        if (sample.packet->GetStatusValue(row.field, state)) {
            value = state;
            return true;
        }
        why = ToText(EText::whyNoState);
        return false;
    }
    if (!sample.packet->GetDouble(row.field, value)) {
        why = ToText(EText::whyNoField);
        return false;
    }
    if (std::isfinite(value)) return true;
    why = ToText(EText::whyNoNumber);
    return false;
}

std::string CTrvInstantValues::DescribeSample(const SValueRow& row, std::size_t moment) const {
    const SSample& sample = m_moments.Get(row.channel, moment);
    return FormatText(EText::sampleAtCursorTip,
                      {m_timeText.Format(sample.date), std::to_string(sample.place.number),
                       std::to_string(sample.place.position.Get())});
}

std::string CTrvInstantValues::FormatState(const SValueRow& row, double value) const {
    const auto state = static_cast<std::size_t>(value);
    return state < row.states.size() ? row.states[state]
                                     : FormatText(EText::stateNumber, {std::to_string(state)});
}

SValueCell CTrvInstantValues::GetMoment(const SValueRow& row, std::size_t moment) const {
    SValueCell cell;
    double value = 0;
    cell.isOld = m_moments.Get(row.channel, moment).state == ESample::loading;
    if (!GetValue(row, moment, value, cell.why)) return cell;
    cell.text = row.isState ? FormatState(row, value) : row.text.Format(value);
    cell.why = DescribeSample(row, moment);
    return cell;
}

SValueCell CTrvInstantValues::GetDifference(const SValueRow& row) const {
    SValueCell cell;
    double first = 0, second = 0;
    if (row.isState) {
        cell.why = ToText(EText::whyNoDifference);
    } else if (GetValue(row, kFirst, first, cell.why) && GetValue(row, kSecond, second, cell.why)) {
        cell.text = row.text.FormatSpan(Subtract(row.text.GetNature(), second, first));
        cell.isOld = m_moments.Get(row.channel, kFirst).state == ESample::loading ||
                     m_moments.Get(row.channel, kSecond).state == ESample::loading;
    }
    return cell;
}

SValueCell CTrvInstantValues::GetStatistic(const SValueRow& row, EValueColumn column) const {
    using EState = CTrvIntervalStatistics::EState;
    SValueCell cell;
    const EState state = m_statistics.GetState(row.channel);
    cell.isOld = state == EState::running || state == EState::stopped;
    if (row.isState) return {{}, ToText(EText::whyNoStatistics), false};
    if (!row.channel.file) return {{}, ToText(EText::whyFileGone), false};
    if (!m_state.GetInterval()) return {{}, ToText(EText::whyNoInterval), false};
    if (state == EState::failed) {
        cell.why = WhyNoSample(row, kFirst);
        if (cell.why.empty()) cell.why = ToText(EText::whyNoSamples);
        return cell;
    }
    const SFieldStatistics* statistics = m_statistics.Get(row.channel, row.place);
    if (!statistics) {
        cell.why = ToText(state == EState::stopped ? EText::whyStopped : EText::loading);
        return cell;
    }
    if (state == EState::stopped) cell.why = ToText(EText::statisticsStopped);
    if (state == EState::cut) cell.why = ToText(EText::statisticsCut);
    if (state == EState::complete && statistics->ignored)
        cell.why = FormatText(EText::statisticsIgnored, {std::to_string(statistics->ignored)});
    if (column == EValueColumn::count) {
        cell.text = std::to_string(statistics->count);
        return cell;
    }
    const bool isSpan = column == EValueColumn::deviation;
    const double values[] = {statistics->minimum, statistics->maximum, statistics->mean,
                             statistics->deviation, statistics->rms};
    const double value = values[static_cast<int>(column) - static_cast<int>(EValueColumn::minimum)];
    if (std::isfinite(value))
        cell.text = isSpan ? row.text.FormatSpan(value) : row.text.Format(value);
    else
        cell.why = ToText(isSpan && statistics->count == 1 ? EText::whyOneSample : EText::whyNoSamples);
    return cell;
}

// --- Statistics

void CTrvInstantValues::ShowStatistics(bool show) {
    m_showStatistics = show;
    AskStatistics(false);
    ValuesChanged();
}

void CTrvInstantValues::Poll() {
    m_statistics.Poll();
    ValuesChanged();
}

void CTrvInstantValues::StopStatistics() {
    m_statistics.Stop();
    ValuesChanged();
}

void CTrvInstantValues::AskStatistics(bool again) {
    CTrvIntervalStatistics::Fields fields;
    if (m_showStatistics)
        for (SValueRow& row : m_rows) {
            if (row.isState || !row.channel.file) continue;
            auto& list = fields[row.channel];
            row.place = list.size();
            list.push_back({row.field, GetTurn(row.text.GetNature())});
        }
    m_statistics.Ask(fields, m_state.GetInterval(), again);
}

// --- Edits

bool CTrvInstantValues::CanAdd(const Outils_Objets::CObject& object) const {
    const auto* project = m_document.GetProject();
    const CTrvFieldDef* field = AsField(object);
    return project && field && field->m_layer && !FindSaved(*project, *field);
}

bool CTrvInstantValues::Add(const Outils_Objets::CObject& object) {
    if (!CanAdd(object)) return false;
    auto edits = m_document.GetEdits();
    if (object.IsKindOf(CTrvMeasureDef::Class()))
        return edits.Do(Edits::kAddInstantValuesMeasure, static_cast<const CTrvMeasureDef&>(object));
    return edits.Do(Edits::kAddInstantValuesEnum, static_cast<const CTrvEnumDef&>(object));
}

bool CTrvInstantValues::Remove(const CTrvInstantValue& saved) {
    if (!Find(&saved)) return false;
    auto edits = m_document.GetEdits();
    if (saved.IsKindOf(CTrvInstantValuesMeasure::Class()))
        return edits.Do(Edits::kRemoveInstantValuesMeasure,
                        static_cast<const CTrvInstantValuesMeasure&>(saved));
    return edits.Do(Edits::kRemoveInstantValuesEnum, static_cast<const CTrvInstantValuesEnum&>(saved));
}

bool CTrvInstantValues::Move(const CTrvInstantValue& saved, std::size_t place) {
    const SValueRow* row = Find(&saved);
    if (!row) return false;
    const auto& settings = *m_document.GetProject()->instantValuesSettings;
    const std::size_t begin = row->isState ? settings.measures.size() : 0;
    const std::size_t count = row->isState ? settings.enums.size() : settings.measures.size();
    const std::size_t wanted = std::clamp(place, begin, begin + count - 1);
    if (wanted == static_cast<std::size_t>(row - m_rows.data())) return false;
    return m_document.GetEdits().Do(Edits::kMoveInstantValue, saved, wanted - begin);
}

std::string CTrvInstantValues::CopyText(std::span<const CTrvInstantValue* const> rows) const {
    const auto columns = GetColumns();
    std::string text = GetTimes() + '\n';
    const auto append = [&](const auto& textOf) {
        for (const EValueColumn column : columns) {
            if (column != columns.front()) text += '\t';
            text += textOf(column);
        }
        text += '\n';
    };
    append(GetHeading);
    for (const CTrvInstantValue* saved : rows)
        if (const SValueRow* row = Find(saved))
            append([&](EValueColumn column) { return GetCell(*row, column).text; });
    return text;
}

// --- Following

void CTrvInstantValues::OnUpdate(EHint hint, const Outils_Objets::CObject* object) {
    switch (hint) {
    case hintDataFileRemoved: UpdateRows(object); break; // it exists until all views know
    case hintRefresh:
    case hintDataFileAdded:
    case hintDataFileTimeOffsetChanged:
    case hintSensorTimeOffsetChanged:
    case hintSimulationParametersChanged: // the reference of UTC
    case hintOutputFileNameChanged:
    case hintDataLayersRebuilt:
    case hintInstantMeasureAdded:
    case hintInstantEnumAdded:
    case hintInstantMeasureRemoved:
    case hintInstantEnumRemoved: UpdateRows(); break;
    case hintChannelFound:
    case hintDataFileContentChanged:
        m_moments.Refresh(object);
        AskStatistics(true);
        ValuesChanged();
        break;
    case hintRunStarted:
    case hintRunEnded:
        if (const auto* project = m_document.GetProject())
            m_moments.Refresh(project->simulationParameters->outputFile.get());
        AskStatistics(true);
        ValuesChanged();
        break;
    default: break;
    }
}

template <class Values>
void CTrvInstantValues::AppendRows(const Values& values, bool areStates,
                                   const Outils_Objets::CObject* leaving) {
    const auto& project = *m_document.GetProject();
    const auto& settings = m_document.GetConfiguration();
    for (const auto& value : values) {
        if (value->dataFile && value->dataFile == leaving) continue;
        SValueRow row;
        row.saved = value.get();
        row.channel = {value->dataFile, value->channel};
        row.field = value->field;
        row.isState = areStates;
        row.label = value->label;
        row.colour = GetFileColour(project, value->dataFile, settings);
        row.text = CFieldText(m_adaptors, 0);
        const auto* layer = project.dataModel->FindLayer(value->dataFile, value->channel);
        const CTrvFieldDef* field = nullptr;
        if (layer && !areStates) {
            const CTrvMeasureDef* measure = CTrvDataModel::FindMeasure(*layer, value->field);
            if (measure) row.text = CFieldText(m_adaptors, measure->m_nature);
            field = measure;
        } else if (layer) {
            const CTrvEnumDef* enumeration = CTrvDataModel::FindEnum(*layer, value->field);
            if (enumeration)
                for (const auto& literal : enumeration->m_literals) row.states.push_back(literal->m_name);
            field = enumeration;
        }
        // A field that is unknown now keeps the label that it was given.
        if (field)
            row.label = MakeChannelLabel(layer->m_name, settings.Get(Cnf<"viewValue/translateChannelLabel">),
                                         settings.Get(Cnf<"viewValue/displayChannelLabel">)) +
                        " - " + field->m_name + MakeFileSuffix(project, value->dataFile);
        m_rows.push_back(std::move(row));
    }
}

void CTrvInstantValues::UpdateRows(const Outils_Objets::CObject* leaving) {
    m_rows.clear();
    m_timeText = MakeTimeText(m_document, m_adaptors);
    if (const auto* project = m_document.GetProject()) {
        AppendRows(project->instantValuesSettings->measures, false, leaving);
        AppendRows(project->instantValuesSettings->enums, true, leaving);
    }
    std::set<SChannelKey> channels;
    for (const SValueRow& row : m_rows)
        if (row.channel.file) channels.insert(row.channel);
    m_moments.Follow(channels);
    AskStatistics(false);
    if (m_onRows) m_onRows();
    ValuesChanged();
}

void CTrvInstantValues::FollowCursors() {
    m_moments.SetTime(kFirst, m_state.GetCursor(ECursor::first));
    m_moments.SetTime(kSecond, m_state.GetCursor(ECursor::second));
    AskStatistics(false);
    ValuesChanged();
}

void CTrvInstantValues::ValuesChanged() {
    if (m_onValues) m_onValues();
}

} // namespace Presentation_Tarvel_Graphics
