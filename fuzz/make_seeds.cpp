// Writes the first inputs of every target: small ones that are taken whole, so that a fuzzer starts behind
// the first checks. Usage: fuzz_seeds CORPUS_FOLDER
#include "archive_round.h"
#include "config/config_file.h"
#include "exchange/parameter_file.h"
#include "foundation/files.h"
#include "model/project.h"
#include "recording/recording_writer.h"
#include "sample_project.h"
#include "xpf/packet_classes.h"

#include <cstdio>
#include <string>

using namespace Metier_Tarvel;
using namespace std::string_view_literals;

namespace {

class CSeedWriter {
  public:
    explicit CSeedWriter(std::filesystem::path corpus) : m_corpus(std::move(corpus)) {}

    void Add(const char* target, const char* name, Fuzz::Bytes bytes) {
        std::filesystem::create_directories(m_corpus / target);
        Fuzz::Require(Outils_Fichiers::WriteWholeFile(m_corpus / target / name, bytes),
                      "seeds can be written");
    }
    void Add(const char* target, const char* name, std::string_view text) {
        Add(target, name, Fuzz::Bytes(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
    }
    void AddFile(const char* target, const char* name, const std::filesystem::path& path) {
        const auto bytes = Outils_Fichiers::ReadWholeFile(path, 1 << 20);
        Fuzz::Require(bytes.has_value(), "seeds can be read");
        Add(target, name, *bytes);
    }
    const Fuzz::CScratchFolder& GetFolder() const { return m_folder; }

  private:
    std::filesystem::path m_corpus;
    Fuzz::CScratchFolder m_folder;
};

// One of everything on a recording.
void Fill(CTrvSimulationParameters& parameters) {
    parameters.AddOutputRate();
    parameters.AddZupt();
    parameters.AddAltitudeMode();
    for (const SSensorKind& kind : GetSensorKinds())
        if (CTrvSensor* sensor = parameters.AddSensor(kind.kind))
            for (const auto& group : sensor->rejectionGroups) group->AddInstruction();
}

void AddProjects(CSeedWriter& seeds) {
    Versions oldest;
    for (const auto& [name, current] : CurrentVersions()) oldest[name] = 1;
    const auto current = WriteSampleProject(CurrentVersions(), CurrentVersions());
    seeds.Add("project_archive", "current", current);
    seeds.Add("project_archive", "oldest", WriteSampleProject(oldest, oldest));
    const SSampleForm form{.narrowText = true, .mainFile = "..\\donn\351es\\a.tarin"};
    seeds.Add("project_archive", "oldest_narrow", WriteSampleProject(oldest, oldest, form));

    const auto project = Fuzz::TryLoad<CTrvProject>(current);
    Fuzz::Require(project != nullptr, "the sample loads");
    seeds.Add("parameter_archive", "sample", Fuzz::Store(*project->simulationParameters));
    seeds.Add("parameter_archive", "empty", Fuzz::Store(CTrvSimulationParameters()));
}

void AddXml(CSeedWriter& seeds) {
    const auto path = seeds.GetFolder() / "seed.xml";
    Fuzz::Require(Outils_Configuration::CTrvCnfConfigFile().Save(path), "settings are saved");
    seeds.AddFile("configuration_xml", "defaults", path);
    seeds.Add(
        "configuration_xml", "odd",
        "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?><!-- c --><configuration><general><expertMode>oui"
        "</expertMode><startMode/></general><adaptors><dateTime><notation>unixTime</notation><precision>9"
        "<!-- cut -->9</precision></dateTime></adaptors><own a=\"1\"><![CDATA[x]]></own></configuration>");

    std::filesystem::copy_file(Fuzz::GetRecording().GetPath(), seeds.GetFolder() / "a.tarin");
    for (const bool hasReference : {false, true}) {
        CTrvSimulationParameters parameters(seeds.GetFolder() / "a.tarin", seeds.GetFolder() / "a.tarout");
        if (hasReference) Fill(parameters);
        if (hasReference) parameters.SetUtcReference(CDateTime(133'000'000'000'000'000), {});
        Fuzz::Require(Persistance_Parametres::WriteParameterFile(path, parameters), "parameters are written");
        seeds.AddFile("parameter_file", hasReference ? "dates" : "seconds", path);
    }
}

void AddConfigurations(CSeedWriter& seeds) {
    seeds.Add(
        "ini_configuration", "whole",
        "; comment\r\n[Usine]\r\nCRT = 0.1,0.2,0.3\r\n[SYSTEM]\r\nposition=48.5,359.5,12\r\nSeaState=2\r\n"
        "bias=1,2,3\r\nAxisor=5\r\nPriLvArm=1,1,1\r\nSecLvArmA=\"1,2,3\"\r\nSecLvArmC='3,3,3'\r\n"
        "ModeleCourrant=600,0.5\r\n[Info]\r\nType=17\r\n[Cog]\r\nLvArm=4,5,6\r\n[Dvl]\r\nPort=3\r\n"
        "LvArm=1,2,3\r\nMesalign=4,5,6,1.5\r\n[Gps]\r\nPort=1\r\nLvArm=7,8,9\r\n[Usbl1]\r\nPort=2\r\n"
        "TpCode=B-12\r\nLvArm=1,1,1\r\n[Odo]\r\nPort=1\r\nLvArm=1,1,1\r\n");
    seeds.Add("ini_configuration", "wide", "\xFF\xFE[\0S\0]\0\n\0a\0=\0\x01\xD8\n\0"sv);
    seeds.Add("embedded_configuration", "whole",
              "Settings\r\n--------\r\nany line\r\nVersion Loader DSP 1\r\nVersion Firmware DSP 2\r\n"
              "Version Loader CINT 3\r\nVersion Firmware CINT 4\r\nExtSToSerial=0,1,2,3,1,1,1,0,1,1,1,1,1\r\n"
              "GPSLVA=1,2,3\r\nGPS2LVA=1,2,3\r\nDepthLVA=1,2,3\r\nDVLLVA=1,2,3\r\nDVLCAL=1,2,3,0.5\r\n"
              "LEMLVA=1,2,3\r\nLBLLVA=1,2,3\r\nUSBL0LVA=1,2,3\r\nUSBL0Conf=T1,2\r\nODOLVA=1,2,3\r\n"
              "ODOCAL=1,2,3,0.5\r\n");
}

void AddTexts(CSeedWriter& seeds) {
    const std::string plain(16, '\0');
    const auto settings = [&](std::size_t place, char value) {
        std::string changed = plain;
        changed[0] = 3;
        changed[5] = 16;
        changed[place] = value;
        return changed;
    };
    seeds.Add("value_adaptors", "number", plain + "-1.5e3 km");
    seeds.Add("value_adaptors", "angle",
              settings(6, 2) + "48\xC2\xB0"
                               "30'15.5\"N");
    seeds.Add("value_adaptors", "nmea", settings(6, 3) + "04830.5,N,");
    seeds.Add("value_adaptors", "date", settings(0, 7) + "24/11/2026 12:30:01.1234567");
    seeds.Add("value_adaptors", "compact", settings(10, 4) + "261124123001");
    seeds.Add("value_adaptors", "seconds", settings(10, 3) + "-1764000000.5");
    seeds.Add("value_adaptors", "span", plain + "-1 02:03:04.500");

    seeds.Add("format_detection", "xpf", "XPF");
    seeds.Add("format_detection", "nmea", "#\r\n$GPGGA,1\r\n$GPGST,2\n$GPZDA,3\r\n");
    seeds.Add("format_detection", "usbl", "\n\n$PTSAG,1");
    seeds.Add("format_detection", "post", "% program   : RTKPOST");
    seeds.Add("format_detection", "frame", "ab$\3c$");
    seeds.Add("format_detection", "pd6", ":UT,\n:BD,1\n:WS,\n:SA,\nUT\n");
    seeds.Add("format_detection", "blocks", "IMU   :1\r\nGPSnv :2\r\n");
    seeds.Add("format_detection", "events",
              "24/11/2026 12:30:01.5\t1\t17\n24/11/2026 12:30:02\n24/11/2026 12:30:03\t0\n24/11/2026 "
              "12:30:04\t2\n");
    seeds.Add("format_detection", "depth", "DEPTH TO VARNE NAV EXTERNAL DATA\n");

    seeds.Add(
        "line_protocol", "session",
        "\3progress 12.5\r\nmessage info \"a \"\"b\"\" c\"\nmessage error \"\nstate\t\"\" x\n\"a\"b\n12");
}

// The versions of the packets as those of a former layout.
void MakeFormer(std::vector<std::uint8_t>& bytes) {
    using namespace Persistance_Xpf;
    std::size_t place = kFileHeaderSize + std::size_t{kChannelRecordSize} * bytes[kChannelCountOffset];
    for (int i = 0; i < bytes[kDefinitionCountOffset]; ++i) {
        if (bytes[place + 2] > 1) --bytes[place + 2];
        place += kDefinitionRecordSize + std::size_t{kFieldRecordSize} * bytes[place + 6];
    }
}

// A few packets of two channels, one of them twice as often.
void AddRecording(CSeedWriter& seeds, const char* name, std::string_view dense, std::string_view sparse) {
    const auto path = seeds.GetFolder() / "seed.xpf";
    Enregistrement::CRecordingWriter writer;
    const std::string_view names[] = {dense, sparse};
    bool written = writer.Create(path, names);
    for (int i = 0; i < 4; ++i)
        for (const std::string_view channel : names) {
            if (channel == sparse && i % 2 != 0) continue;
            const auto packet =
                Persistance_Xpf::FindPacketClass(Persistance_Xpf::FindChannelLayout(channel)->packetType)
                    ->createPacket();
            packet->SetDate(0, Outils_Temps::CDateTimeSpan(i * 10'000'000));
            written = written && writer.Write(channel, *packet);
        }
    Fuzz::Require(written && writer.Close(), "a recording can be written");
    seeds.AddFile("packet_file", name, path);
    seeds.AddFile("export_source", name, path);
    auto former = Outils_Fichiers::ReadWholeFile(path, 1 << 20);
    Fuzz::Require(former.has_value(), "seeds can be read");
    MakeFormer(*former);
    seeds.Add("export_source", (std::string("former_") + name).c_str(), *former);
}

void AddTemplates(CSeedWriter& seeds) {
    seeds.Add(
        "export_template", "every_element",
        "<?xml version=\"1.0\"?><exportTemplate><recommendedExtension>t</recommendedExtension>"
        "<output encoding=\"ascii\" lineEnd=\"lf\"/><primaryInput primaryChannel=\"GPS_1\" name=\"g\"/>"
        "<input channel=\"NELIX_NAV\" name=\"n\" interpolation=\"nearest\" maxGap=\"5\"/><header>h</header>"
        "<line><field name=\"utc\" pattern=\"yyyy-MM-dd DDD HH:mm:ss.fff\"/><text> </text>"
        "<field name=\"localTime\" offset=\"+02:00\" pattern=\"HH\"/>"
        "<field name=\"Heading\" input=\"n\" unit=\"rad\" width=\"9\" precision=\"3\" fill=\"zero\"/>"
        "<field name=\"utmEasting\" zone=\"31\" hemisphere=\"south\" decimalSign=\",\" empty=\"-\"/>"
        "<field name=\"geocentricZ\" sign=\"always\" align=\"left\"/></line><footer>f</footer>"
        "</exportTemplate>");
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s CORPUS_FOLDER\n", argv[0]);
        return 1;
    }
    CSeedWriter seeds(argv[1]);
    AddProjects(seeds);
    AddXml(seeds);
    AddConfigurations(seeds);
    AddTexts(seeds);
    AddRecording(seeds, "recording", "DEPTH", "UTC");
    AddRecording(seeds, "result", "MORVEX_MSG", "MORVEX_STD");
    AddRecording(seeds, "navigation", "NELIX_NAV", "UTC");
    AddTemplates(seeds);
    return 0;
}
