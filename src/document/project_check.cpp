#include "document/project_check.h"

#include "document/document_host.h"
#include "model/rules/rule_report.h"
#include "model/simulation_parameters.h"

#include <string>

namespace Application_Tarvel {

using Outils_Texte::EText;
using Outils_Texte::GetText;

bool ValidateProject(IDocumentHost& host, const Metier_Tarvel::CTrvSimulationParameters& parameters,
                     EText line, EText message) {
    Metier_Tarvel_Regles::CTrvRuleReport report;
    if (parameters.Validate(report)) return true;
    using Communication_Interfaces::levelError;
    host.AppendOutputText({std::string(GetText(line)), levelError});
    for (const auto& violation : report.GetViolations())
        host.AppendOutputText({std::string(violation.rule->GetMessage()), levelError, violation.object});
    host.ShowMessage(std::string(GetText(message)), EButtons::ok, EIcon::information);
    return false;
}

} // namespace Application_Tarvel
