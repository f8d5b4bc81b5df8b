#include "dataaccess/format_detection.h"

#include "dataaccess/format_sniffers.h"
#include "foundation/files.h"
#include "foundation/texts.h"

#include <algorithm>
#include <array>

namespace Application_Tarvel {

using Outils_Texte::EText;

using Outils_Valeurs::CDateTimeAdaptor;

namespace {

constexpr EText kUnknownFormatText = EText::formatUnknown;

template <class... Words>
constexpr std::array<std::string_view, sizeof...(Words)> List(Words... words) {
    return {words...};
}

constexpr auto kXpf = List("XPF");
constexpr auto kNmea = List("$GPGGA", "$GPGST", "$GPZDA"); // a GPS needs position, error and date
constexpr auto kUsbl = List("$PTSAG");
constexpr auto kPostProcessed =
    List("Program:     GrafNav", "GRAFNAV TO VARNE NAV POST-PROCESSED GPS DATA",
         "Program:     Inertial Explorer", "Program:     POSGNSS", "% program   : RTKPOST");
constexpr auto kPd6 =
    List(":UT,", ":SA,", ":TS,", ":WI,", ":WS,", ":WE,", ":WD,", ":BI,", ":BS,", ":BE,", ":BD,");
constexpr auto kInsBlocks =
    List("FOGACC:", "IMU   :", "IMU___:", "IMU2__:", "INCSYS:", "HINGE1:", "HINGIS:", "VELTOR:", "REF   :",
         "NAV___:", "GPS   :", "GPSnv :", "GPS2nv:", "GPSMnv:", "GPS___:", "GPS2__:", "GPSM__:", "UTC   :",
         "UTC___:", "EV1   :", "EV2   :", "EV3   :", "EV4   :", "LOG   :", "LOG___:", "LOGEM :", "LOGEM_:",
         "WATTRK:", "WLOG__:", "DEPTH :", "DEPTH_:", "USBL  :", "USBLnv:", "USBL__:", "LBL   :", "LBLnv :",
         "LBL___:", "KOLT  :", "TEMP__:", "SYNEXT:", "MISSED:", "UNKNOW:");
constexpr auto kRange = List("RANGE TO VARNE NAV EXTERNAL DATA");
constexpr auto kMount = List("PLATFORM ORIENTATION TO VARNE NAV EXTERNAL DATA");
constexpr auto kConvertedUsbl = List("USBL TO VARNE NAV EXTERNAL DATA");
constexpr auto kOdometer = List("ODOMETER TO VARNE NAV EXTERNAL DATA");
constexpr auto kDepth = List("DEPTH TO VARNE NAV EXTERNAL DATA");

// In the order in which they are asked: the first match counts.
constexpr SSniffer kSniffers[] = {
    {formatXpf, EText::formatXpf, AnyLineBegins, 1, kXpf},
    {formatNmeaGps, EText::formatNmea, EachWordBegins, 100, kNmea},
    {formatUsbl, EText::formatUsbl, AnyLineBegins, 200, kUsbl},
    {formatPostProcessedGps, EText::formatPostProcessedGps, AnyLineBegins, 100, kPostProcessed},
    {formatRawIns, EText::formatRawStream, HoldsFrame},
    {formatRdiPd6, EText::formatPd6, MostLinesBegin, 100, kPd6},
    {formatInsText, EText::formatRawText, MostLinesBegin, 100, kInsBlocks, 1024},
    {formatEvents, EText::formatEvents, HoldsEvents, 20},
    {formatRange, EText::formatRange, AnyLineBegins, 1, kRange},
    {formatMountOrientation, EText::formatMount, AnyLineBegins, 1, kMount},
    {formatConvertedUsbl, EText::formatUsblConverted, AnyLineBegins, 1, kConvertedUsbl},
    {formatOdometer, EText::formatOdometer, AnyLineBegins, 1, kOdometer},
    {formatDepth, EText::formatDepth, AnyLineBegins, 1, kDepth},
};

// What the most demanding sniffer can come to see, line ends of two characters included.
constexpr std::size_t kHeadSize = [] {
    std::size_t size = 0;
    for (const SSniffer& sniffer : kSniffers) size = std::max(size, sniffer.lines * (sniffer.lineLimit + 2));
    return size;
}();
static_assert(kHeadSize <= 101 * 1024);

} // namespace

bool DetectFileFormat(const std::filesystem::path& path, int& code, const CDateTimeAdaptor& dates) {
    code = formatUnknown;
    const auto head = Outils_Fichiers::ReadFileHead(path, kHeadSize);
    if (!head) return false;
    code = DetectFormat({reinterpret_cast<const char*>(head->data()), head->size()}, dates);
    return true;
}

bool IsXpfFile(const std::filesystem::path& path) {
    int code = formatUnknown;
    return DetectFileFormat(path, code, CDateTimeAdaptor()) && code == formatXpf;
}

EFileFormat DetectFormat(std::string_view head, const CDateTimeAdaptor& dates) {
    for (const SSniffer& sniffer : kSniffers)
        if (sniffer.test(head, sniffer, dates)) return sniffer.format;
    return formatUnknown;
}

Outils_Texte::EText GetFormatText(int code) {
    for (const SSniffer& sniffer : kSniffers)
        if (sniffer.format == code) return sniffer.label;
    return kUnknownFormatText;
}

} // namespace Application_Tarvel
