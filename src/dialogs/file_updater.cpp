#include "dialogs/file_updater.h"

#include "config/config_file.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "processing/command_switches.h"

namespace Dialogue_Tarvel {

using namespace Application_Tarvel;
using namespace Communication_Processus;
using namespace Outils_Configuration;

namespace {

constexpr int ToInt(EUpdateField field) { return static_cast<int>(field); }

constexpr SToolField kUpdateFields[] = {
    {.kind = EFieldKind::word, .title = EText::formatField, .formats = 0, .words = "packets"},
    {.kind = EFieldKind::paths, .title = EText::dataFiles, .help = EText::updateSummary},
    {EFieldKind::word, EText::backupField, kAllFormats, "--backup", "no|yes", EText::choiceNo,
     Cnf<"fileUpdater/backup">},
};
static_assert(std::size(kUpdateFields) == static_cast<std::size_t>(EUpdateField::count));

constexpr SCommandSwitch<CToolFields> kUpdateSwitches[] = {
    {"/remote", EArgument::flag, [](const CToolFields&) { return std::vector<std::string>{""}; }},
    {"/backup", EArgument::word,
     [](const CToolFields& fields) { return std::vector{fields.Get(ToInt(EUpdateField::backup))}; }},
    {"", EArgument::quoted,
     [](const CToolFields& fields) {
         std::vector<std::string> files;
         for (const auto& file : fields.GetPaths(ToInt(EUpdateField::files)))
             files.push_back(Outils_Fichiers::ToText(file));
         return files;
     }},
};

constexpr SToolCheck<SToolFiles> kUpdateChecks[] = {
    {EText::toolSourceMissing, ToInt(EUpdateField::files),
     [](const SToolFiles& files) { return files.sourcesExist; }},
};

} // namespace

std::span<const SToolField> GetUpdateFields() { return kUpdateFields; }

CTrvFileUpdaterDlg::CTrvFileUpdaterDlg(const SToolServices& services,
                                       const std::vector<std::filesystem::path>& files)
    : CToolDialog(EToolKind::updater, services, kUpdateFields) {
    m_fields.Load(services.configuration);
    m_fields.SetPaths(ToInt(EUpdateField::files), files);
    MakeRows();
}

EText CTrvFileUpdaterDlg::GetTitle() const { return EText::updateTitle; }

CToolDialog::SSizeKeys CTrvFileUpdaterDlg::GetSizeKeys() const {
    return {Cnf<"fileUpdater/width">, Cnf<"fileUpdater/height">, Cnf<"fileUpdater/firstColumnWidth">};
}

EText CTrvFileUpdaterDlg::GetLaunchFailure() const { return EText::updaterLaunchFailed; }

std::string CTrvFileUpdaterDlg::GetProgram() const { return ResolveProgram(Cnf<"process/fileUpdater">); }

std::string CTrvFileUpdaterDlg::GetCommandLine() const {
    return MakeCommandLine(GetProgram(), kUpdateSwitches, m_fields);
}

bool CTrvFileUpdaterDlg::Check() {
    const auto files = Look(m_fields.GetPaths(ToInt(EUpdateField::files)), {});
    return files && CheckAll<SToolFiles>(kUpdateChecks, *files);
}

bool CTrvFileUpdaterDlg::OnEnded(EOutcome& outcome, std::string& failure) {
    if (outcome == EOutcome::done && !m_run.GetEnd().IsSuccess()) {
        outcome = EOutcome::failed;
        failure = DescribeEnd();
    }
    return true;
}

} // namespace Dialogue_Tarvel
