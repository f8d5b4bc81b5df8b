#include "dialogs/settings_dialog.h"

#include "config/config_file.h"
#include "document/scripted_host.h"
#include "foundation/texts.h"
#include "values/adaptors.h"

#include <gmock/gmock.h>

using namespace Dialogue_Tarvel;
using namespace Outils_Configuration;
using namespace Presentation_Tarvel_Grid;
using Outils_Texte::EText;
using Outils_Texte::GetText;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class SettingsDialog : public testing::Test {
  protected:
    SettingsDialog() { m_adaptors.Configure(m_configuration); }
    void Open(bool expert = false) {
        m_dialog = std::make_unique<CTrvSettingsDlg>(m_host, m_configuration, m_adaptors, expert);
    }
    // The row of this title in the section; the sections of values are one level lower.
    CHGItem& Row(EText section, EText title) {
        CHGItem* found = Find(m_dialog->GetGrid().GetRoot(), section);
        found = found ? Find(*found, title) : nullptr;
        if (!found) throw std::runtime_error("no such row");
        return *found;
    }
    static CHGItem* Find(const CHGItem& parent, EText title) {
        for (std::size_t i = 0; CHGItem* child = parent.GetChild(i); ++i) {
            if (child->GetTitle() == GetText(title)) return child;
            if (CHGItem* found = Find(*child, title)) return found;
        }
        return nullptr;
    }
    std::string Arm(double value) {
        std::string text;
        m_adaptors.Get(Outils_Valeurs::EQuantity::leverArm).ValueToText(value, text);
        return text;
    }

    test::CScriptedHost m_host;
    CTrvCnfConfigFile m_configuration;
    Outils_Valeurs::CTrvAdaptors m_adaptors;
    std::unique_ptr<CTrvSettingsDlg> m_dialog;
};

} // namespace

TEST_F(SettingsDialog, WritesOnlyAtOK) {
    Open();
    EXPECT_EQ(Row(EText::leverArmTitle, EText::settingUnitTitle).Write("foot (ft)"), "");
    EXPECT_EQ(Row(EText::valueDisplay, EText::decimalSeparator).Write(","), "");
    EXPECT_EQ(Row(EText::leverArmTitle, EText::settingPrecisionTitle).Write("1"), "");
    EXPECT_EQ(Row(EText::settingsGeneral, EText::appearance).Choose(2), "");
    EXPECT_EQ(Arm(1.0), "1.000 m");
    EXPECT_EQ(m_configuration.Get(Cnf<"adaptors/leverArm/unit">), "m");
    m_dialog->OnOK();
    EXPECT_EQ(Arm(1.0), "3,3 ft");
    EXPECT_EQ(m_configuration.Get(Cnf<"adaptors/leverArm/unit">), "ft");
    EXPECT_EQ(m_configuration.Get(Cnf<"general/appearance">), EAppearance::black);
    EXPECT_THAT(m_host.TakeMessages(), IsEmpty()); // a new appearance waits for nothing
    Open();                                        // and shows what was written
    EXPECT_EQ(Row(EText::leverArmTitle, EText::settingUnitTitle).GetValue(), "foot (ft)");
    EXPECT_EQ(Row(EText::settingsGeneral, EText::appearance).GetValue(), "Black");
}

TEST_F(SettingsDialog, KeepsEverySettingThatNobodyChanged) {
    m_configuration.Set(Cnf<"adaptors/geographicPosition/notation">, EAngleNotation::nmea);
    m_configuration.Set(Cnf<"adaptors/dateTime/hourSeparator">, u'h');
    std::vector<std::string> before;
    for (std::size_t row = 0; row < std::size(kSchema); ++row)
        before.push_back(m_configuration.GetValue(SKey{row}).GetString());
    Open(true);
    m_dialog->OnOK();
    for (std::size_t row = 0; row < std::size(kSchema); ++row) {
        if (kSchema[row].kind == EKind::color) continue; // its digits may be of another case
        EXPECT_EQ(m_configuration.GetValue(SKey{row}).GetString(), before[row]) << kSchema[row].key;
    }
    EXPECT_THAT(m_host.TakeMessages(), IsEmpty());
}

TEST_F(SettingsDialog, RefusesWhatIsNoSetting) {
    Open(true);
    const struct {
        EText section, title;
        const char* text;
        EText refusal;
    } rows[] = {
        {EText::valueDisplay, EText::decimalSeparator, "..", EText::separatorLength},
        {EText::valueDisplay, EText::decimalSeparator, "", EText::separatorLength},
        {EText::dateTimeTitle, EText::hourSeparator, "\xF0\x9D\x84\x9E", EText::separatorLength},
        {EText::rateTitle, EText::settingPrecisionTitle, "-1", EText::precisionNegative},
        {EText::rateTitle, EText::settingPrecisionTitle, "2.5", EText::precisionNegative},
        {EText::rateTitle, EText::settingPrecisionTitle, "", EText::precisionNegative},
        {EText::rateTitle, EText::settingPrecisionTitle, "99999999999", EText::precisionNegative},
        {EText::altitudeTitle, EText::settingUnitTitle, "fathom", EText::invalidValue},
        {EText::settingsGeneral, EText::chronogramColor, "red", EText::invalidValue},
        {EText::processTitle, EText::morvexTitle, "", EText::enterValue},
    };
    for (const auto& row : rows) {
        CHGItem& item = Row(row.section, row.title);
        const std::string before = item.GetValue();
        EXPECT_EQ(item.Write(row.text), GetText(row.refusal)) << row.text;
        EXPECT_EQ(item.GetValue(), before) << row.text;
    }
}

TEST_F(SettingsDialog, SaysWhatWaitsForTheNextStart) {
    const std::string restart(GetText(EText::restartNeeded));
    Open();
    EXPECT_EQ(Find(m_dialog->GetGrid().GetRoot(), EText::processTitle), nullptr); // for experts
    Row(EText::settingsGeneral, EText::expertMode).Choose(1);
    m_dialog->OnOK();
    EXPECT_THAT(m_host.TakeMessages(), ElementsAre(restart));
    EXPECT_TRUE(m_configuration.Get(Cnf<"general/expertMode">));
    const auto color = m_configuration.Get(Cnf<"view1D/chronogram/color">).argb;
    for (const auto& [xored, messages] : {std::pair(0xFF000000u, 0), std::pair(0x00000100u, 1)}) {
        Open();
        char text[16];
        std::snprintf(text, sizeof text, "#%08X", color ^ xored);
        EXPECT_EQ(Row(EText::settingsGeneral, EText::chronogramColor).Write(text), "");
        m_dialog->OnOK();
        EXPECT_EQ(m_host.TakeMessages().size(), static_cast<std::size_t>(messages)) << text;
    }
}
