// The configuration text that an INS saves: every value looked up, and the whole taken into new parameters.
#include "archive_round.h"

#include "model/ins_web_configuration_file.h"
#include "model/simulation_parameters.h"

using namespace Metier_Tarvel;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Fuzz::CMemoryFile input;
    input.Set({data, size});
    CInsWebConfigurationFile file;
    if (!file.Open(input.GetPath())) return 0;
    for (int sensor = -1; sensor <= 12; ++sensor) {
        std::int32_t port = 0;
        double number = 0;
        std::string text;
        file.GetPort(sensor, port);
        file.GetLeverArm(sensor);
        file.GetTransponder(sensor);
        file.GetCalibration(sensor);
        file.GetFloatField("GPSLVA", sensor, number);
        file.GetTextField("USBL0Conf", sensor, text);
    }

    CTrvSimulationParameters parameters(Fuzz::GetRecording().GetPath(), "/none/a.tarout");
    parameters.ImportWebConfiguration(file);
    Fuzz::CheckRoundTrip(parameters);
    return 0;
}
