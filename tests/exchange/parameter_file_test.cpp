#include "exchange/parameter_file.h"

#include "dataaccess/test_recording.h"
#include "foundation/archive.h"
#include "foundation/files.h"
#include "model/project.h"
#include "model/registration.h"
#include "model/sample_project.h"
#include "recording/recording_header.h"

#include <pugixml.hpp>

#include <algorithm>
#include <limits>

using namespace Metier_Tarvel;
using namespace Persistance_Parametres;

namespace {

using Parameters = std::unique_ptr<CTrvSimulationParameters>;

constexpr std::string_view kChannels[] = {"IMU",      "LBL",       "DVL_BT",    "EM_LOG_1",
                                          "GPS_1",    "GPS_2",     "DEPTH",     "USBL_1",
                                          "ODOMETER", "SYNCHRO_1", "SYNCHRO_2", "PLATFORM_ORIENT"};
const CDateTime kReference(133'000'000'000'000'000);

// Everything that a parameter file does not hold, and nothing else, becomes what a reader starts from.
void Forget(CTrvSimulationParameters& parameters) {
    CTrvNelixConfiguration& ins = *parameters.nelixConfiguration;
    *ins.type = CTrvNelixType();
    if (ins.imuCipherMode != 0) *ins.factoryMisalignment = CMisalignment();
    if (parameters.heaveAlgorithm != heaveRealTime) {
        parameters.heaveSeaState = 0;
        *ins.cogLeverArm = CLeverArm();
    }
    parameters.mainInputFile->timeOffset = parameters.outputFile->timeOffset = CDateTime();
    for (const auto& file : parameters.externalFiles) file->timeOffset = CDateTime();
    for (const auto& sensor : parameters.sensors) {
        for (CTrvStdDevInstruction* stdDev : sensor->GetStdDevInstructions()) {
            if (!stdDev) continue;
            stdDev->isDefault = true;
            stdDev->begin = stdDev->end = CDateTime();
            if (stdDev->mode == stdDevLive)
                for (int i = 0; i < stdDev->GetValueCount(); ++i) stdDev->Value(i) = 0;
        }
        if (auto* dvl = dynamic_cast<CTrvSensorDvl*>(sensor.get())) {
            ins.currentModeling->sigma = dvl->currentModeling->sigma;
            ins.currentModeling->time = dvl->currentModeling->time;
        } else if (auto* usbl = dynamic_cast<CTrvSensorUsbl*>(sensor.get())) {
            usbl->transponderCode.clear();
            usbl->reserved = 0;
        }
    }
}

std::vector<std::uint8_t> Archive(const CTrvSimulationParameters& parameters) {
    Outils_Objets::CMemoryStream stream;
    Outils_Objets::CArchive archive(stream, Outils_Objets::CArchive::store, nullptr);
    archive.WriteObject(&parameters);
    archive.Close();
    return stream.GetBytes();
}

class ParameterFile : public testing::Test {
  protected:
    ParameterFile() {
        std::vector<std::uint8_t> header = Enregistrement::MakeRecordingHeader(kChannels);
        // A name with a point, as another recorder may write it.
        const std::string_view name = "LBL", dotted = "L.L";
        const auto found = std::search(header.begin(), header.end(), name.begin(), name.end());
        std::copy(dotted.begin(), dotted.end(), found);
        for (const char* file : {"main.tarin", "ext.tarin"})
            EXPECT_TRUE(Outils_Fichiers::WriteWholeFile(m_folder / file, header));
    }

    // One of everything, each with a value of its own, over the recordings here.
    Parameters MakeFull(std::int32_t heaveAlgorithm, bool hasUtc) {
        Outils_Objets::CClassRegistry registry;
        RegisterModelClasses(registry);
        Outils_Objets::CMemoryStream stream(WriteSampleProject(CurrentVersions(), CurrentVersions()));
        Outils_Objets::CArchive archive(stream, Outils_Objets::CArchive::load, &registry);
        Parameters parameters = std::move(CTrvProject::Load(archive)->simulationParameters);
        const auto moveTo = [](CTrvDataFile& file, std::filesystem::path path) {
            file.path = std::move(path);
            file.channels.clear();
            file.ReadChannels();
        };
        moveTo(*parameters->mainInputFile, m_folder / "main.tarin");
        moveTo(*parameters->outputFile, m_folder / "main.tarout");
        moveTo(*parameters->externalFiles.at(0), m_folder / "ext.tarin");
        for (const auto& sensor : parameters->sensors) {
            sensor->channel = parameters->mainInputFile->FindChannelForSensor(*sensor);
            sensor->synchronizedOutput = sensor->GetLeverArm() != nullptr;
        }
        auto& gps = dynamic_cast<CTrvSensorGps&>(*parameters->sensors[0]);
        gps.channel = parameters->externalFiles[0]->FindChannel("GPS_2");
        gps.stdDevInstruction->mode = stdDevLive;
        parameters->referencePosition = CPosition(48.123456789012, -4.5, 12.0625);
        parameters->heaveAlgorithm = heaveAlgorithm;
        parameters->hasUtcReference = false;
        parameters->utcReference = CDateTime();
        if (hasUtc) parameters->SetUtcReference(kReference, {});
        return parameters;
    }
    Parameters MakeEmpty() {
        return std::make_unique<CTrvSimulationParameters>(m_folder / "main.tarin", m_folder / "main.tarout");
    }
    std::string Write(const CTrvSimulationParameters& parameters) {
        EXPECT_TRUE(WriteParameterFile(m_path, parameters));
        return GetText();
    }
    std::string GetText() {
        const auto bytes = Outils_Fichiers::ReadWholeFile(m_path, kMaximumParameterFileSize);
        return bytes ? std::string(bytes->begin(), bytes->end()) : std::string();
    }
    Parameters Read(CDateTime reference = CDateTime::Invalid()) {
        CParameterFileReader reader;
        return reader.Load(m_path) ? reader.Read({}, reference) : nullptr;
    }
    Parameters ReadText(std::string_view text, CDateTime reference = CDateTime::Invalid()) {
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
        EXPECT_TRUE(Outils_Fichiers::WriteWholeFile(m_path, {bytes, text.size()}));
        return Read(reference);
    }

    test::CTemporaryFolder m_folder;
    std::filesystem::path m_path = m_folder / "run-parameters.xml";
};

// An element's names and those of its attributes and children, without the values.
std::string Outline(pugi::xml_node element) {
    std::string text = element.name();
    std::string inner;
    for (const pugi::xml_attribute attribute : element.attributes())
        inner += std::string(" ") + attribute.name();
    for (const pugi::xml_node child : element.children())
        if (child.type() == pugi::node_element) inner += " " + Outline(child);
    return inner.empty() ? text : text + "(" + inner.substr(1) + ")";
}

// All occurrences; there must be one.
std::string Replaced(std::string text, std::string_view from, std::string_view to) {
    std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    for (; at != std::string::npos; at = text.find(from, at + to.size())) text.replace(at, from.size(), to);
    return text;
}

} // namespace

TEST_F(ParameterFile, ComesBackExceptListedValues) {
    for (const bool hasUtc : {false, true})
        for (const std::int32_t heave : {heaveNone, heaveRealTime, heaveKelvar})
            for (const std::int32_t cipher : {0, 2}) {
                SCOPED_TRACE(testing::Message() << hasUtc << " " << heave << " " << cipher);
                const auto parameters = MakeFull(heave, hasUtc);
                parameters->nelixConfiguration->imuCipherMode = cipher;
                const std::string text = Write(*parameters);
                const auto copy = Read(hasUtc ? kReference : CDateTime::Invalid());
                ASSERT_TRUE(copy);
                Forget(*parameters);
                EXPECT_TRUE(Archive(*copy) == Archive(*parameters));
                copy->nelixConfiguration->imuCipherMode = cipher;
                EXPECT_EQ(Write(*copy), text);
            }
}

TEST_F(ParameterFile, HasThisText) {
    const auto name = std::filesystem::path(u8"\u00e9\u20ac.tarin");
    std::filesystem::rename(m_folder / "main.tarin", m_folder / name.string());
    CTrvSimulationParameters parameters(m_folder / name.string(), m_folder / "out/r.tarout");
    ASSERT_TRUE(parameters.AddDataFile(m_folder / "ext.tarin"));
    parameters.referencePosition = CPosition(48.5, -4.25, 10);
    parameters.end = CDateTime(15'000'001);
    ASSERT_TRUE(parameters.AddSensor(ESensorKind::gps));
    auto& dvl = static_cast<CTrvSensorDvl&>(*parameters.AddSensor(ESensorKind::dvl));
    dvl.channel = parameters.externalFiles[0]->FindChannel("DVL_BT");
    dvl.scaleFactor = 0.0125;
    dvl.currentModeling->sigma = 1.0 / 3;
    dvl.synchronizedOutput = true;
    dvl.rejectionGroups[0]->AddInstruction()->end = CDateTime(25'000'000);
    dvl.timeOffset = ToStoredTime(CDateTimeSpan(-2'500'000));
    const std::string expected = R"(<?xml version="1.0" encoding="iso-8859-1"?>
<morvexParameters>
	<inputFile id="main" path=".\)"
                                 "\xE9"
                                 R"(&#8364;.tarin" />
	<inputFile id="file02" path=".\ext.tarin" />
	<outputFile id="output" path=".\out\r.tarout" />
	<ins>
		<factoryMisalignment heading="0" roll="0" pitch="0" />
		<roughMisalignment>0</roughMisalignment>
		<fineMisalignment heading="0" roll="0" pitch="0" />
	</ins>
	<gps>
		<dataSource path="main.GPS_1" />
		<leverArm xv1="0" xv2="0" xv3="0" />
		<minimumSd lat="0.03" lon="0.03" alt="0.03" />
	</gps>
	<dvl>
		<dataSource path="file02.DVL_BT" timeOffset="-0.25" synchronizeOutput="true" />
		<leverArm xv1="0" xv2="0" xv3="0" />
		<misalignment heading="0" roll="0" pitch="0" />
		<scaleFactor>0.0125</scaleFactor>
		<bias x="0" y="0" z="0" />
		<bottomTrack>
			<rejection mode="0" from="0" to="2.5" />
		</bottomTrack>
		<waterTrack />
	</dvl>
	<processing algorithm="0" gpsAltitudeReference="0" from="0" to="1.5000001">
		<initialConditions>
			<position>
				<latitude>48.500000000000</latitude>
				<longitude>-4.250000000000</longitude>
				<altitude>10.0000</altitude>
			</position>
		</initialConditions>
		<heaveCalculation algorithm="2" />
		<currentModeling>
			<sigma>0.333333</sigma>
			<time>3600</time>
		</currentModeling>
	</processing>
	<output defaultRate="1">
		<misalignment heading="0" roll="0" pitch="0" />
		<leverArm id="primary" xv1="0" xv2="0" xv3="0" />
		<leverArm id="secondary-a" xv1="0" xv2="0" xv3="0" />
		<leverArm id="secondary-b" xv1="0" xv2="0" xv3="0" />
		<leverArm id="secondary-c" xv1="0" xv2="0" xv3="0" />
	</output>
</morvexParameters>
)";
    EXPECT_EQ(Write(parameters), expected);
    parameters.SetUtcReference(kReference, {});
    EXPECT_NE(
        Write(parameters).find(R"(from="2022-06-18T04:26:40.0000000" to="2022-06-18T04:26:41.5000001")"),
        std::string::npos);
}

TEST_F(ParameterFile, SensorElementsKeepTheirOrder) {
    Write(*MakeFull(heaveNone, false));
    pugi::xml_document document;
    ASSERT_TRUE(document.load_file(m_path.c_str()));
    std::vector<std::string> outlines;
    for (const pugi::xml_node element : document.document_element().children())
        if (element.child("dataSource")) outlines.push_back(Outline(element));
    const std::string arm = "(xv1 xv2 xv3)", angles = "(heading roll pitch)", vector = "(x y z)";
    const std::string common = "(dataSource(path timeOffset synchronizeOutput) leverArm" + arm;
    const std::string rejections = " rejection(mode from to)";
    const std::string scalar = common + rejections + " userSd(value))";
    const std::string track = "(userSd" + vector + rejections + ")";
    const std::string fixed = " misalignment" + angles + " scaleFactor";
    const std::vector<std::string> expected = {
        "gps" + common + rejections + " minimumSd(lat lon alt))",
        "dvl" + common + fixed + " bias" + vector + " bottomTrack" + track + " waterTrack" + track + ")",
        "emLog" + scalar,
        "depthSensor" + scalar,
        "usbl" + common + rejections + " userSd(lat lon cv alt) filter(value from to))",
        "lbl" + scalar,
        "odometer" + common + fixed + rejections + " userSd" + vector + ")",
        "eventMarker(eventId dataSource(path timeOffset))",
        "gyroStabilizedMount(dataSource(path timeOffset) bodyLeverArm" + arm + " vehicleLeverArm" + arm +
            " bodyMisalignment" + angles + " vehicleMisalignment" + angles + ")"};
    EXPECT_EQ(outlines, expected);
}

TEST_F(ParameterFile, DamagedTextGivesNoParameters) {
    const std::string good = Write(*MakeFull(heaveRealTime, false));
    ASSERT_TRUE(ReadText(good));
    const std::tuple<std::string_view, std::string_view> rows[] = {
        {"morvexParameters", "parameters"},
        {"<morvexParameters>", "<!DOCTYPE morvexParameters><morvexParameters>"},
        {"id=\"file02\"", "id=\"main\""},
        {".\\ext.tarin", ".\\MAIN.tarin"},
        {".\\ext.tarin", ".\\none.tarin"},
        {"main.DEPTH", "mine.DEPTH"},
        {"main.DEPTH", "DEPTH"},
        {"emLog", "depthSensor"}, // two depth sensors
        {"EM_LOG_1\" timeOffset=\"", "EM_LOG_1\" timeOffset=\"1e300"},
        {">23<", ">23.5<"},
        {">23<", ">99999999999<"},
        {"secondary-b", "secondary-d"},
        {"from=\"", "from=\"yesterday "},
        {"to=\"", "to=\"2024-01-01T00:00:00 "},
        {"defaultRate=\"", "defaultRate=\"1e999"},
        {"defaultRate=\"", "defaultRate=\"nan"},
        {"synchronizeOutput=\"true\"", "synchronizeOutput=\"maybe\""},
        {"<filter value=\"", "<filter value=\"1e40\" x=\""},
    };
    for (const auto& [from, to] : rows)
        EXPECT_FALSE(ReadText(Replaced(good, from, to))) << from << " -> " << to;
    for (const std::string_view text : {std::string_view(), std::string_view("<morvexParameters/>")})
        EXPECT_FALSE(ReadText(text));
    std::string deep = "<morvexParameters>";
    for (int i = 0; i < 100000; ++i) deep += "<gps>";
    EXPECT_FALSE(ReadText(deep));
    EXPECT_FALSE(ReadText(good + std::string(kMaximumParameterFileSize, ' ')));

    // Dates have no place on a clock whose UTC is not known.
    const std::string dated = Write(*MakeFull(heaveRealTime, true));
    EXPECT_TRUE(ReadText(dated, kReference));
    EXPECT_FALSE(ReadText(dated));
}

// Each element and each attribute under another name, one after the other.
TEST_F(ParameterFile, OnlyTheseMayBeMissing) {
    const std::string optional =
        " timeOffset synchronizeOutput rejection userSd filter factoryMisalignment zupt"
        " altitudeMode rate bottomTrack waterTrack heaveCalculation currentModeling"
        " gps dvl emLog depthSensor usbl lbl odometer eventMarker gyroStabilizedMount ";
    Write(*MakeFull(heaveRealTime, false));
    pugi::xml_document document;
    ASSERT_TRUE(document.load_file(m_path.c_str()));
    const auto tryWithout = [&](auto item) {
        const std::string name = item.name();
        item.set_name("other");
        ASSERT_TRUE(document.save_file(m_path.c_str()));
        EXPECT_EQ(Read() != nullptr, optional.find(" " + name + " ") != std::string::npos) << name;
        item.set_name(name.c_str());
    };
    const auto visit = [&](const auto& self, pugi::xml_node element) -> void {
        tryWithout(element);
        for (const pugi::xml_attribute attribute : element.attributes()) tryWithout(attribute);
        for (const pugi::xml_node child : element.children())
            if (child.type() == pugi::node_element) self(self, child);
    };
    visit(visit, document.document_element());
}

TEST_F(ParameterFile, ReadsFilesOfOtherWriters) {
    std::string text = Write(*MakeFull(heaveRealTime, false));
    // The depth sensor before all others.
    const std::size_t start = text.find("<depthSensor>");
    const std::string depth = text.substr(start, text.find("</depthSensor>") + 14 - start);
    text = Replaced(Replaced(text, depth, ""), "<gps>", depth + "<unknown/><gps>");
    text = Replaced(text, "path=\".\\ext.tarin\"", "path=\"./x/../ext.tarin\" timeOffset=\"-2.5\"");
    text = Replaced(text, "<usbl>", "<usbl transponderCode=\"B7\">");
    text = Replaced(text, "synchronizeOutput=\"true\"", "synchronizeOutput=\"on\"");
    text = Replaced(text, ">23<", ">\n\t<!-- as mounted --> 23\n<");
    text = Replaced(Replaced(text, "heaveCalculation", "heave"), "currentModeling", "current");
    text = Replaced(text, "factoryMisalignment", "factory");
    const auto parameters = ReadText(text, kReference);
    ASSERT_TRUE(parameters);
    EXPECT_EQ(parameters->sensors.front()->GetKind().kind, ESensorKind::depth);
    EXPECT_TRUE(parameters->sensors.front()->synchronizedOutput);
    EXPECT_EQ(parameters->externalFiles.at(0)->timeOffset, ToStoredTime(CDateTimeSpan(-25'000'000)));
    EXPECT_EQ(parameters->nelixConfiguration->roughMisalignment, 23);
    EXPECT_EQ(parameters->nelixConfiguration->factoryMisalignment->heading, 0);
    EXPECT_EQ(parameters->heaveAlgorithm, heaveNone);
    EXPECT_EQ(parameters->utcReference, kReference);
    for (const auto& sensor : parameters->sensors) {
        const auto* usbl = dynamic_cast<CTrvSensorUsbl*>(sensor.get());
        EXPECT_EQ(usbl ? usbl->transponderCode : "B7", "B7");
        const auto* dvl = dynamic_cast<CTrvSensorDvl*>(sensor.get());
        EXPECT_EQ(dvl ? dvl->currentModeling->time : 3600, 3600);
    }
}

TEST_F(ParameterFile, ChosenFilesReplaceTheNamedOnes) {
    Write(*MakeFull(heaveNone, false));
    std::filesystem::rename(m_folder / "ext.tarin", m_folder / "moved.tarin");
    CParameterFileReader reader;
    ASSERT_TRUE(reader.Load(m_path));
    EXPECT_FALSE(reader.Read());
    const auto parameters =
        reader.Read({{"file02", m_folder / "moved.tarin"}, {"output", m_folder / "new.tarout"}});
    ASSERT_TRUE(parameters);
    EXPECT_EQ(parameters->externalFiles.at(0)->path, m_folder / "moved.tarin");
    EXPECT_EQ(parameters->outputFile->path, m_folder / "new.tarout");
}

TEST_F(ParameterFile, RefusedValuesKeepTheOldFile) {
    const std::string good = Write(*MakeEmpty());
    const std::pair<const char*, void (*)(CTrvSimulationParameters&)> rows[] = {
        {"no number", [](auto& p) { p.defaultOutputRate = std::numeric_limits<double>::quiet_NaN(); }},
        {"no channel", [](auto& p) { p.AddSensor(ESensorKind::gps)->channel = nullptr; }},
        {"no date",
         [](auto& p) {
             p.SetUtcReference(kReference, {});
             p.end = CDateTime(std::numeric_limits<std::int64_t>::max());
         }},
        {"no text", [](auto& p) { p.outputFile->path = "/tmp/\xFF.tarout"; }},
        {"no character", [](auto& p) { p.outputFile->path = "/tmp/\x01.tarout"; }},
    };
    for (const auto& [what, spoil] : rows) {
        const auto parameters = MakeEmpty();
        spoil(*parameters);
        EXPECT_FALSE(WriteParameterFile(m_path, *parameters)) << what;
        EXPECT_EQ(GetText(), good);
    }
    EXPECT_FALSE(WriteParameterFile(m_folder / "missing/p.xml", *MakeEmpty()));
}
