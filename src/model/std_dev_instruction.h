// How the measurements of a sensor are weighted. Each such member of a sensor has one instruction; it
// is made and destroyed with the sensor.
#pragma once

#include "foundation/text_id.h"
#include "model/period.h"

#include <span>

namespace Outils_Objets {
class CSchema;
}

namespace Metier_Tarvel {

using Outils_Texte::EText;

class CTrvStdDevInstruction : public TRuntimeClass<CTrvStdDevInstruction, CTrvPeriod> {
  public:
    static constexpr std::string_view kClassName = "CTrvStdDevInstruction";

    bool isDefault = false; // covers the whole simulation: the period does not count
    std::int32_t mode = 0;  // EWordList::stdDevMode, for an odometer EWordList::odometerStdDevMode

    // The number of the text of each value, in archive order: labels of one instruction, count of its values.
    virtual std::span<const EText> GetValueLabels() const = 0;
    // REQUIRES: 0 <= index < GetValueLabels().size().
    virtual double& Value(int index) = 0;
    double GetValue(int index) const { return const_cast<CTrvStdDevInstruction*>(this)->Value(index); }
    int GetValueCount() const { return static_cast<int>(GetValueLabels().size()); }

    void Serialize(CArchive& archive) override;

  protected:
    CTrvStdDevInstruction() = default;
    // What follows the version: the period, then the fields.
    void SerializeFields(Outils_Objets::CSchema& schema);
};

class CTrvScalarStdDev : public TRuntimeClass<CTrvScalarStdDev, CTrvStdDevInstruction> {
  public:
    static constexpr std::string_view kClassName = "CTrvScalarStdDev";

    double value = 0.0;

    std::span<const EText> GetValueLabels() const override;
    double& Value(int) override { return value; }

  protected:
    CTrvScalarStdDev() = default;
};

class CTrvPositionStdDev : public TRuntimeClass<CTrvPositionStdDev, CTrvStdDevInstruction> {
  public:
    static constexpr std::string_view kClassName = "CTrvPositionStdDev";

    double latitude = 0.0;
    double longitude = 0.0;
    double crossvariance = 0.0;
    double altitude = 0.0;

    std::span<const EText> GetValueLabels() const override;
    double& Value(int index) override;

  protected:
    CTrvPositionStdDev() = default;
};

class CTrvVectorStdDev : public TRuntimeClass<CTrvVectorStdDev, CTrvStdDevInstruction> {
  public:
    static constexpr std::string_view kClassName = "CTrvVectorStdDev";

    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    std::span<const EText> GetValueLabels() const override;
    double& Value(int index) override;

  protected:
    CTrvVectorStdDev() = default;
};

class CTrvDepthStdDevInstruction : public TRuntimeClass<CTrvDepthStdDevInstruction, CTrvScalarStdDev> {
  public:
    static constexpr std::string_view kClassName = "CTrvDepthStdDevInstruction";
};

class CTrvEMLogStdDevInstruction : public TRuntimeClass<CTrvEMLogStdDevInstruction, CTrvScalarStdDev> {
  public:
    static constexpr std::string_view kClassName = "CTrvEMLogStdDevInstruction";
};

class CTrvLblStdDevInstruction : public TRuntimeClass<CTrvLblStdDevInstruction, CTrvScalarStdDev> {
  public:
    static constexpr std::string_view kClassName = "CTrvLblStdDevInstruction";
};

class CTrvGpsStdDevInstruction : public TRuntimeClass<CTrvGpsStdDevInstruction, CTrvPositionStdDev> {
  public:
    static constexpr std::string_view kClassName = "CTrvGpsStdDevInstruction";
};

class CTrvUsblStdDevInstruction : public TRuntimeClass<CTrvUsblStdDevInstruction, CTrvPositionStdDev> {
  public:
    static constexpr std::string_view kClassName = "CTrvUsblStdDevInstruction";
};

class CTrvDvlStdDevInstruction : public TRuntimeClass<CTrvDvlStdDevInstruction, CTrvVectorStdDev> {
  public:
    static constexpr std::string_view kClassName = "CTrvDvlStdDevInstruction";

    CTrvSensorDvl* sensor = nullptr; // the owner

    void Serialize(CArchive& archive) override;
};

class CTrvOdometerStdDevInstruction : public TRuntimeClass<CTrvOdometerStdDevInstruction, CTrvVectorStdDev> {
  public:
    static constexpr std::string_view kClassName = "CTrvOdometerStdDevInstruction";

    CTrvOdometerStdDevInstruction();

    std::span<const EText> GetValueLabels() const override;
};

// The least standard deviations that are believed of a GPS. Not a period.
class CTrvGpsStdDevThreshold : public TRuntimeClass<CTrvGpsStdDevThreshold, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvGpsStdDevThreshold";

    double latitude = 0.03;  // metres
    double longitude = 0.03; // metres
    double altitude = 0.03;  // metres

    void Serialize(CArchive& archive) override;
};

} // namespace Metier_Tarvel
