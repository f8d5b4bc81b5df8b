// What all converters share: sources in, target out, counts and messages; a converter adds its reader.
#pragma once

#include "common/child_program.h"
#include "convert/line_reader.h"
#include "convert/record_sink.h"

#include <filesystem>
#include <optional>
#include <set>
#include <string>

namespace Conversion {

using Compagnon::CArguments;
using Compagnon::ERunEnd;

// Messages of a conversion. A reader may say the same again and again: each text is reported once, also when
// the conversion starts again.
class CNotes {
  public:
    explicit CNotes(IRunMonitor& monitor) : m_monitor(monitor) {}
    void Say(ELevel level, EText text, std::initializer_list<std::string_view> arguments = {}) {
        std::string words = Outils_Texte::FormatText(text, arguments);
        if (m_said.insert(words).second) m_monitor.Message(level, text, words);
    }

  private:
    IRunMonitor& m_monitor;
    std::set<std::string> m_said;
};

// What a reader has learnt of a source by its end, and needs from its start: kept when it starts again.
struct SLearnt {
    // Dates before `eraBegin` are of a wrong era of the GPS week: they are shifted by this much.
    Ticks eraBegin = INT64_MIN, eraShift = 0;
    std::optional<double> clockRate; // seconds of UTC in a second of the INS clock
    bool lacksUtc = false;
};

// One attempt at a conversion, as a reader sees it.
struct SConversion {
    const CArguments& arguments;
    std::span<const std::filesystem::path> sources;
    CByteSource& source;
    CRecordSink& sink;
    CFaultCounter& faults;
    CNotes& notes;
    SLearnt& learnt;
    // A reader that sets this and returns is started again from the first byte.
    bool startAgain = false;

    // Readers end when this is true.
    bool IsDone() const { return startAgain || sink.IsDone(); }
};

struct SConverter {
    std::string_view program; // "Depth2Tarin.exe"
    EText purpose;
    std::span<const Compagnon::SSwitchRow> switches;
    EDates dates;
    EText places; // how faults name their places
    // Reads the source to its end, or until IsDone. False when nothing can be read, once it has said why.
    bool (*read)(SConversion& conversion);
    bool manySources = false;  // and the target follows the switch "/o"
    bool sortsSources = false; // by the switch "/sort"
};

inline constexpr std::size_t kConverterCount = 12;
// In the order of the formats that the application offers.
std::span<const SConverter, kConverterCount> GetConverters();

// Converts. Every failure is reported; then no target is left, or the former one.
ERunEnd Convert(const SConverter& converter, const CArguments& arguments, IRunMonitor& monitor);

// The converter as a child program. REQUIRES: `converter` is a row of GetConverters().
Compagnon::SProgram MakeProgram(const SConverter& converter);

} // namespace Conversion
