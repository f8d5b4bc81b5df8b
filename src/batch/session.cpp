#include "batch/session.h"

#include "batch/file_access.h"
#include "foundation/files.h"
#include "foundation/paths.h"

namespace Batch {

void LoadSettings(Outils_Configuration::CTrvCnfConfigFile& configuration) {
    const auto program = Outils_Fichiers::GetExecutablePath();
    if (program.empty()) return;
    static_cast<void>(configuration.Load(program.parent_path() / "VarneNav.conf.xml"));
}

void ConfigureAdaptors(Outils_Valeurs::CTrvAdaptors& adaptors) {
    Outils_Configuration::CTrvCnfConfigFile configuration;
    LoadSettings(configuration);
    adaptors.Configure(configuration);
}

CSession::CSession(SStreams streams, IReport* report)
    : m_streams(streams),
      m_errorLines(streams.error),
      m_host(streams, report ? *report : m_errorLines),
      m_document(m_host, m_host.GetQueue(), m_configuration) {
    LoadSettings(m_configuration);
}

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
