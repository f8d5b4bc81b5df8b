#include "values/adaptors.h"

#include "foundation/archive.h"
#include "values/units.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

using namespace Outils_Configuration;
using namespace Outils_Temps;
using namespace Outils_Valeurs;

namespace {

template <class Adaptor, class Value>
std::string Shown(const Adaptor& adaptor, const Value& value) {
    std::string text;
    adaptor.ValueToText(value, text);
    return text;
}

// The value read, or NaN for a text refused; a refusal must not touch the value.
double Read(const CNumericValueAdaptor& adaptor, std::string_view text) {
    double value = 4711.0;
    if (adaptor.TextToValue(text, value)) return value;
    EXPECT_EQ(value, 4711.0) << text;
    return NAN;
}

CDateTime Date(std::uint16_t year, std::uint16_t month, std::uint16_t day, std::uint16_t hour,
               std::uint16_t minute, std::uint16_t second, std::int64_t ticks = 0) {
    CDateTime date;
    date.SetDateTime(year, month, day, hour, minute, second, ticks);
    return date;
}

} // namespace

TEST(Units, RowsAreSound) {
    const std::span<const SUnitRow> tables[] = {
        Units::kDistance,     Units::kTime,         Units::kAngle,         Units::kSpeed,
        Units::kAcceleration, Units::kAngularSpeed, Units::kCrossvariance, Units::kScaleFactor,
        Units::kTimeDrift,    Units::kRawFog,       Units::kRawAcc,        Units::kSpan};
    for (const auto units : tables) {
        std::set<std::string_view> names, symbols;
        for (const SUnitRow& row : units) {
            EXPECT_TRUE(names.insert(row.name).second && symbols.insert(row.symbol).second) << row.name;
            EXPECT_TRUE(row.A > 0 && row.B > 0 && !row.symbol.empty()) << row.name;
        }
    }
}

// A value of each quantity as the default settings show it, then texts in its other units.
TEST(Adaptors, AreSetUpFromTheFile) {
    CTrvCnfConfigFile configuration;
    CTrvAdaptors adaptors;
    adaptors.Configure(configuration);
    constexpr double degree = 180 / std::numbers::pi;
    using E = EQuantity;
    const std::tuple<E, double, std::string_view, std::vector<std::pair<const char*, double>>> rows[] = {
        {E::rate, 0.1, "0.100 s", {}},
        {E::altitude, -12.0625, "-12.062 m", {{"1 nm", NAN}, {"2 km", 2000}}},
        {E::misalignment, 90.0, "90.000 °", {{"1 rad", degree}}},
        {E::leverArm, 1.5, "1.500 m", {{"-2 cm", -0.02}}},
        {E::scaleFactor, 0.0125, "1.25 %", {{"50 %", 0.5}}},
        {E::currentSpeed, 0.5, "0.50 m/s", {}},
        {E::currentTime, 3600.0, "3600 s", {}},
        {E::linearSpeed, 2.0, "2.00 m/s", {{"36 kt", 18.52}}},
        {E::linearAcceleration, 9.81, "9.81 m/s2", {{"1 ft/s2", 0.3048}}},
        {E::angularSpeed, 15 / degree / 3600, "15.0 °/h", {{"3600 °/h", 1 / degree}}},
        {E::distance,
         1.0,
         "1.00 m",
         {{"12 ft", 3.6576}, {"1 in", 0.0254}, {"1 yd", 0.9144}, {"1 mi", 1609.344}, {"1 nm", 1852}}},
        {E::attitude, 1.0, "1.000 °", {}},
        {E::crossvariance, 4.0, "4.00 m²", {}},
        {E::timeDrift, 0.0015, "1.500 ms", {{"1 µs", 1e-6}, {"1 s", 1}}},
        {E::rawFogMeasurement,
         648.0,
         "3.142 µrad",
         {{"1 °", 3600000},
          {"1 rad", 3600000 * degree},
          {"1 mrad", 3600 * degree},
          {"1 µrad", 3.6 * degree}}},
        {E::rawAccMeasurement, 10000.0, "1.000 mm/s", {{"1 m/s", 1e7}, {"1 µm/s", 10}}}};
    ASSERT_EQ(std::size(rows), static_cast<std::size_t>(EQuantity::count));
    for (const auto& [quantity, value, text, typed] : rows) {
        EXPECT_EQ(Shown(adaptors.Get(quantity), value), text);
        for (const auto& [entry, meant] : typed) {
            const double read = Read(adaptors.Get(quantity), entry);
            EXPECT_TRUE(std::isnan(read) == std::isnan(meant) && !(std::fabs(read / meant - 1) > 1e-15))
                << entry << " " << read;
        }
    }
    EXPECT_EQ(Shown(adaptors.GetLeverArm().GetAxis(2), 1.0), "1.000 m");
    EXPECT_EQ(Shown(adaptors.GetGeographicPosition().latitude, -48.5), "48°30.000'S");
    EXPECT_EQ(Shown(adaptors.GetGeographicPosition().longitude, 4.25), "004°15.000'E");
    EXPECT_EQ(Shown(adaptors.GetDateTime(), Date(2024, 3, 1, 4, 5, 6)), "01/03/2024 04:05:06.000");
    // The unit that the file gives by default is none of a span's.
    EXPECT_EQ(adaptors.GetDateTimeSpan().total.GetCurrentUnit().symbol, "ms");

    configuration.Set(Cnf<"adaptors/decimalSeparator">, u',');
    configuration.Set(Cnf<"adaptors/distance/unit">, "nm");
    configuration.Set(Cnf<"adaptors/altitude/unit">, "nm");
    configuration.Set(Cnf<"adaptors/leverArm/precision">, 1);
    configuration.Set(Cnf<"adaptors/dateTime/hourSeparator">, u'h');
    adaptors.Configure(configuration);
    EXPECT_EQ(Shown(adaptors.Get(EQuantity::distance), 926.0), "0,50 nm");
    EXPECT_EQ(Shown(adaptors.Get(EQuantity::altitude), 926.0), "926,000 m") << "unknown there";
    EXPECT_EQ(Shown(adaptors.GetLeverArm().GetAxis(1), 1.25), "1,2 m");
    EXPECT_EQ(Shown(adaptors.GetGeographicPosition().latitude, 0.5), "00°30.000'N");
    EXPECT_EQ(Shown(adaptors.GetDateTimeSpan(), CDateTimeSpan(kTicksPerHour)), "01h00h00,000");
    EXPECT_EQ(Shown(adaptors.GetForNature(3), 926.0), "0,50 nm");
    EXPECT_EQ(Shown(adaptors.GetForNature(20), 0.125), "0,125 s");
    EXPECT_EQ(Shown(adaptors.GetForNature(2), -0.5), "000°30.000'W");
    EXPECT_EQ(Shown(adaptors.GetForNature(4000000000u), 0.5), "0,500");
}

TEST(PhysicalValueAdaptor, ReadsNumbersWithItsUnits) {
    CPhysicalValueAdaptor metres = CTrvAdaptors().Get(EQuantity::distance);
    EXPECT_EQ(Read(metres, "\t12ft "), Read(metres, "12 ft"));
    EXPECT_EQ(Read(metres, ".5"), 0.5);
    for (const char* bad :
         {"", " ", "m", "-", ".0", "12 xx", "12 FT", "1.5.5", "1e999", "nan", "1e306 km", "--1"})
        EXPECT_TRUE(std::isnan(Read(metres, bad))) << bad;
    metres.decimalSeparator = u',';
    EXPECT_EQ(Shown(metres, 1.5), "1,500 m");
    EXPECT_EQ(Read(metres, "1,5"), 1.5);
    metres.SetCurrentUnit("ft");
    EXPECT_EQ(Read(metres, "12 m"), 12.0);

    EXPECT_FALSE(metres.AddUnit(1, 1, 0, "again", "ft") || metres.AddUnit(0, 1, 0, "x", "x") ||
                 metres.AddUnit(1, 0, 0, "x", "x") || metres.AddUnit(1, 1, 0, "x", ""));
    // The offset in force is that of the unit shown.
    CPhysicalValueAdaptor warm;
    warm.showUnit = false;
    EXPECT_EQ(Shown(warm, 1.0), "1.000") << "no unit yet";
    warm.AddUnit(5, 9, 32, "fahrenheit", "F");
    warm.AddUnit(1, 1, 0, "celsius", "C");
    EXPECT_EQ(Shown(warm, 100.0), "212.000");
    EXPECT_EQ(Read(warm, "212"), 100.0);
    EXPECT_EQ(Read(warm, "132 C"), 100.0);
}

TEST(NumericValueAdaptor, GivesTheRestOfTheText) {
    CNumericValueAdaptor adaptor;
    adaptor.decimalSeparator = u'\u00B7';
    double value = 0.0;
    std::string_view rest;
    EXPECT_TRUE(adaptor.TextToValue(" 1·5 a·b", value, &rest));
    EXPECT_EQ(value, 1.5);
    EXPECT_EQ(rest, " a·b");
    EXPECT_TRUE(std::isnan(Read(adaptor, "1·5 ")));
    adaptor = {};
    adaptor.width = 8;
    adaptor.showPlusSign = true;
    EXPECT_EQ(Shown(adaptor, 1.5), "+001.500");
    EXPECT_EQ(Shown(adaptor, -1.5), "-001.500");
}

TEST(LatitudeLongitudeAdaptor, ShowsNotationsAndCarriesAtSixty) {
    const double minute = 1.0 / 60.0;
    const double second = minute / 60.0;
    const std::tuple<EAngleNotation, double, std::string_view> rows[] = {
        {EAngleNotation::degrees, -48.5, "48.500°S"},
        {EAngleNotation::degreesMinutes, -0.5, "00°30.000'S"},
        {EAngleNotation::degreesMinutes, 59.9999 * minute, "01°00.000'N"},
        {EAngleNotation::degreesMinutes, 9.9996 * minute, "00°10.000'N"},
        {EAngleNotation::degreesMinutesSeconds, 48 + 7 * minute + 5.25 * second, "48°07'05.250\"N"},
        {EAngleNotation::degreesMinutesSeconds, 59 * minute + 59.9999 * second, "01°00'00.000\"N"},
        {EAngleNotation::nmea, 48 + 7.038 * minute, "4807.038,N"},
        {EAngleNotation::nmea, 89 + 59.9999 * minute, "9000.000,N"},
    };
    CLatitudeLongitudeAdaptor adaptor(true);
    adaptor.hideSeparators = false;
    for (const auto& [notation, value, text] : rows) {
        adaptor.notation = notation;
        EXPECT_EQ(Shown(adaptor, value), text);
    }
    CLatitudeLongitudeAdaptor longitude(false);
    EXPECT_EQ(Shown(longitude, -4.5), "004°30.000 W") << "separators hidden";
    longitude.useMathematicalSign = true;
    EXPECT_EQ(Shown(longitude, -4.5), "-004°30.000");
}

TEST(LatitudeLongitudeAdaptor, ReadsTheUsualFormsOnly) {
    const CLatitudeLongitudeAdaptor latitude(true);
    const CLatitudeLongitudeAdaptor longitude(false);
    for (const char* text : {"48°30'N", "48 30", "+48.5", "48,5", "N48°30.000", " 48d 30m 0 n", "48°30'00\"N",
                             "48.30.00", "48.30.00,0", "4830,N", "4830.000,N"})
        EXPECT_DOUBLE_EQ(Read(latitude, text), 48.5) << text;
    EXPECT_DOUBLE_EQ(Read(longitude, "w 5,30.5"), -(5 + 30.5 / 60));
    EXPECT_DOUBLE_EQ(Read(longitude, "-5 30 36"), -5.51);
    for (const char* text : {"", "N", "48°30'E", "E48", "48°60.000'N", "48 30 60", "48 29 60,0", "1 2 3 4",
                             "48 x", "-48S", "48°-3'", ".0", "°'"})
        EXPECT_TRUE(std::isnan(Read(latitude, text))) << text;
    EXPECT_TRUE(std::isnan(Read(longitude, "5°30'N")));
    EXPECT_TRUE(std::isnan(Read(latitude, "1" + std::string(1000000, ' ') + "x")));
}

TEST(DateTimeAdaptor, ShowsAndReadsEveryNotation) {
    const CDateTime date = Date(2024, 2, 29, 23, 59, 59, 9996000); // a Thursday
    const std::tuple<EDateNotation, std::string_view, std::vector<const char*>> rows[] = {
        {EDateNotation::dayMonthYear,
         "01/03/2024 00:00:00.000",
         {"01/03", "31/02/2024 00:00:00", "01/03/2024 24:00:00", "01/03/2024 00:00:60",
          "01/03/2024 00:00:00.", "01/03/2024", "1/1/1 0:0:0", "01/03/67560 00:00:00"}},
        {EDateNotation::monthDayYear, "03/01/2024 00:00:00.000", {"13/01/2024 00:00:00"}},
        {EDateNotation::yearMonthDay, "2024/03/01 00:00:00.000", {"2024/03/01 00:00:00.000Z"}},
        {EDateNotation::unixTime, "1709251200.000", {"--1", "9999999999999", "-99999999999"}},
        {EDateNotation::compact, "240229235959", {"24022923595", "240230235959"}},
        {EDateNotation::secondsOfDay, "86400.000", {"86400.001", "-1"}},
        {EDateNotation::secondsOfWeek, "432000.000", {"604800.001"}},
    };
    CDateTimeAdaptor adaptor;
    for (const auto& [notation, text, badOnes] : rows) {
        adaptor.notation = notation;
        EXPECT_EQ(Shown(adaptor, date), text);
        EXPECT_EQ(Shown(adaptor, CDateTime::Invalid()), "invalid date");
        EXPECT_EQ(Shown(adaptor, CDateTime(UINT64_MAX)), "invalid date");
        CDateTime read = date;
        for (const char* bad : badOnes) EXPECT_FALSE(adaptor.TextToValue(bad, read)) << bad;
        for (const char* bad : {"", "x", "."}) EXPECT_FALSE(adaptor.TextToValue(bad, read)) << bad;
        EXPECT_EQ(read, date);
    }
    adaptor = {};
    adaptor.precision = 12;
    EXPECT_EQ(Shown(adaptor, date), "29/02/2024 23:59:59.9996000");
    adaptor.showTime = false;
    EXPECT_EQ(Shown(adaptor, date), "29/02/2024");
    adaptor = {};
    adaptor.notation = EDateNotation::yearMonthDay;
    adaptor.dateSeparator = u'-';
    adaptor.timeSeparator = u'T';
    adaptor.precision = 7;
    EXPECT_EQ(Shown(adaptor, date), "2024-02-29T23:59:59.9996000");
    adaptor.notation = EDateNotation::secondsOfWeek;
    CDateTime read = CDateTime::Invalid();
    EXPECT_TRUE(adaptor.TextToValue("86400", read));
    EXPECT_EQ(read, Date(1980, 1, 7, 0, 0, 0));
    adaptor.notation = EDateNotation::unixTime;
    EXPECT_EQ(Shown(adaptor, Date(1969, 12, 31, 23, 59, 59, 5000000)), "-0.5000000");
}

TEST(DateTimeSpanAdaptor, ShowsAndReadsClockAndTotal) {
    CDateTimeSpanAdaptor adaptor;
    EXPECT_EQ(Shown(adaptor, CDateTimeSpan::FromSeconds(59.9996)), "00:01:00.000");
    EXPECT_EQ(Shown(adaptor, CDateTimeSpan::FromSeconds(-90061.5)), "-1 01:01:01.500");
    EXPECT_EQ(Shown(adaptor, CDateTimeSpan(INT64_MIN)), "-10675199 02:48:05.478");
    EXPECT_EQ(Shown(adaptor, CDateTimeSpan::Invalid()), "invalid span");
    CDateTimeSpan span;
    EXPECT_TRUE(adaptor.TextToValue("36:00:00", span));
    EXPECT_EQ(span, CDateTimeSpan(36 * kTicksPerHour));
    for (const char* bad : {"", "1:2", "1 24:00:00", "00:60:00", "00:00:60", "00:00:00x", "--00:00:00",
                            "999999999999 00:00:00", "1 2 00:00:00"})
        EXPECT_FALSE(adaptor.TextToValue(bad, span)) << bad;
    adaptor.notation = ESpanNotation::totalElapsedTime;
    EXPECT_TRUE(adaptor.TextToValue("1.5 h", span));
    EXPECT_EQ(Shown(adaptor, span), "5400000.000 ms");
    EXPECT_FALSE(adaptor.TextToValue("1e300 h", span));
    EXPECT_EQ(span, CDateTimeSpan(54 * kTicksPerHour / 36));
}

TEST(DateTimeAdaptor, RoundsTheEighthDigit) {
    const CDateTimeSpanAdaptor span;
    const CDateTimeAdaptor date;
    for (const auto& [fraction, ticks] : {std::pair("00000004", 0),
                                          {"00000005", 1},
                                          {"000000049", 0},
                                          {"123456749", 1234567},
                                          {"123456750", 1234568},
                                          {"99999995", 10000000}}) {
        CDateTimeSpan length;
        EXPECT_TRUE(span.TextToValue(std::string("00:00:01.") + fraction, length));
        EXPECT_EQ(length.GetTicks(), kTicksPerSecond + ticks) << fraction;
        CDateTime moment;
        EXPECT_TRUE(date.TextToValue(std::string("29/02/2024 00:00:01.") + fraction, moment));
        EXPECT_EQ(moment, Date(2024, 2, 29, 0, 0, 1, ticks)) << fraction;
    }
}

TEST(Adaptors, TakeAnyNumberAndAnySetting) {
    CNumericValueAdaptor number;
    number.width = INT32_MAX;
    CPhysicalValueAdaptor length = CTrvAdaptors().Get(EQuantity::distance);
    length.SetCurrentUnit("cm");
    CLatitudeLongitudeAdaptor angle;
    for (const double value : {1e308, -1e308, 5e-324, HUGE_VAL, -HUGE_VAL, std::nan(""), -0.0, 1e15 + 0.5})
        for (const std::int32_t precision : {INT32_MIN, -1, 0, 15, INT32_MAX})
            for (int notation = -1; notation < 5; ++notation) {
                number.precision = length.precision = angle.precision = precision;
                angle.notation = static_cast<EAngleNotation>(notation);
                for (const std::string& text :
                     {Shown(number, value), Shown(length, value), Shown(angle, value)})
                    EXPECT_LE(text.size(), 450u);
            }
}

// The adaptor after a store and a load.
template <class Adaptor>
Adaptor Archived(Adaptor adaptor) {
    using Outils_Objets::CArchive;
    Outils_Objets::CMemoryStream stream;
    CArchive store(stream, CArchive::store, nullptr);
    adaptor.Serialize(store);
    store.Close();
    Outils_Objets::CMemoryStream stored(stream.GetBytes());
    CArchive load(stored, CArchive::load, nullptr);
    Adaptor read;
    read.Serialize(load);
    return read;
}

TEST(Adaptors, ArchiveTheirFields) {
    CTrvCnfConfigFile configuration;
    configuration.Set(Cnf<"adaptors/leverArm/unit">, "yd");
    configuration.Set(Cnf<"adaptors/geographicPosition/notation">, EAngleNotation::nmea);
    CTrvAdaptors adaptors;
    adaptors.Configure(configuration);
    const auto leverArm = Archived(adaptors.GetLeverArm());
    EXPECT_EQ(Shown(leverArm.GetAxis(2), 0.9144), "1.000 yd");
    EXPECT_EQ(Read(leverArm.GetAxis(0), "1 km"), 1000.0);
    EXPECT_EQ(Shown(Archived(adaptors.GetGeographicPosition()).longitude, 1.5), "00130.000,E");
    CDateTimeAdaptor date;
    date.precision = 5;
    EXPECT_EQ(Archived(date).precision, 5);
    CDateTimeSpanAdaptor span;
    span.total.SetCurrentUnit("h");
    EXPECT_EQ(Archived(span).total.GetCurrentUnit().name, "hour");
}
