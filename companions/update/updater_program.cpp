#include "update/updater_program.h"

#include "foundation/paths.h"
#include "foundation/texts.h"
#include "update/file_update.h"

#include <limits>

namespace MiseANiveau {
namespace {

using namespace Compagnon;

constexpr SSwitchRow kSwitches[] = {
    {"/backup", ESwitchValue::word, "yes|no", EText::updaterSwitchBackup},
};
constexpr std::size_t kYes = 0;

// A file that cannot be raised does not keep the others from it.
ERunEnd UpdateFiles(const CArguments& arguments, IRunMonitor& monitor) {
    const bool keepsBackup = arguments.GetWord("/backup", kYes) == kYes;
    const auto& files = arguments.GetFiles();
    std::size_t left = 0;
    for (std::size_t i = 0; i < files.size(); ++i) {
        const double share = 100.0 / static_cast<double>(files.size());
        CFileUpdate update(monitor, share * static_cast<double>(i), share * static_cast<double>(i + 1));
        const auto path = Outils_Fichiers::ToAbsolute(Outils_Fichiers::FromText(files[i]));
        switch (update.Run(path, keepsBackup)) {
        case EUpdate::upToDate:
        case EUpdate::raised: break;
        case EUpdate::stopped: return ERunEnd::stopped;
        case EUpdate::refused: ++left;
        }
    }
    if (left == 0) return ERunEnd::finished;
    monitor.Report(ELevel::error, EText::updaterNotRaised, {std::to_string(left)});
    return ERunEnd::failed;
}

} // namespace

const SProgram kFileUpdater{
    "FileUpdater.exe", EText::updaterPurpose, "FILE...", 1,          std::numeric_limits<std::size_t>::max(),
    kSwitches,         EDialect::tool,        true,      UpdateFiles};

} // namespace MiseANiveau
