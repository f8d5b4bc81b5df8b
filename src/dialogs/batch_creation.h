// How a project comes into being from a batch command file (a processing parameter file), without dialogs.
#pragma once

#include "exchange/parameter_file.h"
#include "foundation/thread.h"
#include "model/project.h"

#include <filesystem>
#include <memory>
#include <optional>
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

    // What the input files say, in the order of their rows.
    struct SRecordings {
        std::vector<Outils_Temps::CDateTime>
            origins;                      // UTC instant of date zero; invalid for a file without one
        std::filesystem::path unreadable; // the first that is no recording or was given up, empty for none
        std::optional<std::int32_t> equipment; // of the first
    };
    // Searches the UTC dates in the first `maxPacketCount` packets of each. Once the event is set, it gives
    // up the file that it reads. Any thread.
    static SRecordings LookInto(const std::vector<Persistance_Parametres::SParameterFileRow>& files,
                                int maxPacketCount, const Outils::CEvent* interrupt = nullptr);
    // The project over the chosen files, by what they say; external files whose UTC is known are shifted
    // onto the clock of the main input file. Null on failure, and then no project is left.
    std::unique_ptr<Metier_Tarvel::CTrvProject> Create(const SRecordings& recordings,
                                                       std::string& message) const;

  private:
    Persistance_Parametres::CParameterFileReader m_reader;
    std::vector<Persistance_Parametres::SParameterFileRow> m_files;
    std::filesystem::path m_commandFile;
    std::string m_name;
    std::filesystem::path m_folder;
};

} // namespace Application_Tarvel
