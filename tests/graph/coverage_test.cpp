#include "foundation/texts.h"
#include "graph/coverage_strip.h"
#include "graph/dive.h"

using namespace test;

namespace {

// Seconds at which a packet is written, and what the walk makes of them.
struct SCase {
    const char* name;
    std::vector<double> seconds;
    std::optional<Period> extent;
    std::vector<Period> gaps;
    std::vector<double> jumps; // at these times
};

std::vector<double> Steady(double from, double to, double step = 1) {
    std::vector<double> seconds;
    for (double second = from; second <= to; second += step) seconds.push_back(second);
    return seconds;
}
std::vector<double> operator+(std::vector<double> left, const std::vector<double>& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

TEST(Coverage, FindsGapsAndJumps) {
    const SCase cases[] = {
        {"steady", Steady(0, 500), Period(0, 500), {}, {}},
        {"one packet", {7}, Period(7, 7), {}, {}},
        {"a few", {0, 1, 2, 50, 51}, Period(0, 51), {{2, 50}}, {}},
        {"a late gap", Steady(0, 300) + Steady(320, 400), Period(0, 400), {{300, 320}}, {}},
        {"a short pause", Steady(0, 300) + Steady(309, 400), Period(0, 400), {}, {}},
        {"clock set back", Steady(0, 300) + Steady(100, 200), Period(0, 300), {}, {300}},
    };
    CTemporaryFolder folder;
    for (const SCase& row : cases) {
        constexpr std::string_view channels[] = {"DEPTH"};
        Enregistrement::CRecordingWriter recording;
        ASSERT_TRUE(recording.Create(folder / "r.tarin", channels));
        CXpfTarinDepthPacketV1 depth;
        for (const double second : row.seconds) {
            depth.SetDate(0, Seconds(second));
            ASSERT_TRUE(recording.Write("DEPTH", depth));
        }
        ASSERT_TRUE(recording.Close());
        const auto number = FindChannelLayout("DEPTH") - GetChannelLayouts().data();
        CTrv1DCoverageQuery query({folder / "r.tarin", EFileKind::tarin, static_cast<std::uint16_t>(number)},
                                  {});
        ASSERT_EQ(query.Execute(), Application_Tarvel::EQueryEnd::done) << row.name;
        const SCoverage& found = query.GetCoverage();
        const auto toPeriod = [](const SPeriod& period) {
            return Period(period.start.GetTotalSeconds(), period.end.GetTotalSeconds());
        };
        ASSERT_TRUE(found.extent) << row.name;
        EXPECT_EQ(toPeriod(*found.extent), row.extent) << row.name;
        std::vector<Period> gaps;
        for (const SPeriod& gap : found.gaps) gaps.push_back(toPeriod(gap));
        EXPECT_EQ(gaps, row.gaps) << row.name;
        std::vector<double> jumps;
        for (const SClockJump& jump : found.jumps) jumps.push_back(jump.at.GetTotalSeconds());
        EXPECT_EQ(jumps, row.jumps) << row.name;
    }
}

TEST_F(Dive, StripFollowsTheFiles) {
    OpenAndLoad();
    int changes = 0;
    CTrv1DCoverage coverage(*m_document, [&] { ++changes; });
    const SRect strip = {0, 700, 1000, GetStripHeight(coverage)};
    const SRect area = Stack().GetPortlets()[0]->GetPlottingRect();
    const auto early = HitStrip(coverage, Stack(), strip, {area.x + 10, strip.y + 20});
    ASSERT_TRUE(early);
    EXPECT_EQ(early->text,
              "dive.tarout: " + std::string(Outils_Texte::GetText(Outils_Texte::EText::loading)));
    ASSERT_TRUE(RunUntil([&] {
        return coverage.GetFiles().size() == 2 && !coverage.IsBusy() && coverage.GetFiles()[0].known;
    }));
    EXPECT_GT(changes, 0);
    EXPECT_EQ(coverage.GetFiles()[0].coverage.extent->end, Seconds(300));
    EXPECT_EQ(coverage.GetFiles()[1].coverage.extent->end, Seconds(120));

    m_loader->ShowPeriod({Seconds(0), Seconds(100)});
    const auto hit = HitStrip(coverage, Stack(), strip, {area.x + 10, strip.y + 20});
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->period, (SPeriod{Seconds(0), Seconds(120)}));
    EXPECT_TRUE(hit->text.starts_with("dive.tarout: data from ")) << hit->text;
    EXPECT_FALSE(HitStrip(coverage, Stack(), strip, {area.x + 10, strip.y - 1}));
    Recording().timeOffset = Metier_Tarvel::ToStoredTime(Seconds(-50));
    Tell(hintDataFileTimeOffsetChanged, &Recording());
    ASSERT_TRUE(RunUntil([&] { return !coverage.IsBusy(); }));
    EXPECT_EQ(coverage.GetFiles()[0].coverage.extent->start, Seconds(-50));
}

} // namespace
