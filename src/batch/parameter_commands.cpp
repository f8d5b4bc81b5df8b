// The commands around the rules and batch command files.
#include "batch/commands.h"
#include "batch/file_access.h"
#include "batch/session.h"
#include "batch/table.h"
#include "dialogs/batch_creation.h"
#include "exchange/parameter_file.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "model/properties/classes.h"
#include "model/rules/rule_report.h"

#include <ostream>

namespace Batch {

using namespace Application_Tarvel;
using Outils_Fichiers::FromText;
using Outils_Fichiers::ToAbsolute;

namespace {

using Metier_Tarvel_Proprietes::FindPropertyClass;
using Metier_Tarvel_Regles::CTrvRuleReport;

constexpr std::string_view kCommandFileExtension = ".xml";

} // namespace

int CheckCommand(const COptions& options, SStreams streams) {
    CSession session(streams);
    if (!session.Open(options.GetArguments()[0])) return exitFailure;
    CTrvRuleReport report;
    session.GetDocument().GetProject()->simulationParameters->Validate(report);
    CTable table(streams.out, options.GetForm(), EText::checkColumns);
    for (const auto& violation : report.GetViolations())
        table.Row(FindPropertyClass(*violation.object)->title, violation.rule->GetProperties().front()->label,
                  violation.rule->GetMessage());
    return report.IsEmpty() ? exitSuccess : exitFailure;
}

int ParametersCommand(const COptions& options, SStreams streams) {
    const auto& arguments = options.GetArguments();
    CSession session(streams);
    if (!session.Open(arguments[0])) return exitFailure;
    // A slip of the keyboard must not cost a project or a recording.
    const bool replaces = HasExtension(FromText(arguments[1]), kCommandFileExtension);
    const auto target =
        replaces ? FindTargetPath(arguments[1], streams) : FindFreePath(arguments[1], streams);
    if (!target) return exitFailure;
    const auto& parameters = *session.GetDocument().GetProject()->simulationParameters;
    CTrvRuleReport report;
    parameters.Validate(report);
    for (const auto& violation : report.GetViolations()) FailWith(violation.rule->GetMessage(), streams);
    if (!report.IsEmpty()) return exitFailure;
    if (Persistance_Parametres::WriteParameterFile(*target, parameters)) return exitSuccess;
    return Fail(arguments[1], EText::notWritten, streams);
}

int CreateFromParametersCommand(const COptions& options, SStreams streams) {
    const auto& arguments = options.GetArguments();
    const auto source = ToAbsolute(FromText(arguments[0]));
    if (!CheckFile(arguments[0], FindFileFault, streams)) return exitFailure;
    const auto project = FindFreeProjectPath(arguments[1], streams);
    if (!project) return exitFailure;

    CBatchCreation creation;
    std::string message;
    if (!creation.Load(source, message)) return FailWith(message, streams);
    for (const std::string& choice : options.GetAll("--file")) {
        const std::size_t sign = choice.find('=');
        const bool known = sign != std::string::npos && sign + 1 < choice.size() &&
                           creation.ChooseFile(choice.substr(0, sign), FromText(choice.substr(sign + 1)));
        if (!known) throw CUsageError(EText::fileChoice, {arguments[0]});
    }

    CSession session(streams);
    using namespace Outils_Configuration;
    const int most = session.GetConfiguration().Get(Cnf<"general/utcSearch/maxPacketCount">);
    auto made = creation.Create(CBatchCreation::LookInto(creation.GetFiles(), most), message);
    if (!made) return FailWith(message, streams);
    return session.Create(std::move(made), *project, CTrvDocument::EResultName::kept) ? exitSuccess
                                                                                      : exitFailure;
}

} // namespace Batch
