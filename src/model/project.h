// The root of a project file.
#pragma once

#include "model/dictionary/data_model.h"
#include "model/graph_settings.h"
#include "model/instant_values_settings.h"
#include "model/simulation_parameters.h"

namespace Metier_Tarvel {

// Owns all that it points to. UI thread only.
class CTrvProject : public TRuntimeClass<CTrvProject, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvProject";

    std::unique_ptr<CTrvSimulationParameters> simulationParameters;
    std::unique_ptr<Metier_Tarvel_DataModel::CTrvDataModel>
        dataModel; // not archived: rebuilt from the data files
    std::unique_ptr<Metier_Tarvel_Graphics::CTrv1DSettings> graphSettings;
    std::unique_ptr<Metier_Tarvel_InstantValues::CTrvInstantValuesSettings> instantValuesSettings;

    // What an archive starts from: parameters with two empty paths.
    CTrvProject();
    CTrvProject(std::filesystem::path mainPath, std::filesystem::path outputPath);
    explicit CTrvProject(std::unique_ptr<CTrvSimulationParameters> parameters);
    ~CTrvProject() override;

    // Reads the single object of a project file; null when the file holds null. Throws CArchiveException;
    // then no object is left. Storing is archive.WriteObject(project). The data model is empty after a
    // load.
    static std::unique_ptr<CTrvProject> Load(CArchive& archive);

    // As CTrvSimulationParameters::AddDataFile, and takes the file into the data model.
    CTrvDataFile* AddDataFile(const std::filesystem::path& path, bool expertMode);
    // Deletes an unreferenced external file, then the curves, layers and instant values on it. False when
    // refused.
    bool RemoveDataFile(CTrvDataFile* file);
    // A new data model of all files: main input, output, external. Always true.
    bool RebuildDataModel(bool expertMode);

    void Serialize(CArchive& archive) override;

  private:
    void Clear();
};

} // namespace Metier_Tarvel
