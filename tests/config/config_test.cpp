#include "config/config_file.h"

#include "foundation/files.h"

#include <gtest/gtest.h>

#include <set>

using namespace Outils_Configuration;
namespace fs = std::filesystem;

namespace {

std::string ReadText(const fs::path& path) {
    const auto bytes = Outils_Fichiers::ReadWholeFile(path, 1 << 28);
    return bytes ? std::string(bytes->begin(), bytes->end()) : "(no file)";
}

class Settings : public testing::Test {
  protected:
    Settings() { m_path = Outils_Fichiers::CreateTemporaryFile("settings").value(); }
    ~Settings() override { fs::remove(m_path); }

    bool Load(std::string_view text) {
        Outils_Fichiers::WriteWholeFile(m_path,
                                        {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
        return settings.Load(m_path);
    }
    // A loaded file whose `general` section holds `inner`.
    bool LoadGeneral(const std::string& inner) {
        return Load("<configuration><general>" + inner + "</general></configuration>");
    }
    std::string Saved() { return settings.Save(m_path) ? ReadText(m_path) : "(not saved)"; }

    fs::path m_path;
    CTrvCnfConfigFile settings;
};

std::string Repeated(std::string_view piece, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += piece;
    return text;
}

} // namespace

TEST(Schema, DefaultsReadAsTheirTextsSay) {
    CTrvCnfConfigFile settings;
    std::set<std::string> paths;
    for (std::size_t i = 0; i < std::size(kSchema); ++i) {
        const SSchemaRow& row = kSchema[i];
        SCOPED_TRACE(std::string(row.section) + "/" + std::string(row.key));
        EXPECT_TRUE(paths.insert(std::string(row.section) + "/" + std::string(row.key)).second);
        EXPECT_FALSE(Outils_Texte::GetText(row.help).empty());
        const bool isNumber = row.kind == EKind::integer || row.kind == EKind::real;
        EXPECT_EQ(row.range.IsSet(), isNumber);
        if (isNumber) {
            const double number = std::stod(std::string(row.defaultText));
            EXPECT_EQ(row.range.Clamp(number), number);
        }
        // Through a present text that does not parse, its default is read.
        CXmlConfigValue& value = settings.GetValue(SKey{i});
        const std::string text(row.defaultText);
        if (!WordsOf(row.kind).empty()) {
            auto& words = static_cast<CXmlConfigEnumeration&>(value);
            EXPECT_EQ(WordsOf(row.kind)[static_cast<std::size_t>(words.Get())], text);
            for (int number = 0; number < static_cast<int>(WordsOf(row.kind).size()); ++number)
                EXPECT_EQ((words.Set(number), words.Get()), number);
        }
        value.SetString("?!");
        switch (row.kind) {
        case EKind::integer: EXPECT_EQ(std::to_string(value.GetInt()), text); break;
        case EKind::real: EXPECT_EQ(value.GetDouble(), std::stod(text)); break;
        case EKind::boolean: EXPECT_EQ(value.GetBool(), text == "true" || text == "yes"); break;
        case EKind::color: EXPECT_EQ(value.GetColor(), std::stoul(text, nullptr, 16)); break;
        case EKind::character: EXPECT_FALSE(text.empty()); break;
        default: break;
        }
    }
}

TEST_F(Settings, FileOfDefaultsHoldsEveryKey) {
    const std::string text = Saved();
    EXPECT_TRUE(text.starts_with("<?xml version=\"1.0\" encoding=\"ISO-8859-1\" standalone=\"yes\"?>\n"
                                 "<configuration>\n\t<general>\n\t\t<utcSearch>\n"))
        << text.substr(0, 200);
    EXPECT_NE(text.find("degreesSeparator=\"\xB0\""), std::string::npos) << "one byte in Latin-1";

    pugi::xml_document document;
    ASSERT_TRUE(document.load_file(m_path.c_str()));
    EXPECT_EQ(std::size(kSchema), 179u);
    for (const SSchemaRow& row : kSchema) {
        const pugi::xml_node section =
            document.document_element().first_element_by_path(std::string(row.section).c_str());
        const std::string key(row.key);
        const bool attribute = row.form == EForm::attribute;
        EXPECT_EQ(attribute ? section.attribute(key.c_str()).value()
                            : section.child(key.c_str()).text().get(),
                  row.defaultText)
            << row.section << "/" << key;
        EXPECT_EQ(attribute, !section.attribute(key.c_str()).empty());
    }
    std::string sections;
    for (const pugi::xml_node section : document.document_element().children())
        sections += std::string(section.name()) + " ";
    EXPECT_EQ(sections,
              "general simulation simpleExporter simpleImporter fileUpdater process view1D viewValue "
              "viewMetadata viewProcessing adaptors settingsDialog printing ");
}

TEST_F(Settings, TypedKeysComeBack) {
    CTrvCnfConfigFile other;
    const auto expectKept = [&](auto key, auto value) {
        settings.Set(key, value);
        const std::string text = Saved();
        EXPECT_TRUE(other.Load(m_path) && other.Get(key) == value);
        return text;
    };
    expectKept(Cnf<"general/startMode">, EStartMode::openLast);
    expectKept(Cnf<"general/expertMode">, true);
    expectKept(Cnf<"simpleExporter/general/targetFolder">,
               "d\xC3\xA9p\xC3\xB4t/\xCE\xB1<&>\"/\xF0\x9F\x9B\xB0");
    expectKept(Cnf<"simpleImporter/postproNelix/skip">, 7);
    EXPECT_NE(expectKept(Cnf<"view1D/echo/size">, 2.5).find("<size>2.500000</size>"), std::string::npos);
    EXPECT_NE(expectKept(Cnf<"view1D/cursor/color">, SColor{0x80FFAB01}).find("<color>80ffab01</color>"),
              std::string::npos);
    expectKept(Cnf<"adaptors/dateTime/dateSeparator">, u' ');
    expectKept(Cnf<"adaptors/decimalSeparator">, u'\u00B7');
    expectKept(Cnf<"adaptors/distance/unit">, "nm");
}

TEST_F(Settings, NumbersOutsideTheirRangeAreClamped) {
    constexpr auto transparency = Cnf<"view1D/extremumTransparency">;
    for (const auto& [text, number] : {std::pair("256", 255), {"-1", 0}, {"99999999999", 255}, {"17", 17}}) {
        settings.GetValue(transparency).SetString(text);
        EXPECT_EQ(settings.Get(transparency), number) << text;
        EXPECT_EQ(settings.GetValue(transparency).GetString(), text);
    }
    settings.Set(Cnf<"printing/margins/left">, 1e300);
    EXPECT_EQ(settings.Get(Cnf<"printing/margins/left">), 20.0);
}

TEST_F(Settings, TextsAreReadByTheirTypes) {
    const std::tuple<std::string_view, bool, double, std::int32_t, std::uint32_t, char16_t> rows[] = {
        {"OUI", true, 0.5, 3, 0xFF000000, u'O'},
        {"maybe", false, 0.5, 3, 0xFF000000, u'm'},
        {" 1.5 \t", false, 1.5, 3, 0xFF000000, u' '},
        {"1.5x", false, 0.5, 3, 0xFF000000, u'1'},
        {".0", false, 0.5, 3, 0xFF000000, u'.'},
        {"-0", false, 0.0, 0, 0, u'-'},
        {"1e999", false, 0.5, 3, 0x1E999, u'1'},
        {"nan", false, 0.5, 3, 0xFF000000, u'n'},
        {"99999999999", false, 99999999999.0, 2147483647, 0xFFFFFFFF, u'9'},
        {"FfFf0000", false, 0.5, 3, 0xFFFF0000, u'F'},
        {"", false, 0.5, 3, 0xFF000000, u'd'},
    };
    for (const auto& [text, boolean, real, integer, color, character] : rows) {
        SCOPED_TRACE(text);
        pugi::xml_document document;
        const auto value = [&](std::string defaultText) {
            auto made = std::make_unique<CXmlConfigValue>("key", std::move(defaultText), EForm::element);
            made->Bind(document.append_child("section"));
            made->SetString(std::string(text));
            return made;
        };
        EXPECT_EQ(value("false")->GetBool(), boolean);
        EXPECT_EQ(value("0.5")->GetDouble(), real);
        EXPECT_EQ(value("3")->GetInt(), integer);
        EXPECT_EQ(value("no colour")->GetColor(), color);
        EXPECT_EQ(value("d")->GetChar(), character);
        EXPECT_EQ(value("")->GetChar(), text.size() == 1 ? character : u'?');
    }
}

TEST_F(Settings, UnknownWordsGiveTheDefault) {
    ASSERT_TRUE(LoadGeneral("<startMode>OPENLAST</startMode><appearance>mauve</appearance>"));
    EXPECT_EQ(settings.Get(Cnf<"general/startMode">), EStartMode::openLast);
    EXPECT_EQ(settings.Get(Cnf<"general/appearance">), EAppearance::blue);
    settings.Set(Cnf<"general/appearance">, static_cast<EAppearance>(17));
    EXPECT_EQ(settings.Get(Cnf<"general/appearance">), EAppearance::standard);
}

TEST_F(Settings, UnknownContentSurvivesASave) {
    ASSERT_TRUE(Load(
        "<?xml version='1.0' encoding='utf-8'?><!-- mine -->"
        "<configuration><general colour='\xC3\xA9'>\n</general><?general x?><general a='1'><later>7</later>"
        "<expertMode>tr<!-- cut -->ue</expertMode></general><new><deep/></new></configuration>"));
    EXPECT_FALSE(settings.Get(Cnf<"general/expertMode">)) << "the first section of a name counts";
    const std::string once = Saved();
    for (const char* kept : {"encoding=\"ISO-8859-1\"", "<!-- mine -->", "colour=\"\xE9\"", "<?general x?>",
                             "<later>7</later>", "<!-- cut -->", "<deep />"})
        EXPECT_NE(once.find(kept), std::string::npos) << kept;
    ASSERT_TRUE(settings.Load(m_path));
    EXPECT_EQ(Saved(), once);

    // Character data has no references for what Latin-1 lacks. U+00FF is its last character.
    ASSERT_TRUE(LoadGeneral("<userGuide><![CDATA[a<b]]></userGuide><x><![CDATA[\xC4\x80<]]></x>"
                            "<y><![CDATA[\xC3\xBF<]]></y><z><![CDATA[\xE2\x82\xAC<]]></z>"));
    settings.Set(Cnf<"general/userGuide">, "\xCE\xB1 & \xCE\xB2");
    const std::string data = Saved();
    for (const char* written : {"<x>&#256;&lt;</x>", "<y><![CDATA[\xFF<]]></y>", "<z>&#8364;&lt;</z>"})
        EXPECT_NE(data.find(written), std::string::npos) << written;
    ASSERT_TRUE(settings.Load(m_path));
    EXPECT_EQ(settings.Get(Cnf<"general/userGuide">), "\xCE\xB1 & \xCE\xB2");
    EXPECT_EQ(Saved(), data);

    // Deep nesting is kept without indentation.
    ASSERT_TRUE(
        Load("<configuration>" + Repeated("<a>", 100000) + Repeated("</a>", 100000) + "</configuration>"));
    EXPECT_NE(Saved().find(Repeated("<a>", 1000)), std::string::npos);
    EXPECT_TRUE(settings.Load(m_path));

    ASSERT_TRUE(LoadGeneral("<expertMode>tr<!-- cut -->ue</expertMode>"));
    EXPECT_TRUE(settings.Get(Cnf<"general/expertMode">));
    settings.Set(Cnf<"general/expertMode">, false);
    EXPECT_EQ(settings.GetValue(Cnf<"general/expertMode">).GetString(), "false");
}

TEST_F(Settings, BadFilesLeaveThePresentValues) {
    settings.Set(Cnf<"general/expertMode">, true);
    const std::string good = Saved();
    EXPECT_FALSE(settings.Load("/nowhere/at/all"));
    EXPECT_FALSE(settings.Load(fs::temp_directory_path()));
    const std::string bomb = "<!DOCTYPE c [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\">]>";
    for (const std::string& text :
         {std::string(), std::string("{\"general\": 1}"), good.substr(0, good.size() / 2), good + "x",
          good + "<more/>", std::string("<?xml version='1.0'?>"), bomb + "<configuration>&b;</configuration>",
          std::string(1000, '\0'), Repeated("<a>", 100000),
          "<configuration>" + std::string(CXmlConfigFile::kMaximumSize, ' ') + "</configuration>"})
        EXPECT_FALSE(Load(text)) << text.substr(0, 60);
    EXPECT_TRUE(settings.Get(Cnf<"general/expertMode">));
    EXPECT_EQ(Saved(), good);
}

TEST_F(Settings, FailedSaveLeavesTheOldFile) {
    const std::string good = Saved();
    settings.Set(Cnf<"general/userGuide">, std::string(CXmlConfigFile::kMaximumSize, 'x'));
    EXPECT_FALSE(settings.Save(m_path));
    EXPECT_EQ(ReadText(m_path), good);
    EXPECT_FALSE(settings.Save("/nowhere/at/all"));
}
