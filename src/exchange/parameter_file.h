// The processing parameter file: a run described in XML, for processing outside the application.
//
// The file does not hold all of the parameters: it lacks the UTC reference, the time offsets of data files,
// the transponder code of a USBL, unused standard deviations, and the periods of used ones. The reader takes
// a transponder code and time offsets of external files if they are there.
#pragma once

#include "model/simulation_parameters.h"

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace pugi {
class xml_document;
}

namespace Persistance_Parametres {

using Metier_Tarvel::CTrvSimulationParameters;

// The reader refuses a larger file, and the writer writes none.
inline constexpr std::size_t kMaximumParameterFileSize = 16 << 20; // bytes

// Replaces the file in one step. Its paths are relative to its folder where that is possible. Periods are
// dates when the parameters have a UTC reference, else seconds. False, with an existing file as it was, on
// any failure, also for values that the file cannot hold: NaN, a sensor without a channel of an input file, a
// name that is not text.
bool WriteParameterFile(const std::filesystem::path& path, const CTrvSimulationParameters& parameters);

// One data file that a parameter file names.
struct SParameterFileRow {
    std::string id;             // "main", "file02", ..., "output"
    std::filesystem::path path; // absolute: a relative one is joined to the folder of the file
    bool isOutput = false;
};

// Files to use in the place of the named ones, by id.
using CChosenPaths = std::map<std::string, std::filesystem::path, std::less<>>;

// Reads in two steps, since the dates in a file need the UTC reference of the recording that it names.
class CParameterFileReader {
  public:
    CParameterFileReader();
    ~CParameterFileReader();

    // False when the file cannot be read, is no parameter file, or does not name an input and an output file,
    // each file under an id of its own. What was loaded before is dropped in any case.
    bool Load(const std::filesystem::path& path);

    // The main input file, the external files, the output file. Empty while nothing is loaded.
    const std::vector<SParameterFileRow>& GetFiles() const { return m_files; }

    // New parameters, with `utcReference` (the UTC date of tick 0) as their reference when it is valid;
    // without one a file with dates cannot be read. Null when anything that a writer always writes is
    // missing, a value cannot be read, an external file is named twice or cannot be opened, a sensor is one
    // too many of its kind or the main input file has no channel of that kind, or its channel is not found.
    std::unique_ptr<CTrvSimulationParameters>
    Read(const CChosenPaths& chosen = {},
         Outils_Temps::CDateTime utcReference = Outils_Temps::CDateTime::Invalid()) const;

  private:
    void ReadFiles(const std::filesystem::path& folder);

    std::unique_ptr<pugi::xml_document> m_document;
    std::vector<SParameterFileRow> m_files;
};

} // namespace Persistance_Parametres
