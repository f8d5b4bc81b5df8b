// One project document without a screen, from the settings file beside the program.
#pragma once

#include "batch/batch_host.h"
#include "config/config_file.h"
#include "document/document.h"
#include "values/adaptors.h"

namespace Batch {

// The settings of the application, which stands in the same folder; without its file the defaults hold.
void LoadSettings(Outils_Configuration::CTrvCnfConfigFile& configuration);
// Sets adaptors up from those settings, for commands that need no document.
void ConfigureAdaptors(Outils_Valeurs::CTrvAdaptors& adaptors);

class CSession {
  public:
    // The application's own lines go to the error stream: a command's output is for the next program.
    explicit CSession(SStreams streams) : CSession(streams, streams.error) {}
    CSession(SStreams streams, std::ostream& lines);

    CBatchHost& GetHost() { return m_host; }
    Application_Tarvel::CTrvDocument& GetDocument() { return m_document; }
    const Outils_Configuration::CTrvCnfConfigFile& GetConfiguration() const { return m_configuration; }

    // False, with the reason told, when the file is no project.
    bool Open(const std::string& path);
    // Until the analysis of every data file has come to its end, and the document knows what it found.
    void WaitForAnalysis();

  private:
    Outils_Configuration::CTrvCnfConfigFile m_configuration;
    CBatchHost m_host;
    Application_Tarvel::CTrvDocument m_document;
};

} // namespace Batch
