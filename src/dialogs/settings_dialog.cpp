#include "dialogs/settings_dialog.h"

#include "config/config_file.h"
#include "dialogs/color_text.h"
#include "foundation/numbers.h"
#include "foundation/text.h"
#include "foundation/texts.h"
#include "values/adaptors.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace Dialogue_Tarvel {

using namespace Application_Tarvel;
using namespace Outils_Configuration;
using namespace Presentation_Tarvel_Grid;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;
using Outils_Valeurs::EQuantity;

namespace Settings {

enum class ESetting { section, words, flag, unit, character, precision, color, program };

struct SSettingRow {
    int depth; // of a section the number of sections above it
    ESetting kind;
    EText title;
    SKey key{};
    EText firstWord = EText::none; // of `words` and `flag`: the others have the numbers after it
    EQuantity quantity = EQuantity::count;
};

// The words that a row offers, and those under which the file keeps them.
struct SChoices {
    std::vector<std::string> shown, kept;
};

} // namespace Settings

using namespace Settings;

namespace {

constexpr SSettingRow Section(int depth, EText title) { return {depth, ESetting::section, title}; }
constexpr SSettingRow Words(int depth, EText title, SKey key, EText firstWord) {
    return {depth, ESetting::words, title, key, firstWord};
}
constexpr SSettingRow Precision(SKey key) {
    return {2, ESetting::precision, EText::settingPrecisionTitle, key};
}
constexpr SSettingRow Unit(SKey key, EQuantity quantity) {
    return {2, ESetting::unit, EText::settingUnitTitle, key, EText::none, quantity};
}
constexpr SSettingRow Character(int depth, EText title, SKey key) {
    return {depth, ESetting::character, title, key};
}
constexpr SSettingRow Program(EText title, SKey key) { return {1, ESetting::program, title, key}; }

constexpr auto kExpertMode = Cnf<"general/expertMode">;
constexpr auto kChronogramColor = Cnf<"view1D/chronogram/color">;

constexpr SSettingRow kRows[] = {
    Section(0, EText::settingsGeneral),
    Words(1, EText::startMode, Cnf<"general/startMode">, EText::startOpenLast),
    Words(1, EText::appearance, Cnf<"general/appearance">, EText::appearanceStandard),
    {1, ESetting::flag, EText::expertMode, kExpertMode, EText::modeStandard},
    Words(1, EText::defaultGpsAltitude, Cnf<"general/gpsAltitudeMode">, EText::altitudeGeoid),
    {1, ESetting::color, EText::chronogramColor, kChronogramColor},
    {1, ESetting::flag, EText::indexTitle, Cnf<"general/index/enabled">, EText::indexOff},

    Section(0, EText::valueDisplay),
    Character(1, EText::decimalSeparator, Cnf<"adaptors/decimalSeparator">),
    Section(1, EText::dateTimeTitle),
    Words(2, EText::settingNotationTitle, Cnf<"adaptors/dateTime/dateNotation">, EText::dateDayMonthYear),
    Precision(Cnf<"adaptors/dateTime/precision">),
    Character(2, EText::dateSeparator, Cnf<"adaptors/dateTime/dateSeparator">),
    Character(2, EText::hourSeparator, Cnf<"adaptors/dateTime/hourSeparator">),
    Section(1, EText::elapsedTimeTitle),
    Words(2, EText::settingNotationTitle, Cnf<"adaptors/dateTimeSpan/spanNotation">, EText::spanDays),
    Precision(Cnf<"adaptors/dateTimeSpan/precision">),
    Unit(Cnf<"adaptors/dateTimeSpan/unit">, EQuantity::count),
    Section(1, EText::simulationTimeTitle),
    Words(2, EText::settingModeTitle, Cnf<"adaptors/simulationTime/mode">, EText::timeElapsed),
    Section(1, EText::rateTitle),
    Precision(Cnf<"adaptors/rate/precision">),
    Unit(Cnf<"adaptors/rate/unit">, EQuantity::rate),
    Section(1, EText::geographicPositionTitle),
    Words(2, EText::settingNotationTitle, Cnf<"adaptors/geographicPosition/notation">, EText::angleDegrees),
    Precision(Cnf<"adaptors/geographicPosition/precision">),
    {2, ESetting::flag, EText::quadrant, Cnf<"adaptors/geographicPosition/useMathematicalSign">,
     EText::quadrantLetter},
    Character(2, EText::degreesSeparator, Cnf<"adaptors/geographicPosition/degreesSeparator">),
    Character(2, EText::minutesSeparator, Cnf<"adaptors/geographicPosition/minutesSeparator">),
    Section(1, EText::altitudeTitle),
    Precision(Cnf<"adaptors/altitude/precision">),
    Unit(Cnf<"adaptors/altitude/unit">, EQuantity::altitude),
    Section(1, EText::misalignmentTitle),
    Precision(Cnf<"adaptors/misalignment/precision">),
    Unit(Cnf<"adaptors/misalignment/unit">, EQuantity::misalignment),
    Section(1, EText::leverArmTitle),
    Precision(Cnf<"adaptors/leverArm/precision">),
    Unit(Cnf<"adaptors/leverArm/unit">, EQuantity::leverArm),
    Section(1, EText::scaleFactorTitle),
    Precision(Cnf<"adaptors/scaleFactor/precision">),
    Unit(Cnf<"adaptors/scaleFactor/unit">, EQuantity::scaleFactor),
    Section(1, EText::currentSpeedTitle),
    Precision(Cnf<"adaptors/currentSpeed/precision">),
    Unit(Cnf<"adaptors/currentSpeed/unit">, EQuantity::currentSpeed),
    Section(1, EText::currentTimeTitle),
    Precision(Cnf<"adaptors/currentTime/precision">),
    Unit(Cnf<"adaptors/currentTime/unit">, EQuantity::currentTime),
    Section(1, EText::distanceTitle),
    Precision(Cnf<"adaptors/distance/precision">),
    Unit(Cnf<"adaptors/distance/unit">, EQuantity::distance),
    Section(1, EText::crossvarianceTitle),
    Precision(Cnf<"adaptors/crossvariance/precision">),
    Unit(Cnf<"adaptors/crossvariance/unit">, EQuantity::crossvariance),
    Section(1, EText::linearSpeedTitle),
    Precision(Cnf<"adaptors/linearSpeed/precision">),
    Unit(Cnf<"adaptors/linearSpeed/unit">, EQuantity::linearSpeed),
    Section(1, EText::attitudeTitle),
    Precision(Cnf<"adaptors/attitude/precision">),
    Unit(Cnf<"adaptors/attitude/unit">, EQuantity::attitude),
    Section(1, EText::angularSpeedTitle),
    Precision(Cnf<"adaptors/angularSpeed/precision">),
    Unit(Cnf<"adaptors/angularSpeed/unit">, EQuantity::angularSpeed),
    Section(1, EText::linearAccelerationTitle),
    Precision(Cnf<"adaptors/linearAcceleration/precision">),
    Unit(Cnf<"adaptors/linearAcceleration/unit">, EQuantity::linearAcceleration),
};

// For experts only.
constexpr SSettingRow kProgramRows[] = {
    Section(0, EText::processTitle),
    Program(EText::tarin2TxtTitle, Cnf<"process/tarin2Txt">),
    Program(EText::tarin2KmlTitle, Cnf<"process/tarin2Kml">),
    Program(EText::tarin2GeoTitle, Cnf<"process/tarin2Geo">),
    Program(EText::tarout2TxtTitle, Cnf<"process/tarout2Txt">),
    Program(EText::tarout2KmlTitle, Cnf<"process/tarout2Kml">),
    Program(EText::tarout2GeoTitle, Cnf<"process/tarout2Geo">),
    Program(EText::tarout2SbetTitle, Cnf<"process/tarout2Sbet">),
    Program(EText::udtExporterTitle, Cnf<"process/udtExporter">),
    Program(EText::morvexTitle, Cnf<"process/morvex">),
    Program(EText::fileUpdaterTitle, Cnf<"process/fileUpdater">),
    Program(EText::synchro2TarinTitle, Cnf<"process/synchro2Tarin">),
    Program(EText::range2TarinTitle, Cnf<"process/range2Tarin">),
    Program(EText::usbl2TarinTitle, Cnf<"process/usbl2Tarin">),
    Program(EText::platform2TarinTitle, Cnf<"process/platform2Tarin">),
};

const SPathQuestion kProgramQuestion{EPathKind::open, EText::processTitle, EText::programFilter, "exe"};
constexpr std::uint32_t kRgb = 0xFFFFFF; // a colour without its alpha

ERowKind KindOf(ESetting setting) {
    switch (setting) {
    case ESetting::section: return ERowKind::section;
    case ESetting::words:
    case ESetting::flag:
    case ESetting::unit: return ERowKind::list;
    case ESetting::color: return ERowKind::color;
    case ESetting::program: return ERowKind::file;
    default: return ERowKind::edit;
    }
}

SChoices GetChoicesOf(const SSettingRow& row, const Outils_Valeurs::CTrvAdaptors& adaptors) {
    SChoices choices;
    if (row.kind == ESetting::unit) {
        const auto& adaptor =
            row.quantity == EQuantity::count
                ? static_cast<const Outils_Valeurs::CPhysicalValueAdaptor&>(adaptors.GetDateTimeSpan().total)
                : adaptors.Get(row.quantity);
        for (const auto& [symbol, unit] : adaptor.GetUnits()) {
            choices.shown.push_back(unit.name + " (" + symbol + ')');
            choices.kept.push_back(symbol);
        }
        return choices;
    }
    if (row.kind == ESetting::flag) choices.kept = {"false", "true"};
    for (const std::string_view word : WordsOf(kSchema[row.key.row].kind)) choices.kept.emplace_back(word);
    for (std::size_t i = 0; i < choices.kept.size(); ++i)
        choices.shown.emplace_back(GetText(row.firstWord + static_cast<int>(i)));
    return choices;
}

} // namespace

class CSettingItem final : public CHGItem {
  public:
    CSettingItem(const SSettingRow& row, const CXmlConfigValue& value,
                 const Outils_Valeurs::CTrvAdaptors& adaptors, const SNumberRange& range)
        : CHGItem(KindOf(row.kind)), m_row(row), m_range(range) {
        if (row.kind == ESetting::section) return;
        m_choices = GetChoicesOf(row, adaptors);
        switch (row.kind) {
        case ESetting::color: m_text = FormatColor(value.GetColor()); break;
        case ESetting::character:
            m_text = Outils_Texte::Utf16ToUtf8(std::u16string(1, value.GetChar()));
            break;
        case ESetting::precision: m_text = std::to_string(m_range.Clamp(value.GetInt())); break;
        case ESetting::flag: m_text = value.GetBool() ? "true" : "false"; break;
        case ESetting::words:
            m_text =
                m_choices
                    .kept[static_cast<std::size_t>(static_cast<const CXmlConfigEnumeration&>(value).Get())];
            break;
        default: m_text = value.GetString();
        }
    }

    std::string GetTitle() const override { return std::string(GetText(m_row.title)); }
    std::string GetValue() const override {
        const int choice = GetChoice();
        return choice < 0 ? m_text : m_choices.shown[static_cast<std::size_t>(choice)];
    }
    std::string GetHelp() const override {
        if (m_row.kind == ESetting::section) return {};
        const auto& key = kSchema[m_row.key.row];
        std::string help(GetText(key.help));
        if (m_row.kind == ESetting::precision)
            help +=
                '\n' + FormatText(EText::helpRange, {"0", Outils_Texte::FormatShortest(m_range.greatest)});
        const auto kept = std::ranges::find(m_choices.kept, key.defaultText);
        const auto place = static_cast<std::size_t>(kept - m_choices.kept.begin());
        const std::string value(kept == m_choices.kept.end() ? key.defaultText : m_choices.shown[place]);
        if (!value.empty()) help += '\n' + FormatText(EText::helpDefault, {value});
        return help;
    }
    bool IsEditable() const override { return m_row.kind != ESetting::section; }
    std::span<const std::string> GetChoices() const override { return m_choices.shown; }
    int GetChoice() const override {
        const auto found = std::ranges::find(m_choices.kept, m_text);
        return found == m_choices.kept.end() ? -1 : static_cast<int>(found - m_choices.kept.begin());
    }
    const SPathQuestion* GetPathQuestion() const override {
        return m_row.kind == ESetting::program ? &kProgramQuestion : nullptr;
    }

    std::string Write(std::string_view text) override {
        switch (m_row.kind) {
        case ESetting::character:
            if (Outils_Texte::Utf8ToUtf16(text).size() != 1)
                return std::string(GetText(EText::separatorLength));
            break;
        case ESetting::precision: {
            int precision = -1;
            const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), precision);
            if (error != std::errc() || end != text.data() + text.size() || precision < 0 ||
                precision > m_range.greatest)
                return std::string(GetText(EText::precisionNegative));
            break;
        }
        case ESetting::color:
            if (!ParseColor(text)) return std::string(GetText(EText::invalidValue));
            m_text = FormatColor(*ParseColor(text));
            return {};
        case ESetting::program:
            if (text.empty()) return std::string(GetText(EText::enterValue));
            break;
        default: { // a word of the list
            const auto found = std::ranges::find(m_choices.shown, text);
            if (found == m_choices.shown.end()) return std::string(GetText(EText::invalidValue));
            m_text = m_choices.kept[static_cast<std::size_t>(found - m_choices.shown.begin())];
            return {};
        }
        }
        m_text = text;
        return {};
    }

    const SSettingRow& GetRow() const { return m_row; }
    const std::string& GetKeptText() const { return m_text; }
    std::uint32_t GetColor() const { return ParseColor(m_text).value_or(0); }

    void Store(CTrvCnfConfigFile& configuration) const {
        CXmlConfigValue& value = configuration.GetValue(m_row.key);
        switch (m_row.kind) {
        case ESetting::section: break;
        case ESetting::color: value.SetColor(GetColor()); break;
        case ESetting::character: value.SetChar(Outils_Texte::Utf8ToUtf16(m_text).front()); break;
        case ESetting::flag: value.SetBool(m_text == "true"); break;
        default: value.SetString(m_text);
        }
    }

  private:
    const SSettingRow& m_row;
    const SNumberRange m_range;
    SChoices m_choices;
    std::string m_text; // as the file keeps it; of a colour "#AARRGGBB"
};

CTrvSettingsDlg::CTrvSettingsDlg(IQuestions& questions, CTrvCnfConfigFile& configuration,
                                 Outils_Valeurs::CTrvAdaptors& adaptors, bool expertMode)
    : m_questions(questions), m_configuration(configuration), m_adaptors(adaptors) {
    CHGItem* sections[3] = {&m_grid.GetRoot()};
    const auto add = [&](std::span<const SSettingRow> rows) {
        for (const SSettingRow& row : rows) {
            auto made = std::make_unique<CSettingItem>(row, m_configuration.GetValue(row.key), m_adaptors,
                                                       kSchema[row.key.row].range);
            CSettingItem& item = *made;
            CHGItem& parent = *sections[row.depth];
            m_grid.Insert(parent, parent.GetChildCount(), std::move(made));
            if (row.kind == ESetting::section)
                sections[row.depth + 1] = &item;
            else
                m_items.push_back(&item);
        }
    };
    add(kRows);
    if (expertMode) add(kProgramRows);
}

CTrvSettingsDlg::~CTrvSettingsDlg() = default;

bool CTrvSettingsDlg::NeedsRestart() const {
    const auto find = [this](SKey key) -> const CSettingItem& {
        return **std::ranges::find_if(
            m_items, [key](const CSettingItem* item) { return item->GetRow().key.row == key.row; });
    };
    const bool expert = find(kExpertMode).GetKeptText() == "true";
    const std::uint32_t color = find(kChronogramColor).GetColor();
    return expert != m_configuration.Get(kExpertMode) ||
           (color & kRgb) != (m_configuration.Get(kChronogramColor).argb & kRgb);
}

void CTrvSettingsDlg::OnOK() {
    if (NeedsRestart())
        m_questions.ShowMessage(std::string(GetText(EText::restartNeeded)), EButtons::ok, EIcon::information);
    for (const CSettingItem* item : m_items) item->Store(m_configuration);
    m_adaptors.Configure(m_configuration);
}

} // namespace Dialogue_Tarvel
