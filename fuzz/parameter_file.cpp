// The processing parameter file: read over recordings that have every channel, written and read again.
#include "exchange/parameter_file.h"

#include "archive_round.h"
#include "model/rules/rule_report.h"

#include <memory>

using namespace Persistance_Parametres;

namespace {

// One recording under four names: no two files of a project may have the same path.
CChosenPaths ChoosePaths(const CParameterFileReader& reader) {
    static const Fuzz::CScratchFolder folder;
    static const auto recordings = [] {
        std::vector<std::filesystem::path> paths;
        for (const char* name : {"a.tarin", "b.tarin", "c.tarin", "d.tarin"}) {
            paths.push_back(folder / name);
            std::filesystem::copy_file(Fuzz::GetRecording().GetPath(), paths.back());
        }
        return paths;
    }();
    CChosenPaths chosen;
    std::size_t next = 0;
    for (const SParameterFileRow& row : reader.GetFiles())
        if (!row.isOutput && next < recordings.size()) chosen[row.id] = recordings[next++];
    return chosen;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Fuzz::CScratchFolder folder;
    static Fuzz::CMemoryFile input;
    input.Set({data, size});
    CParameterFileReader reader;
    if (!reader.Load(input.GetPath())) return 0;
    const CChosenPaths chosen = ChoosePaths(reader);

    for (const auto& reference :
         {Outils_Temps::CDateTime::Invalid(), Outils_Temps::CDateTime(133'000'000'000'000'000)}) {
        const auto parameters = reader.Read(chosen, reference);
        if (!parameters) continue;
        Metier_Tarvel_Regles::CTrvRuleReport report;
        parameters->Validate(report);
        Fuzz::CheckRoundTrip(*parameters);

        const auto saved = folder / "saved.xml";
        if (!WriteParameterFile(saved, *parameters)) continue;
        CParameterFileReader again;
        Fuzz::Require(again.Load(saved), "a written parameter file loads");
        Fuzz::Require(again.Read({}, reference) != nullptr, "a written parameter file can be read");
    }
    return 0;
}
