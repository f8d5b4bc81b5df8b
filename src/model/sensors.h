// The nine kinds of sensors. All members are owned; lever arms, misalignments and biases start at zero.
#pragma once

#include "model/sensor.h"

#include <string>

namespace Metier_Tarvel {

class CTrvSpeedBias : public TRuntimeClass<CTrvSpeedBias, Metier_Positioning::CTriple> {
  public:
    static constexpr std::string_view kClassName = "CTrvSpeedBias";

    double x = 0.0; // metres per second, vessel axes
    double y = 0.0;
    double z = 0.0;

  protected:
    double* GetValues(int index) override { return index == 0 ? &x : index == 1 ? &y : &z; }
};

class CTrvCurrentModeling : public TRuntimeClass<CTrvCurrentModeling, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvCurrentModeling";

    double time = 3600.0; // seconds
    double sigma = 0.0;   // metres per second

    void Serialize(CArchive& archive) override;
};

// States the parts that the kinds have in common.
template <class Self, ESensorKind Kind>
class TTrvSensorKind : public TRuntimeClass<Self, CTrvSensor> {
  public:
    static constexpr ESensorKind kKind = Kind;
    const SSensorKind& GetKind() const override { return GetSensorKind(Kind); }

  protected:
    TTrvSensorKind() = default;
};

// The kinds that have a lever arm and one weighted measurement.
template <class Self, ESensorKind Kind, class StdDev>
class TTrvWeightedSensor : public TTrvSensorKind<Self, Kind> {
  public:
    std::unique_ptr<CLeverArm> leverArm;
    std::unique_ptr<StdDev> stdDevInstruction;

    CLeverArm* GetLeverArm() override { return leverArm.get(); }
    std::array<CTrvStdDevInstruction*, 2> GetStdDevInstructions() override {
        return {stdDevInstruction.get()};
    }

  protected:
    explicit TTrvWeightedSensor(CTrvSimulationParameters* parameters) {
        this->Create(parameters);
        CreateMembers();
    }
    // New ones in the place of those held, as a new sensor has them.
    void CreateMembers() {
        leverArm = std::make_unique<CLeverArm>();
        stdDevInstruction = std::make_unique<StdDev>();
        stdDevInstruction->isDefault = true;
    }
};

class CTrvSensorGps : public TTrvWeightedSensor<CTrvSensorGps, ESensorKind::gps, CTrvGpsStdDevInstruction> {
  public:
    static constexpr std::string_view kClassName = "CTrvSensorGps";

    std::unique_ptr<CTrvGpsStdDevThreshold> stdDevThreshold = std::make_unique<CTrvGpsStdDevThreshold>();

    explicit CTrvSensorGps(CTrvSimulationParameters* parameters = nullptr) : TTrvWeightedSensor(parameters) {}
    void Serialize(CArchive& archive) override;
};

class CTrvSensorDvl : public TTrvSensorKind<CTrvSensorDvl, ESensorKind::dvl> {
  public:
    static constexpr std::string_view kClassName = "CTrvSensorDvl";

    std::unique_ptr<CLeverArm> leverArm;
    std::unique_ptr<CMisalignment> misalignment;
    double scaleFactor = 0.0; // a fraction
    std::unique_ptr<CTrvCurrentModeling> currentModeling;
    std::unique_ptr<CTrvSpeedBias> speedBias;
    std::unique_ptr<CTrvDvlStdDevInstruction> bottomTrackStdDevInstruction;
    std::unique_ptr<CTrvDvlStdDevInstruction> waterTrackStdDevInstruction;

    explicit CTrvSensorDvl(CTrvSimulationParameters* parameters = nullptr);
    CLeverArm* GetLeverArm() override { return leverArm.get(); }
    CMisalignment* GetMisalignment() override { return misalignment.get(); }
    double* GetScaleFactor() override { return &scaleFactor; }
    std::array<CTrvStdDevInstruction*, 2> GetStdDevInstructions() override {
        return {bottomTrackStdDevInstruction.get(), waterTrackStdDevInstruction.get()};
    }
    bool ReadFromWebConfiguration(const CInsWebConfigurationFile& file, int sensorIndex) override;
    bool ReadFromIniFile(const CIniFile& file, std::string_view section) override;
    void Attach(CTrvSimulationParameters& parameters) override;
    void Serialize(CArchive& archive) override;

  private:
    void CreateMembers();
};

// The kinds that have nothing else.
template <class Self, ESensorKind Kind, class StdDev>
class TTrvScalarSensor : public TTrvWeightedSensor<Self, Kind, StdDev> {
  public:
    void Serialize(CArchive& archive) override;

  protected:
    explicit TTrvScalarSensor(CTrvSimulationParameters* parameters)
        : TTrvWeightedSensor<Self, Kind, StdDev>(parameters) {}
};

class CTrvSensorEMLog
    : public TTrvScalarSensor<CTrvSensorEMLog, ESensorKind::emLog, CTrvEMLogStdDevInstruction> {
  public:
    static constexpr std::string_view kClassName = "CTrvSensorEMLog";
    explicit CTrvSensorEMLog(CTrvSimulationParameters* parameters = nullptr) : TTrvScalarSensor(parameters) {}
};

class CTrvSensorDepth
    : public TTrvScalarSensor<CTrvSensorDepth, ESensorKind::depth, CTrvDepthStdDevInstruction> {
  public:
    static constexpr std::string_view kClassName = "CTrvSensorDepth";
    explicit CTrvSensorDepth(CTrvSimulationParameters* parameters = nullptr) : TTrvScalarSensor(parameters) {}
};

class CTrvSensorLbl : public TTrvScalarSensor<CTrvSensorLbl, ESensorKind::lbl, CTrvLblStdDevInstruction> {
  public:
    static constexpr std::string_view kClassName = "CTrvSensorLbl";
    explicit CTrvSensorLbl(CTrvSimulationParameters* parameters = nullptr) : TTrvScalarSensor(parameters) {}
};

class CTrvSensorUsbl
    : public TTrvWeightedSensor<CTrvSensorUsbl, ESensorKind::usbl, CTrvUsblStdDevInstruction> {
  public:
    static constexpr std::string_view kClassName = "CTrvSensorUsbl";

    std::int32_t reserved = 0; // stored and restored; nothing reads it
    std::string transponderCode;
    std::vector<std::unique_ptr<CTrvHorizontalFilteringInstruction>> filteringInstructions;

    explicit CTrvSensorUsbl(CTrvSimulationParameters* parameters = nullptr)
        : TTrvWeightedSensor(parameters) {}
    // A new instruction of threshold 0 with an empty period; owned by the sensor.
    CTrvHorizontalFilteringInstruction* AddFilteringInstruction();
    // Deletes it; false if it is not of this sensor.
    bool RemoveFilteringInstruction(const CTrvHorizontalFilteringInstruction* instruction);

    bool ReadFromWebConfiguration(const CInsWebConfigurationFile& file, int sensorIndex) override;
    bool ReadFromIniFile(const CIniFile& file, std::string_view section) override;
    void Attach(CTrvSimulationParameters& parameters) override;
    void Serialize(CArchive& archive) override;
};

class CTrvSensorOdometer
    : public TTrvWeightedSensor<CTrvSensorOdometer, ESensorKind::odometer, CTrvOdometerStdDevInstruction> {
  public:
    static constexpr std::string_view kClassName = "CTrvSensorOdometer";

    std::unique_ptr<CMisalignment> misalignment = std::make_unique<CMisalignment>();
    double scaleFactor = 0.0; // a fraction

    explicit CTrvSensorOdometer(CTrvSimulationParameters* parameters = nullptr)
        : TTrvWeightedSensor(parameters) {}
    CMisalignment* GetMisalignment() override { return misalignment.get(); }
    double* GetScaleFactor() override { return &scaleFactor; }
    void Serialize(CArchive& archive) override;
};

class CTrvSensorEventMarker : public TTrvSensorKind<CTrvSensorEventMarker, ESensorKind::eventMarker> {
  public:
    static constexpr std::string_view kClassName = "CTrvSensorEventMarker";

    std::string eventId;

    explicit CTrvSensorEventMarker(CTrvSimulationParameters* parameters = nullptr);
    void Serialize(CArchive& archive) override;
};

class CTrvSensorPlatformOrientation
    : public TTrvSensorKind<CTrvSensorPlatformOrientation, ESensorKind::platformOrientation> {
  public:
    static constexpr std::string_view kClassName = "CTrvSensorPlatformOrientation";

    std::unique_ptr<CLeverArm> insLeverArm;
    std::unique_ptr<CLeverArm> vehicleLeverArm;
    std::unique_ptr<CMisalignment> insMisalignment;
    std::unique_ptr<CMisalignment> vehicleMisalignment;

    explicit CTrvSensorPlatformOrientation(CTrvSimulationParameters* parameters = nullptr);
    bool ReadFromIniFile(const CIniFile& file, std::string_view section) override;
    void Serialize(CArchive& archive) override;
};

} // namespace Metier_Tarvel
