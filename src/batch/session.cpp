#include "batch/session.h"

#include "batch/file_access.h"
#include "config/settings_files.h"
#include "foundation/files.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

namespace Batch {

using Outils_Configuration::Cnf;

namespace {

constexpr const char* kWindowProgram = "VarneNav"; // its settings are the batch program's too

} // namespace

CSettings::CSettings() {
    auto program = Outils_Fichiers::GetExecutablePath();
    if (!program.empty()) program.replace_filename(kWindowProgram);
    const Outils_Configuration::CSettingsFiles files(program, Outils_Configuration::FindUserSettingsFolder());
    static_cast<void>(files.Load(*this)); // the defaults serve as well
}

void ConfigureAdaptors(Outils_Valeurs::CTrvAdaptors& adaptors) { adaptors.Configure(CSettings()); }

CSession::CSession(SStreams streams, IReport* report)
    : m_streams(streams),
      m_errorLines(streams.error),
      m_host(streams, report ? *report : m_errorLines),
      m_document(m_host, m_host.GetQueue(), m_settings, m_settings.Get(Cnf<"general/expertMode">)) {}

bool CSession::Open(const std::string& path) {
    if (!CheckFile(path, FindProjectFault, m_streams)) return false;
    if (!m_document.OpenDocument(Outils_Fichiers::FromText(path))) return false;
    if (!m_document.GetProject()) Fail(path, EText::projectWithoutContent, m_streams);
    return m_document.GetProject() != nullptr;
}

bool CSession::Create(std::unique_ptr<Metier_Tarvel::CTrvProject> project, const std::filesystem::path& path,
                      Application_Tarvel::CTrvDocument::EResultName resultName) {
    if (!m_document.NewFromProject(std::move(project), path, resultName)) return false;
    WaitForAnalysis();
    return !m_document.IsModified() || m_document.SaveNew(path, resultName);
}

void CSession::WaitForAnalysis() {
    while (m_document.IsAnalysing()) m_host.GetQueue().RunOne(std::chrono::milliseconds(50));
    m_host.GetQueue().RunPending();
}

} // namespace Batch
