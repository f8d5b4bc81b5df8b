#include "model/loading.h"
#include "model/rules/rule.h"
#include "model/simulation_parameters.h"

namespace Metier_Tarvel {

using Outils_Objets::AfxThrowArchiveException;
using Outils_Objets::CArchiveException;
using Outils_Objets::CObject;
using Outils_Objets::CSchema;

void CTrvSimulationParameters::Clear() {
    externalFiles.clear();
    outputFile.reset();
    mainInputFile.reset();
    nelixConfiguration.reset();
    sensors.clear();
    altitudeModes.clear();
    zupts.clear();
    outputRates.clear();
    m_kept.clear();
}

void CTrvSimulationParameters::Serialize(CArchive& archive) {
    CSchema schema(archive, 4);
    if (archive.IsLoading()) {
        Clear();
        heaveAlgorithm = heaveNone;
        heaveSeaState = 1;
        gpsAltitudeReference = altitudeGeoid;
    }
    CTrvObject::Serialize(archive);
    schema.Field(algorithm);
    schema.Since(4).Field(heaveAlgorithm);
    schema.Since(4).Field(heaveSeaState);
    schema.Since(3).Field(gpsAltitudeReference);
    schema.InPlace(referencePosition);
    schema.Field(defaultOutputRate);
    schema.Field(begin);
    schema.Field(end);
    schema.OwnedList(outputRates);
    schema.OwnedList(zupts);
    schema.Since(2).OwnedList(altitudeModes);
    schema.OwnedList(sensors);
    RequiredMember(schema, nelixConfiguration);
    RequiredMember(schema, mainInputFile);
    RequiredMember(schema, outputFile);
    schema.OwnedList(externalFiles);
    schema.Field(hasUtcReference);
    schema.Field(utcReference);
}

std::unique_ptr<CTrvSimulationParameters> CTrvSimulationParameters::Load(CArchive& archive) {
    auto* root = archive.ReadObject<CTrvSimulationParameters>();
    if (!root) return nullptr;
    archive.Claim(root).release();
    std::unique_ptr<CTrvSimulationParameters> parameters(root);
    parameters->Settle(archive.TakeUnclaimed());
    return parameters;
}

void CTrvSimulationParameters::Settle(std::vector<std::unique_ptr<CObject>> unclaimed) {
    std::vector<CTrvDataFile*> files = GetDataFiles();
    CTrvDataFile::CUnclaimed rest;
    for (auto& object : unclaimed) {
        if (object->IsKindOf(CTrvDataFile::Class()))
            files.push_back(static_cast<CTrvDataFile*>(object.get()));
        const CObject* address = object.get();
        rest.emplace(address, std::move(object));
    }
    for (CTrvDataFile* file : files) {
        file->AdoptChannels(rest);
        file->owner = this;
    }
    for (auto& [address, object] : rest) m_kept.push_back(std::move(object));

    nelixConfiguration->owner = this;
    for (const auto& sensor : sensors) {
        sensor->Attach(*this);
        const CTrvDataFileChannel* channel = sensor->channel;
        if (channel && (!channel->file || channel->file->owner != this))
            AfxThrowArchiveException(CArchiveException::badIndex);
    }
}

} // namespace Metier_Tarvel
