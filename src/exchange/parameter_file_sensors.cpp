#include "exchange/parameter_file_sensors.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace Persistance_Parametres {

using namespace Metier_Tarvel;
using pugi::xml_node;

namespace {

// One entry of a sensor's element: what comes under `name`, in either direction.
struct SEntry {
    const char* name;
    void (*exchange)(const CParameterExchange& exchange, xml_node sensorElement, const char* name,
                     CTrvSensor& sensor);
};

struct SSensorElement {
    ESensorKind kind;
    const char* name;
    std::span<const SEntry> entries; // in writing order, after the data source
};

void LeverArm(const CParameterExchange& exchange, xml_node element, const char* name, CTrvSensor& sensor) {
    exchange.Attributes(exchange.Element(element, name), *sensor.GetLeverArm());
}

void Misalignment(const CParameterExchange& exchange, xml_node element, const char* name,
                  CTrvSensor& sensor) {
    exchange.Attributes(exchange.Element(element, name), *sensor.GetMisalignment());
}

void ScaleFactor(const CParameterExchange& exchange, xml_node element, const char* name, CTrvSensor& sensor) {
    exchange.Text(element, name, *sensor.GetScaleFactor(), ENumberText::shortest);
}

// A lever arm, misalignment or bias that one class alone has.
template <class Sensor, class T, std::unique_ptr<T> Sensor::*Member>
void Triple(const CParameterExchange& exchange, xml_node element, const char* name, CTrvSensor& sensor) {
    exchange.Attributes(exchange.Element(element, name), *(static_cast<Sensor&>(sensor).*Member));
}

template <std::size_t Group>
void Rejections(const CParameterExchange& exchange, xml_node element, const char* name, CTrvSensor& sensor) {
    // An old project may hold a sensor with fewer groups than its kind has.
    if (sensor.rejectionGroups.size() <= Group) return;
    CTrvRejectionGroup& group = *sensor.rejectionGroups[Group];
    exchange.Elements(
        element, name, group.instructions, [&] { return group.AddInstruction(); },
        [&](xml_node child, CTrvRejectionInstruction& rejection) {
            exchange.Attribute(child, "mode", rejection.mode);
            exchange.Period(child, rejection);
        });
}

// The values that a user has defined. Values that come from the data have no element.
template <std::size_t Index>
void UserStdDev(const CParameterExchange& exchange, xml_node element, const char* name, CTrvSensor& sensor) {
    static constexpr const char* scalar[] = {"value"};
    static constexpr const char* vector[] = {"x", "y", "z"};
    static constexpr const char* position[] = {"lat", "lon", "cv", "alt"};
    CTrvStdDevInstruction& stdDev = *sensor.GetStdDevInstructions()[Index];
    const xml_node child = exchange.OptionalElement(element, name, stdDev.mode == stdDevUserDefined);
    if (!child) return;
    stdDev.mode = stdDevUserDefined;
    const int count = stdDev.GetValueCount();
    const char* const* names = count == 1 ? scalar : count == 3 ? vector : position;
    for (int i = 0; i < count; ++i) exchange.Attribute(child, names[i], stdDev.Value(i));
}

void MinimumStdDev(const CParameterExchange& exchange, xml_node element, const char* name,
                   CTrvSensor& sensor) {
    static constexpr const char* names[] = {"lat", "lon", "alt"};
    CTrvGpsStdDevThreshold& minimum = *static_cast<CTrvSensorGps&>(sensor).stdDevThreshold;
    exchange.Attributes(exchange.Element(element, name), names,
                        {&minimum.latitude, &minimum.longitude, &minimum.altitude});
}

// Bottom or water track: here the standard deviation comes first.
template <std::size_t Index>
void Track(const CParameterExchange& exchange, xml_node element, const char* name, CTrvSensor& sensor) {
    const xml_node track = exchange.OptionalElement(element, name, true);
    if (!track) return;
    UserStdDev<Index>(exchange, track, "userSd", sensor);
    Rejections<Index>(exchange, track, "rejection", sensor);
}

void Filters(const CParameterExchange& exchange, xml_node element, const char* name, CTrvSensor& sensor) {
    auto& usbl = static_cast<CTrvSensorUsbl&>(sensor);
    exchange.Elements(
        element, name, usbl.filteringInstructions, [&] { return usbl.AddFilteringInstruction(); },
        [&](xml_node child, CTrvHorizontalFilteringInstruction& filter) {
            double threshold = static_cast<double>(filter.threshold);
            exchange.Attribute(child, "value", threshold);
            if (std::fabs(threshold) > static_cast<double>(FLT_MAX)) CParameterExchange::Fail();
            filter.threshold = static_cast<float>(threshold);
            exchange.Period(child, filter);
        });
}

// Read where somebody has written it, but never written.
void TransponderCode(const CParameterExchange& exchange, xml_node element, const char* name,
                     CTrvSensor& sensor) {
    exchange.OptionalAttribute(element, name, static_cast<CTrvSensorUsbl&>(sensor).transponderCode, false);
}

void EventId(const CParameterExchange& exchange, xml_node element, const char* name, CTrvSensor& sensor) {
    exchange.Attribute(element, name, static_cast<CTrvSensorEventMarker&>(sensor).eventId);
}

using CMount = CTrvSensorPlatformOrientation;

constexpr SEntry kGps[] = {{"leverArm", LeverArm},
                           {"rejection", Rejections<0>},
                           {"userSd", UserStdDev<0>},
                           {"minimumSd", MinimumStdDev}};
constexpr SEntry kDvl[] = {
    {"leverArm", LeverArm},       {"misalignment", Misalignment},
    {"scaleFactor", ScaleFactor}, {"bias", Triple<CTrvSensorDvl, CTrvSpeedBias, &CTrvSensorDvl::speedBias>},
    {"bottomTrack", Track<0>},    {"waterTrack", Track<1>}};
constexpr SEntry kScalar[] = {
    {"leverArm", LeverArm}, {"rejection", Rejections<0>}, {"userSd", UserStdDev<0>}};
constexpr SEntry kUsbl[] = {{"leverArm", LeverArm},
                            {"rejection", Rejections<0>},
                            {"userSd", UserStdDev<0>},
                            {"filter", Filters},
                            {"transponderCode", TransponderCode}};
constexpr SEntry kOdometer[] = {{"leverArm", LeverArm},
                                {"misalignment", Misalignment},
                                {"scaleFactor", ScaleFactor},
                                {"rejection", Rejections<0>},
                                {"userSd", UserStdDev<0>}};
constexpr SEntry kMount[] = {
    {"bodyLeverArm", Triple<CMount, CLeverArm, &CMount::insLeverArm>},
    {"vehicleLeverArm", Triple<CMount, CLeverArm, &CMount::vehicleLeverArm>},
    {"bodyMisalignment", Triple<CMount, CMisalignment, &CMount::insMisalignment>},
    {"vehicleMisalignment", Triple<CMount, CMisalignment, &CMount::vehicleMisalignment>}};
constexpr SEntry kEventMarker[] = {{"eventId", EventId}};

constexpr SSensorElement kElements[] = {
    {ESensorKind::gps, "gps", kGps},
    {ESensorKind::dvl, "dvl", kDvl},
    {ESensorKind::emLog, "emLog", kScalar},
    {ESensorKind::depth, "depthSensor", kScalar},
    {ESensorKind::usbl, "usbl", kUsbl},
    {ESensorKind::lbl, "lbl", kScalar},
    {ESensorKind::odometer, "odometer", kOdometer},
    {ESensorKind::eventMarker, "eventMarker", kEventMarker},
    {ESensorKind::platformOrientation, "gyroStabilizedMount", kMount},
};
static_assert(std::size(kElements) == kSensorKindCount);
static_assert([] {
    for (std::size_t i = 0; i < std::size(kElements); ++i)
        if (static_cast<std::size_t>(kElements[i].kind) != i) return false;
    return true;
}());

void ExchangeSensor(const CParameterExchange& exchange, xml_node element, const SSensorElement& row,
                    CTrvSensor& sensor) {
    const xml_node source = exchange.Element(element, "dataSource");
    exchange.Channel(source, "path", sensor.channel);
    exchange.Seconds(source, "timeOffset", sensor.timeOffset);
    exchange.OptionalAttribute(source, "synchronizeOutput", sensor.synchronizedOutput,
                               sensor.synchronizedOutput);
    for (const SEntry& entry : row.entries) entry.exchange(exchange, element, entry.name, sensor);
}

} // namespace

void ExchangeSensors(const CParameterExchange& exchange, xml_node root,
                     CTrvSimulationParameters& parameters) {
    if (!exchange.IsLoading()) {
        for (const auto& sensor : parameters.sensors) {
            const auto& row = kElements[static_cast<std::size_t>(sensor->GetKind().kind)];
            ExchangeSensor(exchange, exchange.Element(root, row.name), row, *sensor);
        }
        return;
    }
    for (const xml_node element : root.children()) {
        if (element.type() != pugi::node_element) continue;
        const auto row = std::find_if(std::begin(kElements), std::end(kElements), [&](const auto& candidate) {
            return std::string_view(element.name()) == candidate.name;
        });
        if (row == std::end(kElements)) continue;
        CTrvSensor* sensor = parameters.AddSensor(row->kind);
        if (!sensor) CParameterExchange::Fail();
        ExchangeSensor(exchange, element, *row, *sensor);
    }
}

} // namespace Persistance_Parametres
