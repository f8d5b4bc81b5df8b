// The rows of the settings file: {section path, key, kind, default text, help, range, unit, form}.
//
// Sections appear in the file in the order in which the rows first name them. A new key is one new row.
#pragma once

#include "config/enumerations.h"
#include "config/xml_config.h"
#include "foundation/texts.h"

#include <string_view>

namespace Outils_Configuration {

// The type of a value. From startMode on: an enumeration, with its words in config/enumerations.h.
enum class EKind {
    text,
    integer,
    boolean,
    character,
    real,
    color,
    startMode,
    appearance,
    gpsAltitudeMode,
    clockDriftCompensation,
    simulationTimeMode,
    dateNotation,
    spanNotation,
    angleNotation,
};

// Where a number is of use. A number of the file that lies outside counts as the nearest end.
struct SNumberRange {
    double least = 0.0; // no range while both ends are 0
    double greatest = 0.0;

    constexpr bool IsSet() const { return least != greatest; }
    template <class Number>
    constexpr Number Clamp(Number value) const {
        if (!IsSet()) return value;
        if (value < least) return static_cast<Number>(least);
        return value > greatest ? static_cast<Number>(greatest) : value;
    }
};

struct SSchemaRow {
    std::string_view section; // below the root, nested sections joined by slashes
    std::string_view key;
    EKind kind;
    std::string_view defaultText;
    Outils_Texte::EText help; // one line: what it does
    SNumberRange range = {};  // of integers and reals
    Outils_Texte::EText unit = Outils_Texte::kNoText;
    EForm form = EForm::element;
};

namespace Schema {
using enum EKind;
using Outils_Texte::EText;
using Outils_Texte::kNoText;
inline constexpr EForm attribute = EForm::attribute;
inline constexpr EText kNoUnit = kNoText;
inline constexpr SNumberRange kAny{};
// Below zero the conversion takes its own default of six decimals.
inline constexpr SNumberRange kDecimals{-1, 40};
// The views take their own factor in place of 0.
inline constexpr SNumberRange kFactor{0, 1000};

// clang-format off
inline constexpr SSchemaRow kRows[] = {
    {"general", "startMode", startMode, "newWizard", EText::settingGeneralStartMode},
    {"general", "appearance", appearance, "blue", EText::settingGeneralAppearance},
    {"general", "expertMode", boolean, "false", EText::settingGeneralExpertMode},
    {"general", "gpsAltitudeMode", gpsAltitudeMode, "meanSeaLevel", EText::settingGeneralGpsAltitudeMode},
    {"general", "userGuide", text, "VARNE NAV 2.4 User Guide.pdf", EText::settingGeneralUserGuide},
    {"general", "rawImuData", boolean, "false", EText::settingGeneralRawImuData},
    {"general/utcSearch", "maxPacketCount", integer, "1000", EText::settingGeneralUtcSearchMaxPacketCount, {0, 2147483647}},
    {"general/utcSearch", "timeout", integer, "3000", EText::settingGeneralUtcSearchTimeout, {0, 3600000}, EText::unitMilliseconds},
    {"general/index", "enabled", boolean, "true", EText::settingIndexEnabled},
    {"general/index", "memory", integer, "256", EText::settingIndexMemory, {16, 65536}, EText::unitMegabytes},
    {"general/index", "disk", integer, "4096", EText::settingIndexDisk, {0, 1048576}, EText::unitMegabytes},
    {"simulation", "useTempFileName", boolean, "true", EText::settingSimulationUseTempFileName},
    {"simulation", "fixedFileName", text, "MORVEX.dat", EText::settingSimulationFixedFileName},
    {"simpleExporter", "width", integer, "602", EText::settingWidth, {200, 10000}, EText::unitPixels},
    {"simpleExporter", "height", integer, "458", EText::settingHeight, {150, 10000}, EText::unitPixels},
    {"simpleExporter", "firstColumnWidth", integer, "190", EText::settingColumn, {20, 5000}, EText::unitPixels},
    {"simpleExporter/general", "idxSource", integer, "0", EText::settingSimpleExporterGeneralIdxSource, {0, 1000}},
    {"simpleExporter/general", "targetFolder", text, "", EText::settingSimpleExporterGeneralTargetFolder},
    {"simpleExporter/general", "idxFormat", integer, "0", EText::settingSimpleExporterGeneralIdxFormat, {0, 1000}},
    {"simpleExporter/general", "openAtEnd", boolean, "true", EText::settingSimpleExporterGeneralOpenAtEnd},
    {"simpleExporter/general", "closeAtEnd", boolean, "true", EText::settingSimpleExporterGeneralCloseAtEnd},
    {"simpleExporter/txt", "printHeader", boolean, "true", EText::settingSimpleExporterTxtPrintHeader},
    {"simpleExporter/txt", "outputImuFrames", boolean, "false", EText::settingSimpleExporterTxtOutputImuFrames},
    {"simpleExporter/kml", "idxChannel", integer, "0", EText::settingIdxChannel, {0, 1000}},
    {"simpleExporter/kml", "showTime", boolean, "true", EText::settingSimpleExporterKmlShowTime},
    {"simpleExporter/kml", "fileTimeRefence", boolean, "true", EText::settingFileTime},
    {"simpleExporter/kml", "drawTrack", boolean, "false", EText::settingSimpleExporterKmlDrawTrack},
    {"simpleExporter/kml", "trackColor", color, "ffffffff", EText::settingSimpleExporterKmlTrackColor},
    {"simpleExporter/kml", "automaticPointColor", boolean, "true", EText::settingSimpleExporterKmlAutomaticPointColor},
    {"simpleExporter/kml", "pointColor", color, "ffffaa55", EText::settingSimpleExporterKmlPointColor},
    {"simpleExporter/kml", "leverArm", integer, "0", EText::settingLeverArm, {0, 4}},
    {"simpleExporter/kml", "clampToGround", boolean, "true", EText::settingSimpleExporterKmlClampToGround},
    {"simpleExporter/kml", "altitudeScaleFactor", real, "1.0", EText::settingSimpleExporterKmlAltitudeScaleFactor, {-1000, 1000}},
    {"simpleExporter/kml", "altitudeOffset", real, "0.0", EText::settingSimpleExporterKmlAltitudeOffset, {-100000, 100000}, EText::unitMeters},
    {"simpleExporter/kml", "decimate", boolean, "false", EText::settingDecimate},
    {"simpleExporter/kml", "value", integer, "100", EText::settingDecimation, {1, 1000000}},
    {"simpleExporter/geo", "idxChannel", integer, "0", EText::settingIdxChannel, {0, 1000}},
    {"simpleExporter/geo", "idxFileFormat", integer, "0", EText::settingSimpleExporterGeoIdxFileFormat, {0, 1000}},
    {"simpleExporter/geo", "leverArm", integer, "0", EText::settingLeverArm, {0, 4}},
    {"simpleExporter/geo", "fileTimeRefence", boolean, "true", EText::settingFileTime},
    {"simpleExporter/geo", "geometry25d", boolean, "false", EText::settingSimpleExporterGeoGeometry25d},
    {"simpleExporter/geo", "motion", boolean, "false", EText::settingSimpleExporterGeoMotion},
    {"simpleExporter/geo", "speed", boolean, "false", EText::settingSimpleExporterGeoSpeed},
    {"simpleExporter/geo", "orientation", boolean, "false", EText::settingSimpleExporterGeoOrientation},
    {"simpleExporter/geo", "decimate", boolean, "false", EText::settingDecimate},
    {"simpleExporter/geo", "value", integer, "100", EText::settingDecimation, {1, 1000000}},
    {"simpleExporter/udt", "templatePath", text, "", EText::settingSimpleExporterUdtTemplatePath},
    {"simpleExporter/sbet", "leverArm", integer, "0", EText::settingLeverArm, {0, 4}},
    {"simpleExporter/sbet", "weekSeconds", boolean, "true", EText::settingSimpleExporterSbetWeekSeconds},
    {"simpleExporter/sbet", "outputAccuracyFile", boolean, "false", EText::settingSimpleExporterSbetOutputAccuracyFile},
    {"simpleExporter/sbet", "decimate", boolean, "false", EText::settingDecimate},
    {"simpleExporter/sbet", "value", integer, "100", EText::settingDecimation, {1, 1000000}},
    {"simpleExporter/period", "from", text, "", EText::settingSimpleExporterPeriodFrom},
    {"simpleExporter/period", "to", text, "", EText::settingSimpleExporterPeriodTo},
    {"simpleImporter", "width", integer, "489", EText::settingWidth, {200, 10000}, EText::unitPixels},
    {"simpleImporter", "height", integer, "273", EText::settingHeight, {150, 10000}, EText::unitPixels},
    {"simpleImporter", "firstColumnWidth", integer, "180", EText::settingColumn, {20, 5000}, EText::unitPixels},
    {"simpleImporter/kolt", "beaconNumber", integer, "1", EText::settingSimpleImporterKoltBeaconNumber, {0, 1000}},
    {"simpleImporter/postproNelix", "sort", boolean, "true", EText::settingSimpleImporterPostproNelixSort},
    {"simpleImporter/postproNelix", "skip", integer, "0", EText::settingSimpleImporterPostproNelixSkip, {0, 2147483647}, EText::unitSeconds},
    {"simpleImporter/postproNelix", "stopAt", integer, "0", EText::settingSimpleImporterPostproNelixStopAt, {0, 2147483647}, EText::unitSeconds},
    {"simpleImporter/postproNelix", "date", text, "", EText::settingSimpleImporterPostproNelixDate},
    {"simpleImporter/postproNelix", "decipher", boolean, "true", EText::settingSimpleImporterPostproNelixDecipher},
    {"simpleImporter/postproNelix", "insClockDriftCompensation", clockDriftCompensation, "automatic", EText::settingSimpleImporterPostproNelixInsClockDriftCompensation},
    {"simpleImporter/nmea", "verifyChecksum", boolean, "yes", EText::settingSimpleImporterNmeaVerifyChecksum},
    {"simpleImporter/decodedNelix", "equipmentType", integer, "9", EText::settingSimpleImporterDecodedNelixEquipmentType, {0, 255}},
    {"simpleImporter/decodedNelix", "date", text, "", EText::settingSimpleImporterDecodedNelixDate},
    {"simpleImporter/decodedNelix", "clockCycle", integer, "86400", EText::settingSimpleImporterDecodedNelixClockCycle, {1, 2147483647}, EText::unitSeconds},
    {"simpleImporter/decodedNelix", "imu5msOffset", boolean, "true", EText::settingSimpleImporterDecodedNelixImu5msOffset},
    {"fileUpdater", "backup", boolean, "true", EText::settingFileUpdaterBackup},
    {"fileUpdater", "width", integer, "489", EText::settingWidth, {200, 10000}, EText::unitPixels},
    {"fileUpdater", "height", integer, "273", EText::settingHeight, {150, 10000}, EText::unitPixels},
    {"fileUpdater", "firstColumnWidth", integer, "180", EText::settingColumn, {20, 5000}, EText::unitPixels},
    {"process", "tarin2Txt", text, "Tarin2Txt.exe", EText::settingProgram},
    {"process", "tarin2Kml", text, "Tarin2Kml.exe", EText::settingProgram},
    {"process", "tarin2Geo", text, "Tarin2Geo.exe", EText::settingProgram},
    {"process", "tarout2Txt", text, "Tarout2Txt.exe", EText::settingProgram},
    {"process", "tarout2Kml", text, "Tarout2Kml.exe", EText::settingProgram},
    {"process", "tarout2Geo", text, "Tarout2Geo.exe", EText::settingProgram},
    {"process", "tarout2Sbet", text, "Tarout2Sbet.exe", EText::settingProgram},
    {"process", "morvex", text, "Morvex.exe", EText::settingProgram},
    {"process", "nmea2Tarin", text, "Nmea2Tarin.exe", EText::settingProgram},
    {"process", "kolt2Tarin", text, "Kolt2Tarin.exe", EText::settingProgram},
    {"process", "novatel2Tarin", text, "Novatel2Tarin.exe", EText::settingProgram},
    {"process", "postProNelixDecode", text, "PostProNelixDecode.exe", EText::settingProgram},
    {"process", "udtExporter", text, "udtExporter.exe", EText::settingProgram},
    {"process", "pd6Rdi2Tarin", text, "PD6Rdi2Tarin.exe", EText::settingProgram},
    {"process", "fileUpdater", text, "FileUpdater.exe", EText::settingProgram},
    {"process", "decodedNelix2Tarin", text, "DecodedNelix2Tarin.exe", EText::settingProgram},
    {"process", "synchro2Tarin", text, "Synchro2Tarin.exe", EText::settingProgram},
    {"process", "range2Tarin", text, "Range2Tarin.exe", EText::settingProgram},
    {"process", "usbl2Tarin", text, "Usbl2Tarin.exe", EText::settingProgram},
    {"process", "platform2Tarin", text, "Platform2Tarin.exe", EText::settingProgram},
    {"process", "odometer2Tarin", text, "Odometer2Tarin.exe", EText::settingProgram},
    {"process", "depth2Tarin", text, "Depth2Tarin.exe", EText::settingProgram},
    {"view1D", "subSamplingRatio", real, "1.0", EText::settingView1DSubSamplingRatio, {0, 100}},
    {"view1D", "collectExtremum", boolean, "true", EText::settingView1DCollectExtremum},
    {"view1D", "drawCurve", boolean, "false", EText::settingView1DDrawCurve},
    {"view1D", "extremumTransparency", integer, "200", EText::settingView1DExtremumTransparency, {0, 255}},
    {"view1D", "horizontalZoomScaleFactor", real, "0.5", EText::settingView1DHorizontalZoomScaleFactor, kFactor},
    {"view1D", "horizontalUnzoomScaleFactor", real, "2", EText::settingView1DHorizontalUnzoomScaleFactor, kFactor},
    {"view1D", "horizontalScrollFactor", real, "0.25", EText::settingView1DHorizontalScrollFactor, kFactor},
    {"view1D", "verticalZoomScaleFactor", real, "0.5", EText::settingView1DVerticalZoomScaleFactor, kFactor},
    {"view1D", "verticalUnzoomScaleFactor", real, "2", EText::settingView1DVerticalUnzoomScaleFactor, kFactor},
    {"view1D", "verticalScrollFactor", real, "0.25", EText::settingView1DVerticalScrollFactor, kFactor},
    {"view1D", "showGraphLegends", boolean, "true", EText::settingView1DShowGraphLegends},
    {"view1D", "displayAutoRefresh", boolean, "true", EText::settingView1DDisplayAutoRefresh, kAny, kNoUnit, attribute},
    {"view1D/cursor", "color", color, "FFFF0000", EText::settingView1DCursorColor},
    {"view1D/cursor", "width", real, "1.0", EText::settingView1DCursorWidth, {0, 100}, EText::unitPixels},
    {"view1D/echo", "color", color, "FFFF0000", EText::settingView1DEchoColor},
    {"view1D/echo", "width", real, "1.0", EText::settingView1DEchoWidth, {0, 100}, EText::unitPixels},
    {"view1D/echo", "size", real, "5.0", EText::settingView1DEchoSize, {0, 1000}, EText::unitPixels},
    {"view1D/chronogram", "color", color, "FF808080", EText::settingView1DChronogramColor},
    {"viewValue", "inputFileColor", color, "FF33E566", EText::settingViewValueInputFileColor},
    {"viewValue", "outputFileColor", color, "FFCC993F", EText::settingViewValueOutputFileColor},
    {"viewValue", "externalFileColor", color, "FF3399D8", EText::settingViewValueExternalFileColor},
    {"viewValue", "echoToGraph", boolean, "true", EText::settingViewValueEchoToGraph},
    {"viewValue", "translateChannelLabel", boolean, "true", EText::settingTranslateChannelLabel},
    {"viewValue", "displayChannelLabel", boolean, "false", EText::settingDisplayChannelLabel},
    {"viewValue", "firstColumnWidth", integer, "170", EText::settingColumn, {20, 5000}, EText::unitPixels},
    {"viewMetadata", "translateChannelLabel", boolean, "true", EText::settingTranslateChannelLabel},
    {"viewMetadata", "displayChannelLabel", boolean, "false", EText::settingDisplayChannelLabel},
    {"viewProcessing", "badParameterColor", color, "FF780000", EText::settingViewProcessingBadParameterColor},
    {"viewProcessing", "firstColumnWidth", integer, "170", EText::settingColumn, {20, 5000}, EText::unitPixels},
    {"adaptors", "decimalSeparator", character, ".", EText::settingAdaptorsDecimalSeparator},
    {"adaptors/rate", "precision", integer, "3", EText::settingPrecision, kDecimals, kNoUnit, attribute},
    {"adaptors/rate", "unit", text, "s", EText::settingUnit, kAny, kNoUnit, attribute},
    {"adaptors/simulationTime", "mode", simulationTimeMode, "elapsedTime", EText::settingAdaptorsSimulationTimeMode, kAny, kNoUnit, attribute},
    {"adaptors/dateTime", "precision", integer, "3", EText::settingPrecision, kDecimals, kNoUnit, attribute},
    {"adaptors/dateTime", "dateNotation", dateNotation, "dayMonthYear", EText::settingAdaptorsDateTimeDateNotation, kAny, kNoUnit, attribute},
    {"adaptors/dateTime", "dateSeparator", character, "/", EText::settingAdaptorsDateTimeDateSeparator},
    {"adaptors/dateTime", "hourSeparator", character, ":", EText::settingAdaptorsDateTimeHourSeparator},
    {"adaptors/dateTimeSpan", "precision", integer, "3", EText::settingPrecision, kDecimals, kNoUnit, attribute},
    {"adaptors/dateTimeSpan", "unit", text, "m", EText::settingUnit, kAny, kNoUnit, attribute},
    {"adaptors/dateTimeSpan", "spanNotation", spanNotation, "dayHourMinuteSecond", EText::settingAdaptorsDateTimeSpanSpanNotation, kAny, kNoUnit, attribute},
    {"adaptors/geographicPosition", "precision", integer, "3", EText::settingPrecision, kDecimals, kNoUnit, attribute},
    {"adaptors/geographicPosition", "notation", angleNotation, "degreesMinutes", EText::settingAdaptorsGeographicPositionNotation, kAny, kNoUnit, attribute},
    {"adaptors/geographicPosition", "useMathematicalSign", boolean, "false", EText::settingAdaptorsGeographicPositionUseMathematicalSign, kAny, kNoUnit, attribute},
    {"adaptors/geographicPosition", "degreesSeparator", character, "°", EText::settingAdaptorsGeographicPositionDegreesSeparator, kAny, kNoUnit, attribute},
    {"adaptors/geographicPosition", "minutesSeparator", character, "'", EText::settingAdaptorsGeographicPositionMinutesSeparator, kAny, kNoUnit, attribute},
    {"adaptors/geographicPosition", "decimalSeparator", character, ".", EText::settingAdaptorsGeographicPositionDecimalSeparator, kAny, kNoUnit, attribute},
    {"adaptors/altitude", "precision", integer, "3", EText::settingPrecision, kDecimals, kNoUnit, attribute},
    {"adaptors/altitude", "unit", text, "m", EText::settingUnit, kAny, kNoUnit, attribute},
    {"adaptors/misalignment", "precision", integer, "3", EText::settingPrecision, kDecimals, kNoUnit, attribute},
    {"adaptors/misalignment", "unit", text, "°", EText::settingUnit, kAny, kNoUnit, attribute},
    {"adaptors/leverArm", "precision", integer, "3", EText::settingPrecision, kDecimals, kNoUnit, attribute},
    {"adaptors/leverArm", "unit", text, "m", EText::settingUnit, kAny, kNoUnit, attribute},
    {"adaptors/scaleFactor", "precision", integer, "2", EText::settingPrecision, kDecimals, kNoUnit, attribute},
    {"adaptors/scaleFactor", "unit", text, "%", EText::settingUnit, kAny, kNoUnit, attribute},
    {"adaptors/currentSpeed", "precision", integer, "2", EText::settingPrecision, kDecimals, kNoUnit, attribute},
    {"adaptors/currentSpeed", "unit", text, "m/s", EText::settingUnit, kAny, kNoUnit, attribute},
    {"adaptors/currentTime", "precision", integer, "0", EText::settingPrecision, kDecimals, kNoUnit, attribute},
    {"adaptors/currentTime", "unit", text, "s", EText::settingUnit, kAny, kNoUnit, attribute},
    {"adaptors/linearSpeed", "precision", integer, "2", EText::settingPrecision, kDecimals, kNoUnit, attribute},
    {"adaptors/linearSpeed", "unit", text, "m/s", EText::settingUnit, kAny, kNoUnit, attribute},
    {"adaptors/linearAcceleration", "precision", integer, "2", EText::settingPrecision, kDecimals, kNoUnit, attribute},
    {"adaptors/linearAcceleration", "unit", text, "m/s2", EText::settingUnit, kAny, kNoUnit, attribute},
    {"adaptors/angularSpeed", "precision", integer, "1", EText::settingPrecision, kDecimals, kNoUnit, attribute},
    {"adaptors/angularSpeed", "unit", text, "°/h", EText::settingUnit, kAny, kNoUnit, attribute},
    {"adaptors/distance", "precision", integer, "2", EText::settingPrecision, kDecimals, kNoUnit, attribute},
    {"adaptors/distance", "unit", text, "m", EText::settingUnit, kAny, kNoUnit, attribute},
    {"adaptors/attitude", "precision", integer, "3", EText::settingPrecision, kDecimals, kNoUnit, attribute},
    {"adaptors/attitude", "unit", text, "°", EText::settingUnit, kAny, kNoUnit, attribute},
    {"adaptors/crossvariance", "precision", integer, "2", EText::settingPrecision, kDecimals, kNoUnit, attribute},
    {"adaptors/crossvariance", "unit", text, "m²", EText::settingUnit, kAny, kNoUnit, attribute},
    {"adaptors/timeDrift", "precision", integer, "3", EText::settingPrecision, kDecimals, kNoUnit, attribute},
    {"adaptors/timeDrift", "unit", text, "ms", EText::settingUnit, kAny, kNoUnit, attribute},
    {"adaptors/rawFogMeasurement", "precision", integer, "3", EText::settingPrecision, kDecimals, kNoUnit, attribute},
    {"adaptors/rawFogMeasurement", "unit", text, "µrad", EText::settingUnit, kAny, kNoUnit, attribute},
    {"adaptors/rawAccMeasurement", "precision", integer, "3", EText::settingPrecision, kDecimals, kNoUnit, attribute},
    {"adaptors/rawAccMeasurement", "unit", text, "mm/s", EText::settingUnit, kAny, kNoUnit, attribute},
    {"settingsDialog", "width", integer, "535", EText::settingWidth, {200, 10000}, EText::unitPixels},
    {"settingsDialog", "height", integer, "600", EText::settingHeight, {150, 10000}, EText::unitPixels},
    {"settingsDialog", "firstColumnWidth", integer, "190", EText::settingColumn, {20, 5000}, EText::unitPixels},
    {"printing", "verticalSpacing", real, "0.5", EText::settingPrintingVerticalSpacing, {0, 20}, EText::unitCentimeters},
    {"printing/margins", "left", real, "2.0", EText::settingMargin, {0, 20}, EText::unitCentimeters},
    {"printing/margins", "right", real, "2.0", EText::settingMargin, {0, 20}, EText::unitCentimeters},
    {"printing/margins", "top", real, "2.0", EText::settingMargin, {0, 20}, EText::unitCentimeters},
    {"printing/margins", "bottom", real, "2.0", EText::settingMargin, {0, 20}, EText::unitCentimeters},
};
// clang-format on
} // namespace Schema

inline constexpr auto& kSchema = Schema::kRows;

} // namespace Outils_Configuration
