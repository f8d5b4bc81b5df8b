// The INI file of an INS: every value looked up, and the whole taken into new parameters.
#include "archive_round.h"

#include "model/ini_file.h"
#include "model/simulation_parameters.h"

using namespace Metier_Tarvel;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Fuzz::CMemoryFile input;
    input.Set({data, size});
    CIniFile file;
    if (!file.Open(input.GetPath())) return 0;
    for (const char* section : {"System", "gps", ""})
        for (const char* key : {"Position", "Port", "lvarm", ""}) {
            file.GetInt(section, key);
            // 255 characters of at most three bytes each.
            Fuzz::Require(file.GetString(section, key, "default").size() <= 3 * 255, "values are cut");
        }

    CTrvSimulationParameters parameters(Fuzz::GetRecording().GetPath(), "/none/a.tarout");
    parameters.ImportIniConfiguration(input.GetPath());
    Fuzz::CheckRoundTrip(parameters);
    return 0;
}
