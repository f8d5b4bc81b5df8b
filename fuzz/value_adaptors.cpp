// Texts that a user types, under any settings: 16 bytes of settings, then the text.
#include "input.h"

#include "values/adaptors.h"

#include <cmath>
#include <cstring>

using namespace Outils_Valeurs;

namespace {

constexpr std::size_t kSettings = 16;

char16_t Separator(std::uint8_t low, std::uint8_t high, char16_t usual) {
    if (low == 0) return usual;
    return static_cast<char16_t>(low | (high & 0x80 ? high << 8 : 0));
}

void Configure(CNumericValueAdaptor& adaptor, const std::uint8_t* settings) {
    adaptor.precision = static_cast<std::int8_t>(settings[0]);
    adaptor.width = static_cast<std::int8_t>(settings[1]);
    adaptor.showPlusSign = settings[2] & 1;
    adaptor.decimalSeparator = Separator(settings[3], settings[4], u'.');
}

// A number that was read has a text; under the usual separator that text is read again.
void Check(const CNumericValueAdaptor& adaptor, std::string_view text) {
    double value = 0;
    if (!adaptor.TextToValue(text, value)) return;
    Fuzz::Require(std::isfinite(value), "numbers that are read are finite");
    std::string written;
    Fuzz::Require(adaptor.ValueToText(value, written) && !written.empty(), "every number has a text");
}

void CheckNumbers(const std::uint8_t* settings, std::string_view text) {
    CNumericValueAdaptor plain;
    Configure(plain, settings);
    Check(plain, text);

    CPhysicalValueAdaptor physical;
    Configure(physical, settings);
    physical.AddUnit(1, 1, 0, "metre", "m");
    physical.AddUnit(1000, 1, 0, "kilometre", "km");
    physical.AddUnit(9, 5, 32, "shifted", "°");
    physical.showUnit = settings[5] & 1;
    physical.SetCurrentUnit(settings[5] & 2 ? "km" : "°");
    Check(physical, text);

    for (const bool isLatitude : {true, false}) {
        CLatitudeLongitudeAdaptor angle(isLatitude);
        Configure(angle, settings);
        angle.notation = static_cast<EAngleNotation>(settings[6] % 4);
        angle.useMathematicalSign = settings[5] & 4;
        angle.hideSeparators = settings[5] & 8;
        angle.degreesSeparator = Separator(settings[7], settings[8], u'°');
        angle.minutesSeparator = Separator(settings[9], settings[8], u'\'');
        Check(angle, text);
    }
}

void CheckTimes(const std::uint8_t* settings, std::string_view text) {
    const bool usual = settings[3] == 0 && settings[11] == 0 && settings[12] == 0;
    std::string written;
    CDateTimeAdaptor dates;
    dates.notation = static_cast<EDateNotation>(settings[10] % 7);
    dates.precision = static_cast<std::int8_t>(settings[0]);
    dates.showTime = settings[5] & 16;
    dates.decimalSeparator = Separator(settings[3], settings[4], u'.');
    dates.dateSeparator = Separator(settings[11], settings[4], u'/');
    dates.hourSeparator = Separator(settings[12], settings[4], u':');
    CDateTime date;
    if (dates.TextToValue(text, date)) {
        Fuzz::Require(date.IsValid(), "dates that are read are valid");
        const bool shown = dates.ValueToText(date, written);
        CDateTime again = date;
        Fuzz::Require(!shown || !usual || dates.TextToValue(written, again), "a date's text is read");
    }

    CDateTimeSpanAdaptor spans;
    spans.notation = static_cast<ESpanNotation>(settings[13] % 2);
    spans.precision = static_cast<std::int8_t>(settings[0]);
    spans.decimalSeparator = dates.decimalSeparator;
    spans.hourSeparator = dates.hourSeparator;
    Outils_Temps::CDateTimeSpan span;
    if (spans.TextToValue(text, span)) {
        Fuzz::Require(span.IsValid(), "spans that are read are valid");
        Outils_Temps::CDateTimeSpan again;
        const bool shown = spans.ValueToText(span, written);
        Fuzz::Require(!shown || !usual || spans.TextToValue(written, again), "a span's text is read");
    }
}

// Any number and any tick count, not only those that somebody could type.
void CheckAnyValue(const std::uint8_t* settings, std::string_view text) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, text.data(), std::min(text.size(), sizeof bits));
    double number;
    std::memcpy(&number, &bits, sizeof number);
    std::string written;
    CLatitudeLongitudeAdaptor angle;
    Configure(angle, settings);
    angle.notation = static_cast<EAngleNotation>(settings[6] % 4);
    angle.ValueToText(number, written);
    CDateTimeAdaptor dates;
    dates.notation = static_cast<EDateNotation>(settings[10] % 7);
    dates.precision = static_cast<std::int8_t>(settings[0]);
    dates.ValueToText(CDateTime(bits), written);
    CDateTimeSpanAdaptor spans;
    spans.precision = dates.precision;
    spans.notation = static_cast<ESpanNotation>(settings[13] % 2);
    spans.ValueToText(Outils_Temps::CDateTimeSpan(static_cast<std::int64_t>(bits)), written);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < kSettings) return 0;
    const std::string_view text = Fuzz::AsText({data + kSettings, size - kSettings});
    CheckNumbers(data, text);
    CheckTimes(data, text);
    CheckAnyValue(data, text);
    return 0;
}
