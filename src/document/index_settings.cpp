#include "document/index_settings.h"

#include "config/config_file.h"

namespace Application_Tarvel {

using Outils_Configuration::Cnf;

SIndexSettings ReadIndexSettings(const Outils_Configuration::CTrvCnfConfigFile& configuration) {
    constexpr int kBytesPerMegabyteBits = 20;
    const auto toBytes = [](int megabytes) {
        return static_cast<std::uint64_t>(megabytes) << kBytesPerMegabyteBits;
    };
    SIndexSettings settings;
    settings.isOn = configuration.Get(Cnf<"general/index/enabled">);
    settings.memory = toBytes(configuration.Get(Cnf<"general/index/memory">));
    settings.disk = toBytes(configuration.Get(Cnf<"general/index/disk">));
    settings.folder = CIndexStore::GetUsualFolder();
    return settings;
}

} // namespace Application_Tarvel
