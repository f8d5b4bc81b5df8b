#include "model/std_dev_instruction.h"

#include "foundation/serialize.h"
#include "foundation/texts.h"
#include "model/sensors.h"

namespace Metier_Tarvel {

using Outils_Objets::CSchema;
using Outils_Objets::SerializeUnchanged;

namespace {

// Numbers of the texts.
constexpr EText kScalarLabels[] = {EText::value};
constexpr EText kPositionLabels[] = {EText::latitude, EText::longitude, EText::crossvariance,
                                     EText::altitude};
constexpr EText kVectorLabels[] = {EText::axisX, EText::axisY, EText::axisZ};
constexpr EText kOdometerLabels[] = {EText::valueX, EText::valueY, EText::valueZ};

} // namespace

void CTrvStdDevInstruction::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    SerializeFields(schema);
}

void CTrvStdDevInstruction::SerializeFields(CSchema& schema) {
    CTrvPeriod::Serialize(schema.GetArchive());
    schema.Field(isDefault);
    schema.Field(mode);
    for (int i = 0; i < GetValueCount(); ++i) schema.Field(Value(i));
}

void CTrvDvlStdDevInstruction::Serialize(CArchive& archive) {
    CSchema schema(archive, 2);
    SerializeFields(schema);
    schema.Since(2).Reference(sensor);
}

std::span<const EText> CTrvScalarStdDev::GetValueLabels() const { return kScalarLabels; }
std::span<const EText> CTrvPositionStdDev::GetValueLabels() const { return kPositionLabels; }
std::span<const EText> CTrvVectorStdDev::GetValueLabels() const { return kVectorLabels; }
std::span<const EText> CTrvOdometerStdDevInstruction::GetValueLabels() const { return kOdometerLabels; }

double& CTrvPositionStdDev::Value(int index) {
    double* const values[] = {&latitude, &longitude, &crossvariance, &altitude};
    return *values[index];
}

double& CTrvVectorStdDev::Value(int index) {
    double* const values[] = {&x, &y, &z};
    return *values[index];
}

CTrvOdometerStdDevInstruction::CTrvOdometerStdDevInstruction() {
    x = 0.1;
    y = 0.05;
    z = 0.05;
}

void CTrvGpsStdDevThreshold::Serialize(CArchive& archive) {
    SerializeUnchanged<CTrvObject>(archive, *this, latitude, longitude, altitude);
}

} // namespace Metier_Tarvel
