// The instructions that a sensor owns in any number: rejections in groups, and the filtering of a USBL.
#pragma once

#include "model/period.h"

#include <memory>
#include <string>
#include <vector>

namespace Metier_Tarvel {

class CTrvRejectionInstruction : public TRuntimeClass<CTrvRejectionInstruction, CTrvPeriod> {
  public:
    static constexpr std::string_view kClassName = "CTrvRejectionInstruction";

    CTrvRejectionGroup* group = nullptr; // the owner
    std::int32_t mode = 0;               // EWordList::rejectionMode

    void Serialize(CArchive& archive) override;
};

class CTrvRejectionGroup : public TRuntimeClass<CTrvRejectionGroup, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvRejectionGroup";

    CTrvSensor* sensor = nullptr; // the owner
    std::string name;             // fixed by the kind of the sensor
    std::vector<std::unique_ptr<CTrvRejectionInstruction>> instructions;

    CTrvRejectionGroup() = default;
    CTrvRejectionGroup(CTrvSensor& owner, std::string groupName)
        : sensor(&owner), name(std::move(groupName)) {}

    // A new instruction of mode 0 with an empty period; owned by the group.
    CTrvRejectionInstruction* AddInstruction();
    // Deletes it; false if it is not of this group.
    bool RemoveInstruction(const CTrvRejectionInstruction* instruction);

    void Serialize(CArchive& archive) override;
};

class CTrvHorizontalFilteringInstruction
    : public TRuntimeClass<CTrvHorizontalFilteringInstruction, CTrvPeriod> {
  public:
    static constexpr std::string_view kClassName = "CTrvHorizontalFilteringInstruction";

    CTrvSensorUsbl* sensor = nullptr; // the owner
    float threshold = 0.0f;           // 0 and above are valid

    void Serialize(CArchive& archive) override;
};

} // namespace Metier_Tarvel
