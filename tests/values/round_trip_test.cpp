// Every adaptor, unit, notation, precision and separator: what is shown reads back to within half a unit of
// the last decimal shown.
#include "values/adaptors.h"
#include "values/units.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace Outils_Valeurs;
using namespace Outils_Temps;

namespace {

constexpr char16_t kSeparators[] = {u'.', u',', u'\u00B7'};

class RoundTrip : public testing::Test {
  protected:
    // Mostly of a user's size, some tiny, some huge, some whole.
    double Number(double scale) {
        constexpr double kFactors[] = {0, 1e-9, 1e9, 1e200, 1e-200, 1, 1, 1};
        const double value = std::uniform_real_distribution(-scale, scale)(m_random);
        const double factor = kFactors[m_random() % 8];
        return factor == 0 ? std::round(value) : value * factor;
    }
    std::mt19937 m_random{20240117};
};

// What is shown reads back, into `read` and from there.
template <class Adaptor, class Value>
std::string ShowAndRead(const Adaptor& adaptor, const Value& value, Value& read) {
    std::string text;
    EXPECT_TRUE(adaptor.ValueToText(value, text));
    EXPECT_TRUE(adaptor.TextToValue(text, read)) << text;
    return text;
}

// Half a unit of the last decimal of a number shown as `shown`, and what doubles of its size cannot tell
// apart.
double Tolerance(double shown, int precision) {
    return 0.5 * std::pow(10.0, -precision) + std::fabs(shown) * 5e-16;
}

} // namespace

TEST_F(RoundTrip, PhysicalValues) {
    const CTrvAdaptors adaptors;
    for (int quantity = 0; quantity < static_cast<int>(EQuantity::count); ++quantity) {
        CPhysicalValueAdaptor adaptor = adaptors.Get(static_cast<EQuantity>(quantity));
        for (const auto& [symbol, unit] : adaptors.Get(static_cast<EQuantity>(quantity)).GetUnits()) {
            ASSERT_TRUE(adaptor.SetCurrentUnit(symbol));
            for (adaptor.precision = 0; adaptor.precision <= 15; ++adaptor.precision)
                for (const char16_t separator : kSeparators) {
                    adaptor.decimalSeparator = separator;
                    adaptor.showUnit = m_random() % 4 != 0;
                    adaptor.showPlusSign = m_random() % 4 == 0;
                    adaptor.width = m_random() % 4 == 0 ? 12 : -1;
                    const double value = Number(1000.0) * unit.A / unit.B;
                    double read = NAN;
                    const std::string text = ShowAndRead(adaptor, value, read);
                    const double shown = unit.FromInternal(value);
                    ASSERT_NEAR(unit.FromInternal(read), shown, Tolerance(shown, adaptor.precision)) << text;
                }
            for (const double value : {HUGE_VAL, -HUGE_VAL, std::nan("")}) {
                std::string text;
                double read = 0.0;
                ASSERT_TRUE(adaptor.ValueToText(value, text));
                ASSERT_FALSE(adaptor.TextToValue(text, read)) << "shown, but not typed: " << text;
            }
        }
    }
}

TEST_F(RoundTrip, Angles) {
    const double unitOfLast[] = {1.0, 60.0, 3600.0, 60.0}; // by notation, in parts of a degree
    for (int round = 0; round < 4 * 16 * 3 * 40; ++round) {
        CLatitudeLongitudeAdaptor adaptor(round % 2 == 0);
        adaptor.notation = static_cast<EAngleNotation>(round / 2 % 4);
        adaptor.precision = round / 8 % 16;
        adaptor.decimalSeparator = kSeparators[round / 128 % 3];
        adaptor.useMathematicalSign = m_random() % 2 == 0;
        adaptor.hideSeparators = m_random() % 2 == 0;
        if (m_random() % 2 == 0) {
            constexpr char16_t odd[] = {u' ', u'.', u',', u'd', u'\u2032', u'-'};
            adaptor.degreesSeparator = odd[m_random() % 6];
            adaptor.minutesSeparator = odd[m_random() % 6];
        }
        double value = std::uniform_real_distribution(-180.0, 180.0)(m_random);
        if (m_random() % 4 == 0)
            value = std::round(value) - std::pow(10.0, -static_cast<int>(m_random() % 14));
        double read = NAN;
        const std::string text = ShowAndRead(adaptor, value, read);
        const double unit = unitOfLast[static_cast<int>(adaptor.notation)];
        ASSERT_NEAR(read * unit, value * unit, Tolerance(200 * unit, adaptor.precision)) << text;
    }
}

TEST_F(RoundTrip, Spans) {
    CDateTimeSpanAdaptor adaptor;
    for (int round = 0; round < 8 * 5 * 3 * 20; ++round) {
        adaptor.precision = adaptor.total.precision = round % 8;
        const int form = round / 8 % 5; // the clock form, and the total in each unit
        adaptor.notation = form == 0 ? ESpanNotation::dayHourMinuteSecond : ESpanNotation::totalElapsedTime;
        const SUnitRow& unit = Units::kSpan[form == 0 ? 1 : form - 1];
        adaptor.total.SetCurrentUnit(unit.symbol);
        adaptor.decimalSeparator = adaptor.total.decimalSeparator = kSeparators[round / 40 % 3];
        adaptor.hourSeparator = m_random() % 4 == 0 ? u' ' : u':';
        auto ticks = static_cast<std::int64_t>(m_random()) << (m_random() % 20);
        if (m_random() % 3 == 0) ticks = ticks / kTicksPerMinute * kTicksPerMinute - 1;
        const CDateTimeSpan value(m_random() % 2 ? ticks : -ticks);
        CDateTimeSpan read;
        const std::string text = ShowAndRead(adaptor, value, read);
        const double ofUnit = unit.A / unit.B * kTicksPerSecond; // ticks
        ASSERT_NEAR(static_cast<double>(read.GetTicks()), static_cast<double>(value.GetTicks()),
                    Tolerance(0.0, adaptor.precision) * ofUnit + 2.0 + 4e-16 * static_cast<double>(ticks))
            << text;
    }
}

TEST_F(RoundTrip, Dates) {
    CDateTimeAdaptor adaptor;
    CDateTime newYear;
    newYear.SetDateTime(2024, 12, 31, 23, 59, 59, 9999999);
    for (int round = 0; round < 8 * 7 * 3 * 20; ++round) {
        adaptor.precision = round % 8;
        adaptor.notation = static_cast<EDateNotation>(round / 8 % 7);
        adaptor.decimalSeparator = kSeparators[round / 56 % 3];
        constexpr char16_t separators[] = {u'/', u'-', u' ', u'.'};
        adaptor.dateSeparator = separators[m_random() % 4];
        adaptor.hourSeparator = separators[m_random() % 4];
        adaptor.timeSeparator = m_random() % 2 ? u'T' : u' ';
        // 1971 to 2067, so that two digits of a year are enough.
        const std::int64_t offset = static_cast<std::int64_t>(m_random() % 35000) * kTicksPerDay +
                                    static_cast<std::int64_t>(m_random() * 201ULL % kTicksPerDay);
        CDateTime value(116700000000000000ULL + static_cast<std::uint64_t>(offset));
        if (m_random() % 8 == 0) value = newYear;
        CDateTime read = value; // gives the day to the notations without one
        const std::string text = ShowAndRead(adaptor, value, read);
        const double half =
            adaptor.notation == EDateNotation::compact ? 1e7 : 0.5 * std::pow(10.0, 7 - adaptor.precision);
        ASSERT_LE(std::fabs(static_cast<double>((read - value).GetTicks())), half) << text;
    }
}
