#include "document/batch_command_file.h"

#include "document/document_host.h"
#include "document/project_check.h"
#include "exchange/parameter_file.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "model/data_file.h"
#include "model/simulation_parameters.h"

#include <string>

namespace Application_Tarvel {

using Outils_Fichiers::FromText;
using Outils_Fichiers::ToText;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

bool PrepareBatchCommandFile(IDocumentHost& host,
                             const Outils_Configuration::CTrvCnfConfigFile& configuration, CFileLooks& looks,
                             const Metier_Tarvel::CTrvSimulationParameters& parameters,
                             const std::filesystem::path& project) {
    const auto refuse = [&host](const std::string& text) {
        host.ShowMessage(text, EButtons::ok, EIcon::exclamation);
        return false;
    };
    if (!ValidateProject(host, parameters, EText::parametersWrongLine, EText::parametersWrongBatch))
        return false;
    const std::filesystem::path proposed =
        FromText(ToText(std::filesystem::path(project).replace_extension()) +
                 std::string(GetText(EText::parametersSuffix)) + std::string(GetText(EText::xmlExtension)));
    const auto path = host.AskPath({EPathKind::save, EText::commandFileTitle, EText::xmlFilter,
                                    GetText(EText::xmlExtension).substr(1), proposed});
    if (path.empty()) return false;
    // The file hides the factory misalignment of a ciphered recording.
    const CFileLooks::Key cipher = parameters.nelixConfiguration.get();
    {
        const CWaitCursor wait(host);
        looks.Wait(GetTimeForChosenFile(configuration), cipher);
    }
    if (looks.IsAsked(cipher))
        return refuse(FormatText(EText::cipherUnknown, {ToText(parameters.mainInputFile->path)}));
    if (Persistance_Parametres::WriteParameterFile(path.front(), parameters)) return true;
    return refuse(std::string(GetText(EText::parametersNotWritten)));
}

} // namespace Application_Tarvel
