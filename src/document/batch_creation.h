// How a project comes into being from a batch command file (a processing parameter file), without dialogs.
#pragma once

#include "model/project.h"
#include "processing/parameter_file.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace Application_Tarvel {

// The choices behind the dialog "New project from batch parameters". Used on the UI thread; every failure
// gives the message to show.
class CBatchCreation {
  public:
    // Reads the rows and proposes name and folder of the project.
    bool Load(const std::filesystem::path& commandFile, std::string& message);

    // The files that the command file names: the main input file, the external files, the output file. The
    // user may change their paths, but nothing else.
    const std::vector<Persistance_Parametres::SParameterFileRow>& GetFiles() const { return m_files; }
    // Puts another file in the place of one; false when no row has this id.
    bool ChooseFile(std::string_view id, const std::filesystem::path& path);

    const std::string& GetProposedName() const { return m_name; }
    const std::filesystem::path& GetProposedFolder() const { return m_folder; }

    // The project over the chosen files. The UTC reference is searched in the first `maxPacketCount` packets
    // of the main input file; external files whose UTC is known are shifted onto its clock. Null on failure,
    // and then nothing is left behind.
    std::unique_ptr<Metier_Tarvel::CTrvProject> Create(int maxPacketCount, std::string& message) const;

  private:
    Persistance_Parametres::CParameterFileReader m_reader;
    std::vector<Persistance_Parametres::SParameterFileRow> m_files;
    std::filesystem::path m_commandFile;
    std::string m_name;
    std::filesystem::path m_folder;
};

} // namespace Application_Tarvel
