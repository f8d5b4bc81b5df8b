#include "dataaccess/format_detection.h"

#include "foundation/files.h"
#include "support/temporary_folder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

namespace Application_Tarvel {
namespace {

std::string Repeat(std::string_view text, int count) {
    std::string all;
    while (count-- > 0) all += text;
    return all;
}

const std::string kGps = "$GPGGA,1\r\n$GPGST,2\r\n$GPZDA,3\r\n";
const std::string kEvent = "24/11/2026 12:30:01.500\t1\t17\r\n";

struct SSample {
    const char* what;
    std::string head;
    int code;
} const kSamples[] = {
    {"empty", "", formatUnknown},
    {"packet file", {"XPF\0\1$", 6}, formatXpf},
    {"packet file cut in its magic", "XP", formatUnknown},
    {"GPS from the 98th line on", Repeat("#\n", 97) + kGps, formatNmeaGps},
    {"GPS whose date comes too late", Repeat("#\n", 98) + kGps, formatUnknown},
    {"GPS without errors", Repeat("$GPGGA,1\n$GPZDA,2\n", 50), formatUnknown},
    {"GPS before USBL", "$PTSAG\n" + kGps, formatNmeaGps},
    {"USBL in the last line looked at", Repeat("\n", 199) + "$PTSAG,", formatUsbl},
    {"USBL one line later", Repeat("\n", 200) + "$PTSAG,", formatUnknown},
    {"lines cut at 255 count twice", Repeat(std::string(256, 'x') + "\n", 100) + "$PTSAG,", formatUnknown},
    {"lines of 255 do not", Repeat(std::string(255, 'x') + "\r\n", 100) + "$PTSAG,", formatUsbl},
    {"the rest of a cut line is a line", std::string(255, 'x') + "$PTSAG,", formatUsbl},
    {"post-processing", "\n% program   : RTKPOST ver.2\n", formatPostProcessedGps},
    {"a program that is not known", "Program:     Another\n", formatUnknown},
    {"frame", {"ab$\3c$", 6}, formatRawIns},
    {"frame of length 255", "$\xFF" + std::string(253, '\0') + "$", formatRawIns},
    {"frame of length 0 meets its own mark", {"$\0", 2}, formatRawIns},
    {"frame that ends after the file", {"$\3c", 3}, formatUnknown},
    {"frame beyond 512 bytes", std::string(509, '\0') + std::string("$\3c$", 4), formatUnknown},
    {"four of five lines", ":UT,\n:BD,1\n:WS,\n:SA,\nUT\n", formatRdiPd6},
    {"79 of 100 lines", Repeat(":UT,1\n", 79) + Repeat("-\n", 21) + Repeat(":UT,1\n", 9), formatUnknown},
    {"blocks in lines of 1024", Repeat("IMU   :" + std::string(1017, '1') + "\r\n", 100), formatInsText},
    {"blocks in longer lines", Repeat("IMU   :" + std::string(1018, '1') + "\n", 50), formatUnknown},
    {"blocks with a tag alike", Repeat("IMU  :1\n", 9), formatUnknown},
    {"events", kEvent + "-\n24/11/2026 12:30:02\n" + kEvent + "24/11/2026 12:30:03\t2\t\tx\n", formatUnknown},
    {"events with a bad edge", Repeat("24/11/2026 12:30:02\t3\n", 9), formatUnknown},
    {"events with the last edge", Repeat("24/11/2026 12:30:02\t2\n", 4), formatEvents},
    {"events with a fraction", Repeat("24/11/2026 12:30:02\t0\t1.5\n", 9), formatUnknown},
    {"events up to line 20", Repeat("-\n", 16) + Repeat(kEvent, 4), formatEvents},
    {"events beyond line 20", Repeat("-\n", 17) + Repeat(kEvent, 4), formatUnknown},
    {"range", "RANGE TO VARNE NAV EXTERNAL DATA v1\n", formatRange},
    {"USBL, converted", "USBL TO VARNE NAV EXTERNAL DATA", formatConvertedUsbl},
    {"mount", "PLATFORM ORIENTATION TO VARNE NAV EXTERNAL DATA", formatMountOrientation},
    {"odometer", "ODOMETER TO VARNE NAV EXTERNAL DATA", formatOdometer},
    {"depth", "DEPTH TO VARNE NAV EXTERNAL DATA", formatDepth},
    {"depth in the second line", "\nDEPTH TO VARNE NAV EXTERNAL DATA", formatUnknown},
};

TEST(FormatDetection, FirstLinesTellTheFormat) {
    Outils_Valeurs::CDateTimeAdaptor dates;
    for (const SSample& sample : kSamples)
        EXPECT_EQ(DetectFormat(sample.head, dates), sample.code) << sample.what;
    for (int code = formatUnknown; code <= formatDepth; ++code)
        EXPECT_EQ(GetFormatText(code) == GetFormatText(formatUnknown), code == formatUnknown) << code;
    // Events are dated as the user writes dates.
    const std::string text = Repeat("2026-11-24 12:30:01,5\t0\n", 4);
    EXPECT_EQ(DetectFormat(text, dates), formatUnknown);
    dates.notation = Outils_Valeurs::EDateNotation::yearMonthDay;
    dates.dateSeparator = u'-';
    dates.decimalSeparator = u',';
    EXPECT_EQ(DetectFormat(text, dates), formatEvents);
}

TEST(FormatDetection, OpensRegularFilesOnly) {
    const Outils_Valeurs::CDateTimeAdaptor dates;
    const test::CTemporaryFolder folder;
    const auto path = folder / "format";
    int code = -1;
    EXPECT_FALSE(DetectFileFormat(path, code, dates));
    EXPECT_EQ(code, formatUnknown);
    EXPECT_FALSE(DetectFileFormat(path.parent_path(), code, dates));
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_FALSE(DetectFileFormat(path, code, dates)); // does not wait for a writer
    std::filesystem::remove(path);

    // The last line that the most patient sniffer reads decides.
    const std::string text = Repeat("UTC   :" + std::string(1017, '1') + "\r\n", 80) +
                             Repeat(std::string(1024, '-') + "\r\n", 200);
    for (const auto& [content, expected] : {std::pair(std::string(), formatUnknown), {text, formatInsText}}) {
        const std::vector<std::uint8_t> bytes(content.begin(), content.end());
        ASSERT_TRUE(Outils_Fichiers::WriteWholeFile(path, bytes));
        EXPECT_TRUE(DetectFileFormat(path, code, dates));
        EXPECT_EQ(code, expected);
    }
}

} // namespace
} // namespace Application_Tarvel
