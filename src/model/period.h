// A stretch of the recording and the instructions that the simulation parameters give by period.
#pragma once

#include "model/forward.h"

namespace Metier_Tarvel {

// `begin` and `end` count ticks since the origin of the main input file, or from the UTC reference of the
// simulation parameters once they have one. A new period is empty, at tick 0.
class CTrvPeriod : public TRuntimeClass<CTrvPeriod, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvPeriod";

    CDateTime begin;
    CDateTime end;

    void Serialize(CArchive& archive) override;
};

class CTrvOutputRate : public TRuntimeClass<CTrvOutputRate, CTrvPeriod> {
  public:
    static constexpr std::string_view kClassName = "CTrvOutputRate";

    double value = 10.0; // hertz

    void Serialize(CArchive& archive) override;
};

// The shape shared by the instructions that are a mode in a period.
class CTrvModePeriod : public TRuntimeClass<CTrvModePeriod, CTrvPeriod> {
  public:
    static constexpr std::string_view kClassName = "CTrvModePeriod";

    std::int32_t mode = 0;

    void Serialize(CArchive& archive) override;

  protected:
    CTrvModePeriod() = default;
};

// `mode`: EWordList::zuptMode.
class CTrvZupt : public TRuntimeClass<CTrvZupt, CTrvModePeriod> {
  public:
    static constexpr std::string_view kClassName = "CTrvZupt";
};

// `mode`: EWordList::altitudeMode.
class CTrvAltitudeMode : public TRuntimeClass<CTrvAltitudeMode, CTrvModePeriod> {
  public:
    static constexpr std::string_view kClassName = "CTrvAltitudeMode";
};

} // namespace Metier_Tarvel
