#include "model/project.h"

#include "model/loading.h"

namespace Metier_Tarvel {

using Metier_Tarvel_DataModel::CTrvDataModel;
using Metier_Tarvel_Graphics::CTrv1DSettings;
using Metier_Tarvel_InstantValues::CTrvInstantValuesSettings;
using Outils_Objets::CSchema;

CTrvProject::CTrvProject() : CTrvProject(std::make_unique<CTrvSimulationParameters>()) {}

CTrvProject::CTrvProject(std::filesystem::path mainPath, std::filesystem::path outputPath)
    : CTrvProject(std::make_unique<CTrvSimulationParameters>(std::move(mainPath), std::move(outputPath))) {}

CTrvProject::CTrvProject(std::unique_ptr<CTrvSimulationParameters> parameters)
    : simulationParameters(std::move(parameters)),
      dataModel(std::make_unique<CTrvDataModel>()),
      graphSettings(std::make_unique<CTrv1DSettings>(*this)),
      instantValuesSettings(std::make_unique<CTrvInstantValuesSettings>(*this)) {}

CTrvProject::~CTrvProject() { Clear(); }

// Curves, layers and values go before the files that they point to.
void CTrvProject::Clear() {
    instantValuesSettings.reset();
    graphSettings.reset();
    dataModel.reset();
    simulationParameters.reset();
}

void CTrvProject::Serialize(CArchive& archive) {
    CSchema schema(archive, 3);
    if (archive.IsLoading()) Clear();
    CTrvObject::Serialize(archive);
    RequiredMember(schema, simulationParameters);
    RequiredMember(schema, graphSettings);
    if (archive.IsLoading()) {
        dataModel = std::make_unique<CTrvDataModel>();
        instantValuesSettings = std::make_unique<CTrvInstantValuesSettings>(*this);
    }
    RequiredMember(schema.Since(3), instantValuesSettings);
}

std::unique_ptr<CTrvProject> CTrvProject::Load(CArchive& archive) {
    auto* root = archive.ReadObject<CTrvProject>();
    if (!root) return nullptr;
    archive.Claim(root).release();
    std::unique_ptr<CTrvProject> project(root);
    project->simulationParameters->Settle(archive.TakeUnclaimed());
    project->graphSettings->Attach(*project);
    project->instantValuesSettings->Attach(*project);
    return project;
}

CTrvDataFile* CTrvProject::AddDataFile(const std::filesystem::path& path, bool expertMode) {
    CTrvDataFile* file = simulationParameters ? simulationParameters->AddDataFile(path) : nullptr;
    if (file && dataModel) dataModel->BuildFromFile(*file, expertMode);
    return file;
}

bool CTrvProject::RemoveDataFile(CTrvDataFile* file) {
    if (!simulationParameters || !simulationParameters->RemoveDataFile(file)) return false;
    graphSettings->ForgetDataFile(file);
    dataModel->RemoveLayers(file);
    instantValuesSettings->ForgetDataFile(file);
    return true;
}

bool CTrvProject::RebuildDataModel(bool expertMode) {
    dataModel = std::make_unique<CTrvDataModel>();
    for (CTrvDataFile* file : simulationParameters->GetDataFiles())
        dataModel->BuildFromFile(*file, expertMode);
    return true;
}

} // namespace Metier_Tarvel
