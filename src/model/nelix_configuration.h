// What is known of the inertial unit of the recording: its model, its mounting and its reference points.
#pragma once

#include "model/sensors.h"

#include <optional>

namespace Metier_Tarvel {

// The model of the unit, as six codes from 1; 0 where it is not known.
class CTrvNelixType : public TRuntimeClass<CTrvNelixType, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvNelixType";

    std::int32_t equipment = 9;
    std::int32_t housing = 2;
    std::int32_t fog = 2;
    std::int32_t accelerometers = 1;
    std::int32_t saturation = 2;
    std::int32_t algorithm = 1;

    // All six fields from the equipment table; all 0 for a code that is not in it.
    void SetFromEquipment(std::int32_t equipmentCode);

    // The six fields in order, for lists of them.
    enum EField {
        fieldEquipment,
        fieldHousing,
        fieldFog,
        fieldAccelerometers,
        fieldSaturation,
        fieldAlgorithm
    };
    static constexpr int kFieldCount = 6;
    std::int32_t GetField(EField field) const;
    // The word for a field's value; "Unknow (%04Xh)" with a value that has none.
    std::string GetFieldText(EField field) const;

    void Serialize(CArchive& archive) override;
};

inline constexpr std::int32_t kRoughMisalignmentCount =
    24; // axis-aligned orientations of the unit on the vehicle

class CTrvNelixConfiguration : public TRuntimeClass<CTrvNelixConfiguration, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvNelixConfiguration";

    CTrvSimulationParameters* owner = nullptr; // not archived

    std::unique_ptr<CMisalignment> factoryMisalignment;
    std::int32_t roughMisalignment = 0; // 0 to 23
    std::unique_ptr<CMisalignment> fineMisalignment;
    std::unique_ptr<CMisalignment> userMisalignment;
    std::unique_ptr<CLeverArm> primaryLeverArm;
    std::unique_ptr<CLeverArm> secondaryLeverArmA;
    std::unique_ptr<CLeverArm> secondaryLeverArmB;
    std::unique_ptr<CLeverArm> secondaryLeverArmC;
    std::unique_ptr<CTrvCurrentModeling> currentModeling;
    std::unique_ptr<CTrvNelixType> type;
    std::int32_t imuCipherMode = 0; // as ReadImuCipherMode gave it for the main input file; not archived
    std::unique_ptr<CLeverArm> cogLeverArm;

    explicit CTrvNelixConfiguration(CTrvSimulationParameters* parameters = nullptr);

    // Takes the mounting, reference points and model that a configuration file gives. False at the first
    // value that is missing and required or does not convert; what was read before stays.
    bool ReadIni(const CIniFile& file);
    bool ReadWebConfiguration(const CInsWebConfigurationFile& file);

    void Serialize(CArchive& archive) override;

  private:
    void CreateMembers();
};

} // namespace Metier_Tarvel
