// A project file: loaded, checked by the rules, stored and loaded again.
#include "archive_round.h"

#include "model/project.h"
#include "model/rules/rule_report.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto project = Fuzz::LoadRaised<Metier_Tarvel::CTrvProject>({data, size});
    if (!project) return 0;
    Fuzz::CheckRoundTrip(*project);

    Metier_Tarvel_Regles::CTrvRuleReport report;
    const bool valid = project->simulationParameters->Validate(report);
    Fuzz::Require(valid == report.IsEmpty(), "what is not valid has a violation");
    project->RebuildDataModel(true);
    while (!project->simulationParameters->externalFiles.empty())
        if (!project->RemoveDataFile(project->simulationParameters->externalFiles.back().get())) break;
    return 0;
}
