// One project document without a screen, with the settings beside the program.
#pragma once

#include "batch/batch_host.h"
#include "config/config_file.h"
#include "document/document.h"
#include "values/adaptors.h"

namespace Batch {

// The settings of the window's program, which is in the same folder; without its files the defaults hold.
class CSettings final : public Outils_Configuration::CTrvCnfConfigFile {
  public:
    CSettings();
};

// Sets adaptors up from those settings, for commands that need no document.
void ConfigureAdaptors(Outils_Valeurs::CTrvAdaptors& adaptors);

class CSession {
  public:
    // The application's own lines go to the error stream: a command's output is for the next program.
    explicit CSession(SStreams streams) : CSession(streams, nullptr) {}
    // They go to the report, which must outlive the session.
    CSession(SStreams streams, IReport& report) : CSession(streams, &report) {}

    CBatchHost& GetHost() { return m_host; }
    Application_Tarvel::CTrvDocument& GetDocument() { return m_document; }
    const Outils_Configuration::CTrvCnfConfigFile& GetConfiguration() const { return m_settings; }

    // False, with the reason reported, when the file is no project, or one without content.
    bool Open(const std::string& path);
    // Opens a new project and saves it, with the sensors that the analysis of its recording adds. False, with
    // the reason reported, when it could not be saved.
    bool Create(std::unique_ptr<Metier_Tarvel::CTrvProject> project, const std::filesystem::path& path,
                Application_Tarvel::CTrvDocument::EResultName resultName);
    // Returns when the analysis of every data file has ended and the document has its findings.
    void WaitForAnalysis();

  private:
    CSession(SStreams streams, IReport* report);

    SStreams m_streams;
    CLineReport m_errorLines;
    const CSettings m_settings;
    CBatchHost m_host;
    Application_Tarvel::CTrvDocument m_document;
};

} // namespace Batch
