#include "morvex/engine_program.h"

#include "foundation/paths.h"
#include "foundation/texts.h"
#include "model/simulation_parameters.h"
#include "morvex/navigation_run.h"
#include "morvex/run_plan.h"

namespace Morvex {
namespace {

using namespace Compagnon;

ERunEnd RunParameters(const CArguments& arguments, IRunMonitor& monitor) {
    const auto path = Outils_Fichiers::ToAbsolute(Outils_Fichiers::FromText(arguments.GetFiles().front()));
    const auto parameters = LoadParameters(path);
    if (!parameters) {
        monitor.Report(ELevel::error, EText::parametersUnreadable, {Outils_Fichiers::ToText(path)});
        return ERunEnd::failed;
    }
    const SRunPlan plan = MakeRunPlan(*parameters);
    return CNavigationRun(plan, monitor).Execute();
}

} // namespace

const SProgram kEngineProgram{"Morvex.exe", EText::enginePurpose, "PARAMETERS", 1, 1, {}, EDialect::engine,
                              false,        RunParameters};

} // namespace Morvex
