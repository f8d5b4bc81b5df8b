// The settings file: loaded, every key read as every type, the adaptors set up by it, saved and loaded again.
#include "config/config_file.h"
#include "input.h"
#include "values/adaptors.h"

#include <algorithm>

using namespace Outils_Configuration;

namespace {

void ReadAsEveryType(const CXmlConfigValue& value) {
    value.GetString();
    value.GetInt();
    value.GetUInt();
    value.GetDouble();
    value.GetBool();
    value.GetChar();
    value.GetColor();
    if (const auto* words = dynamic_cast<const CXmlConfigEnumeration*>(&value)) words->Get();
}

bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<signed char>(c) >= 0; });
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Fuzz::CScratchFolder folder;
    static Fuzz::CMemoryFile input;
    input.Set({data, size});
    CTrvCnfConfigFile configuration;
    if (!configuration.Load(input.GetPath())) return 0;

    for (std::size_t row = 0; row < std::size(kSchema); ++row) ReadAsEveryType(configuration.GetValue({row}));
    Outils_Valeurs::CTrvAdaptors adaptors;
    adaptors.Configure(configuration);
    std::string shown;
    adaptors.GetDateTime().ValueToText(Outils_Temps::CDateTime(std::uint64_t{1} << 57), shown);
    adaptors.GetDateTimeSpan().ValueToText(Outils_Temps::CDateTimeSpan(-123456789), shown);
    adaptors.GetGeographicPosition().latitude.ValueToText(-12.3456, shown);

    const auto saved = folder / "saved.conf.xml";
    if (!configuration.Save(saved)) return 0; // text that XML cannot hold, or too much of it
    CTrvCnfConfigFile again;
    Fuzz::Require(again.Load(saved), "saved settings load");
    for (std::size_t row = 0; row < std::size(kSchema); ++row) {
        const std::string text = configuration.GetValue({row}).GetString();
        // What the file had in another encoding than it says can only be saved as something else.
        Fuzz::Require(!IsAscii(text) || again.GetValue({row}).GetString() == text,
                      "settings stay as they are");
    }
    return 0;
}
