// A packet file of any layout: every exporter writes what it can of it, and the updater raises it.
#include "input.h"

#include "export/kml_export.h"
#include "export/sbet_export.h"
#include "export/template_export.h"
#include "export/text_export.h"
#include "foundation/files.h"
#include "update/updater_program.h"
#include "xpf/file.h"

using namespace Compagnon;
using namespace Persistance_Xpf;

namespace {

class CSilentMonitor final : public IRunMonitor {
    void Progress(double) override {}
    void Message(ELevel, EText, std::string_view) override {}
    bool GoOn() override { return true; }
};

constexpr std::string_view kTemplate =
    "<exportTemplate><primaryInput primaryChannel=\"NELIX_NAV\"/><input channel=\"UTC\"/><line>"
    "<field name=\"utc\" pattern=\"yyyyMMdd\"/><field name=\"utmEasting\" precision=\"3\"/>"
    "<field name=\"Heading\" width=\"9\"/><field name=\"UTC Second\" input=\"UTC\"/></line></exportTemplate>";

ERunEnd Run(const SProgram& program, const std::vector<std::string>& words) {
    CArguments arguments;
    std::string error;
    Fuzz::Require(arguments.Parse(program.switches, words, error), "the command line is right");
    CSilentMonitor monitor;
    return program.run(arguments, monitor);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Fuzz::CScratchFolder folder;
    const std::string source = folder / "source", target = folder / "target", form = folder / "form";
    Fuzz::Require(Outils_Fichiers::WriteWholeFile(source, {data, size}), "a file is written");
    Fuzz::Require(Outils_Fichiers::WriteWholeFile(
                      form, {reinterpret_cast<const std::uint8_t*>(kTemplate.data()), kTemplate.size()}),
                  "a template is written");
    const std::pair<const SProgram*, std::vector<std::string>> runs[] = {
        {&Exportation::kInputToText, {source, target}},
        {&Exportation::kResultToText, {"/imu", "on", source, target}},
        {&Exportation::kInputToKml, {"/track", "on", source, target}},
        {&Exportation::kResultToKml, {"/track", "on", "/dec", "1", source, target}},
        {&Exportation::kResultToSbet, {"/a", "/lv", "2", source, target}},
        {&Exportation::kTemplateExporter, {"/t", form, source, target}},
    };
    for (const auto& [program, words] : runs) {
        std::filesystem::remove(target);
        const bool written = Run(*program, words) == ERunEnd::finished;
        Fuzz::Require(written == std::filesystem::exists(target), "a target appears whole or not at all");
    }
    if (Run(MiseANiveau::kFileUpdater, {"/backup", "no", source}) == ERunEnd::finished) {
        const auto isOpened = [&](EFileKind kind) {
            return OpenXpfFile(source, kind).how == EOpening::opened;
        };
        Fuzz::Require(isOpened(EFileKind::tarin) || isOpened(EFileKind::tarout), "a raised file opens");
    } else {
        const auto left = Outils_Fichiers::ReadWholeFile(source, size + 1);
        Fuzz::Require(left && std::equal(left->begin(), left->end(), data, data + size),
                      "a file that cannot be raised stays as it is");
    }
    return 0;
}
