#include "model/dictionary/visibility.h"

#include <algorithm>
#include <span>

namespace Metier_Tarvel_DataModel {

using namespace Persistance_Xpf;

namespace {

using Names = std::span<const std::string_view>;

// One packet type and version: the fields that differ from `others`. The fields are those of the current
// layout, less `absent` and with `added`.
struct SBlock {
    EFileKind kind;
    std::uint16_t type;
    std::uint32_t version;
    EVisibility others;
    Names hidden;
    Names expertOnly = {};
    Names absent = {};
    Names added = {};
};

constexpr std::string_view kDate[] = {"Date"};
constexpr std::string_view kMeasureHidden[] = {"Date", "Delay", "Rejection"};
constexpr std::string_view kImuHidden[] = {"Date", "FrameCounter", "System type", "Data type"};
constexpr std::string_view kGpsHidden[] = {"Date", "Delay", "Horizontal rejection", "Vertical rejection",
                                           "GPS mode"};
constexpr std::string_view kUsblHidden[] = {"Date", "Delay", "Horizontal rejection", "Vertical rejection",
                                            "Beacon"};
constexpr std::string_view kLblHidden[] = {"Date", "Delay", "Rejection", "Beacon"};
constexpr std::string_view kNavHidden[] = {"Date", "Algorithm status 1", "Algorithm status 2",
                                           "Algorithm status 3"};
constexpr std::string_view kStdHidden[] = {
    "Date",     "Sensor",     "SensorData", "UTC Year",           "UTC Month",          "UTC Day",
    "UTC Hour", "UTC Minute", "UTC Second", "Algorithm status 1", "Algorithm status 2", "Algorithm status 3",
};
constexpr std::string_view kExtExpert[] = {
    "Acc bias X", "Acc bias Y", "Acc bias Z", "Gyro bias X", "Gyro bias Y", "Gyro bias Z",
};

constexpr std::string_view kTemperatures[] = {"Temperatures"};
constexpr std::string_view kGeoid[] = {"Geoidal sep"};
constexpr std::string_view kDrift[] = {"Realtime drift"};
constexpr std::string_view kOdometerNow[] = {"Measure", "Std. dev. measure"};
constexpr std::string_view kOdometerThen[] = {"Distance", "Std. dev. distance"};
constexpr std::string_view kCounter[] = {"Counter"};
constexpr std::string_view kNavNow[] = {"Algorithm status 1",
                                        "Algorithm status 2",
                                        "Algorithm status 3",
                                        "Roll",
                                        "Pitch",
                                        "Speed north",
                                        "Speed east",
                                        "Speed up"};
constexpr std::string_view kNavThen[] = {"Speed"};
constexpr std::string_view kSensor[] = {"Sensor", "SensorData"};
// The states have no layout: they are never decoded.
constexpr std::string_view kStates[] = {"Date", "Vector size", "Vector", "Matrix size", "Matrix"};

constexpr auto kVisible = EVisibility::visible;
constexpr auto kIn = EFileKind::tarin;
constexpr auto kOut = EFileKind::tarout;

constexpr SBlock kBlocks[] = {
    {kIn, typeImu, 2, kVisible, kImuHidden},
    {kIn, typeImu, 1, kVisible, kImuHidden, kTemperatures, {}, kTemperatures},
    {kIn, typeDvl, 1, kVisible, kMeasureHidden},
    {kIn, typeEMLog, 1, kVisible, kMeasureHidden},
    {kIn, typeGps, 2, kVisible, kGpsHidden},
    {kIn, typeGps, 1, kVisible, kGpsHidden, {}, kGeoid},
    {kIn, typeDepth, 1, kVisible, kMeasureHidden},
    {kIn, typeUsbl, 1, kVisible, kUsblHidden},
    {kIn, typeLbl, 1, kVisible, kLblHidden},
    {kIn, typeUtc, 2, kVisible, kMeasureHidden, kDrift},
    {kIn, typeUtc, 1, kVisible, kMeasureHidden, {}, kDrift},
    {kIn, typeOdometer, 2, kVisible, kMeasureHidden},
    {kIn, typeOdometer, 1, kVisible, kMeasureHidden, {}, kOdometerNow, kOdometerThen},
    {kIn, typeSynchro, 2, kVisible, kMeasureHidden},
    {kIn, typeSynchro, 1, kVisible, kMeasureHidden, {}, kCounter},
    {kIn, typeNelixNav, 2, kVisible, kNavHidden},
    {kIn, typeNelixNav, 1, kVisible, kDate, {}, kNavNow, kNavThen},
    {kIn, typeTemperature, 1, EVisibility::expertOnly, kDate},
    {kIn, typePlatformOrientation, 1, kVisible, kDate},
    {kOut, typeMorvexStd, 2, kVisible, kStdHidden},
    {kOut, typeMorvexStd, 1, kVisible, kStdHidden, {}, kSensor},
    {kOut, typeMorvexMsg, 1, EVisibility::hidden, {}},
    {kOut, typeMorvexExt, 1, EVisibility::hidden, {}, kExtExpert},
    {kOut, typeMorvexSta, 1, EVisibility::hidden, {}, {}, {}, kStates},
};

bool Contains(Names names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// The first IMU packets had three status words of which the present layout keeps none by name.
bool IsFormerImuStatus(const SBlock& block, std::string_view name) {
    return block.type == typeImu && block.version == 1 && name.find("tatus") != std::string_view::npos;
}

} // namespace

EVisibility GetVisibility(EFileKind kind, std::uint16_t packetType, std::uint32_t version,
                          std::string_view name) {
    const auto block = std::find_if(std::begin(kBlocks), std::end(kBlocks), [&](const SBlock& candidate) {
        return candidate.kind == kind && candidate.type == packetType && candidate.version == version;
    });
    if (block == std::end(kBlocks) || Contains(block->absent, name)) return EVisibility::expertOnly;
    if (Contains(block->hidden, name)) return EVisibility::hidden;
    if (Contains(block->expertOnly, name)) return EVisibility::expertOnly;
    if (Contains(block->added, name)) return block->others;

    const SPacketLayout* layout = FindPacketLayout(packetType);
    const bool known =
        layout && std::any_of(layout->fields.begin(), layout->fields.end(),
                              [name](const SFieldLayout& field) { return field.name == name; });
    if (known) return block->others;
    return IsFormerImuStatus(*block, name) ? EVisibility::hidden : EVisibility::expertOnly;
}

} // namespace Metier_Tarvel_DataModel
