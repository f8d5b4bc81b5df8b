// A parameter file as the engine gets it: loaded, edited, stored and loaded again.
#include "archive_round.h"

#include "model/rules/rule_report.h"
#include "model/simulation_parameters.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto parameters = Fuzz::LoadRaised<Metier_Tarvel::CTrvSimulationParameters>({data, size});
    if (!parameters) return 0;
    Fuzz::CheckRoundTrip(*parameters);

    for (const auto& kind : Metier_Tarvel::GetSensorKinds()) parameters->AddSensor(kind.kind);
    parameters->AddZupt();
    parameters->AddOutputRate();
    parameters->AddAltitudeMode();
    Metier_Tarvel_Regles::CTrvRuleReport report;
    parameters->Validate(report);
    Fuzz::CheckRoundTrip(*parameters);
    while (!parameters->sensors.empty()) parameters->RemoveSensor(parameters->sensors.back().get());
    Fuzz::CheckRoundTrip(*parameters);
    return 0;
}
