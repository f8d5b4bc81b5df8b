// What the aiding sensors of all kinds share, and the table of the kinds.
#pragma once

#include "foundation/text_id.h"
#include "model/instruction.h"
#include "model/std_dev_instruction.h"

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace Metier_Tarvel {

using Outils_Texte::EText;

enum class ESensorKind { gps, dvl, emLog, depth, usbl, lbl, odometer, eventMarker, platformOrientation };
inline constexpr int kSensorKindCount = 9;

struct SSensorKind {
    ESensorKind kind;
    std::string_view className;             // links the kind to channels
    EText label;                            // number of the text
    int maximum;                            // per project
    std::uint16_t channelType;              // type code of the channels that hold its data
    std::array<EText, 2> rejectionGroups{}; // names of the groups, "none" after the last
    std::unique_ptr<CTrvSensor> (*create)(CTrvSimulationParameters* owner) = nullptr;
};

// In the order of ESensorKind.
std::span<const SSensorKind> GetSensorKinds();
const SSensorKind& GetSensorKind(ESensorKind kind);
// Null for a name or code that no kind has.
const SSensorKind* FindSensorKind(std::string_view className);
const SSensorKind* FindSensorKindOfChannel(std::uint16_t channelType);

class CTrvSensor : public TRuntimeClass<CTrvSensor, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvSensor";

    CTrvSimulationParameters* owner = nullptr;
    CTrvDataFileChannel* channel = nullptr; // of some data file; may be null, and then the sensor has no data
    CDateTime timeOffset;                   // a signed length of time, see ToSpan
    std::vector<std::unique_ptr<CTrvRejectionGroup>> rejectionGroups;
    bool synchronizedOutput = false;

    virtual const SSensorKind& GetKind() const = 0;
    // The members that several kinds have; null for a kind without one.
    virtual CLeverArm* GetLeverArm() { return nullptr; }
    virtual CMisalignment* GetMisalignment() { return nullptr; }
    virtual double* GetScaleFactor() { return nullptr; } // a fraction, not percent
    // One for each weighted measurement, absent ones null.
    virtual std::array<CTrvStdDevInstruction*, 2> GetStdDevInstructions() { return {}; }

    // Takes what the INS configuration says of this sensor: from its section of the INI file, or from the
    // values of its index in the embedded configuration. False for a value that is missing and required or
    // does not convert; what was read before stays.
    virtual bool ReadFromWebConfiguration(const CInsWebConfigurationFile& file, int sensorIndex);
    virtual bool ReadFromIniFile(const CIniFile& file, std::string_view section);

    // Sets the back pointers of all that the sensor owns.
    virtual void Attach(CTrvSimulationParameters& parameters);

    void Serialize(CArchive& archive) override;

  protected:
    CTrvSensor() = default;
    // A new sensor with the rejection groups of its kind.
    void Create(CTrvSimulationParameters* parameters);
};

} // namespace Metier_Tarvel
