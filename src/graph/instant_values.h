// The list of instant values: fields of the project with their samples at the cursors and their statistics
// between them, as text. Follows the document and the shared view state; knows no widget. UI thread.
#pragma once

#include "graph/channel_moments.h"
#include "graph/field_text.h"
#include "graph/interval_statistics.h"
#include "graph/view_state.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace Presentation_Tarvel_Graphics {

using Metier_Tarvel_InstantValues::CTrvInstantValue;

enum class EValueColumn {
    field,
    first,
    second,
    difference,
    minimum,
    maximum,
    mean,
    deviation,
    rms,
    count,
    end
};

struct SValueRow {
    const CTrvInstantValue* saved = nullptr; // of the project
    SChannelKey channel;                     // without a file when that is gone
    std::uint32_t field = 0;
    bool isState = false; // an enumeration, whose values are `states`
    std::string label;
    Outils_Plot2D::Colour colour = 0;
    CFieldText text;
    std::vector<std::string> states;

    // Statistics of the interval are of this place in the list of the channel's fields.
    std::size_t place = 0;
};

struct SValueCell {
    std::string text;   // empty when there is no value, then
    std::string why;    // says the reason; beside a value it says what else is to know
    bool isOld = false; // a value of the former moment, or statistics that still run
};

class CTrvInstantValues final : public Application_Tarvel::IDocumentView {
  public:
    // Registers with the document. All three must outlive the object.
    CTrvInstantValues(CTrvDocument& document, CViewState& state,
                      const Outils_Valeurs::CTrvAdaptors& adaptors);
    ~CTrvInstantValues() override;

    // `onRows` runs after rows came, went or moved, `onValues` after any text has changed.
    void SetOnChanged(std::function<void()> onRows, std::function<void()> onValues);

    // Measures in their order, and after them the states.
    const std::vector<SValueRow>& GetRows() const { return m_rows; }
    // Null for a row that is not there any more; `saved` is only compared.
    const SValueRow* Find(const CTrvInstantValue* saved) const;
    SValueCell GetCell(const SValueRow& row, EValueColumn column) const;
    static std::string GetHeading(EValueColumn column);
    // Those of the second cursor only with one, statistics only on request.
    std::vector<EValueColumn> GetColumns() const;
    // "Cursor 12:00:01.000 (Elapsed time)"; why there is none without a cursor.
    std::string GetTimes() const;
    // What a list without rows says; empty for one with rows.
    std::string GetNotice() const;

    void ShowStatistics(bool show);
    bool AreStatisticsShown() const { return m_showStatistics; }
    // 0 to 1 while statistics are counted. Poll brings the results so far.
    std::optional<double> GetProgress() const { return m_statistics.GetProgress(); }
    void Poll();
    void StopStatistics();
    // Answers are under way.
    bool IsLoading() const { return m_moments.IsLoading() || GetProgress(); }

    // A measure or an enumeration of the dictionary that the list does not hold yet.
    bool CanAdd(const Outils_Objets::CObject& field) const;
    bool Add(const Outils_Objets::CObject& field);
    bool Remove(const CTrvInstantValue& saved);
    // Moves a row to this place of the list, or the nearest among the rows of its kind.
    bool Move(const CTrvInstantValue& saved, std::size_t place);

    // Tab separated, the times first, then headings and rows; values with their units.
    std::string CopyText(std::span<const CTrvInstantValue* const> rows) const;
    // Takes texts, units and colours from the settings again.
    void Reformat() { UpdateRows(); }

    void OnUpdate(Application_Tarvel::EHint hint, const Outils_Objets::CObject* object) override;

  private:
    // Without the rows of a file that is about to go.
    void UpdateRows(const Outils_Objets::CObject* leaving = nullptr);
    template <class Values>
    void AppendRows(const Values& values, bool areStates, const Outils_Objets::CObject* leaving);
    void FollowCursors();
    void AskStatistics(bool again);
    void ValuesChanged();
    // The value of a row at a moment; false with the reason in `why`.
    bool GetValue(const SValueRow& row, std::size_t moment, double& value, std::string& why) const;
    std::string WhyNoSample(const SValueRow& row, std::size_t moment) const;
    std::string DescribeSample(const SValueRow& row, std::size_t moment) const;
    std::string FormatState(const SValueRow& row, double value) const;
    SValueCell GetMoment(const SValueRow& row, std::size_t moment) const;
    SValueCell GetDifference(const SValueRow& row) const;
    SValueCell GetStatistic(const SValueRow& row, EValueColumn column) const;

    CTrvDocument& m_document;
    CViewState& m_state;
    const Outils_Valeurs::CTrvAdaptors& m_adaptors;
    std::function<void()> m_onRows, m_onValues;
    std::vector<SValueRow> m_rows;
    SSimulationTimeText m_timeText;
    bool m_showStatistics = false;
    CTrvChannelMoments m_moments;
    CTrvIntervalStatistics m_statistics;
    CViewState::CSubscription m_subscription;
};

} // namespace Presentation_Tarvel_Graphics
