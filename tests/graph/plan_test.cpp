#include "foundation/texts.h"
#include "graph/data_fixture.h"
#include "graph/plan_picture.h"
#include "xpf/tarin_layouts.h"

#include <QImage>
#include <QPainter>

#include <gmock/gmock.h>

#include <numbers>
#include <random>

using namespace test;
using Outils_Texte::EText;
using testing::HasSubstr;

namespace {

// Lengths of a degree on WGS-84, and of an ellipse drawn by hand.
TEST(LocalFrameTest, PlacesAreMetresOnTheEllipsoid) {
    const struct {
        double latitude, north, east; // metres of one degree there
    } rows[] = {
        {0, 110574.3, 111319.5}, {45, 111131.8, 78846.8}, {60, 111412.2, 55800.0}, {-45, 111131.8, 78846.8}};
    constexpr double kStep = 1e-4; // degrees: the ground is flat over ten metres
    for (const auto& row : rows) {
        const CLocalFrame frame(row.latitude, 170);
        const SPlace place = frame.ToPlace(row.latitude + kStep, 170 + kStep);
        EXPECT_NEAR(place.north, row.north * kStep, 1e-4) << row.latitude;
        EXPECT_NEAR(place.east, row.east * kStep, 1e-4) << row.latitude;
        EXPECT_NEAR(frame.GetMetresPerLatitude(), row.north, 0.1);
        EXPECT_EQ(frame.ToPlace(row.latitude, 170), SPlace());
        EXPECT_NEAR(frame.ToPlace(row.latitude, -170).east, frame.ToPlace(row.latitude, 190).east, 1e-6);
    }
}

TEST(LocalFrameTest, EllipseHasTheAxesOfTheCovariance) {
    const struct {
        double north, east, covariance, major, minor, angle;
    } rows[] = {{1, 3, 0, 3, 1, 0},
                {3, 1, 0, 3, 1, std::numbers::pi / 2},
                {1, 1, 0.5, std::sqrt(1.5), std::sqrt(0.5), std::numbers::pi / 4},
                {1, 1, -0.5, std::sqrt(1.5), std::sqrt(0.5), -std::numbers::pi / 4},
                {1, 1, 9, std::sqrt(2), 0, std::numbers::pi / 4}};
    for (const auto& row : rows) {
        const SUncertainty ellipse = ToEllipse(row.north, row.east, row.covariance);
        EXPECT_NEAR(ellipse.semiMajor, row.major, 1e-9);
        EXPECT_NEAR(ellipse.semiMinor, row.minor, 1e-7);
        EXPECT_NEAR(ellipse.angle, row.angle, 1e-9);
    }
}

double DistanceToSegment(SPlace p, SPlace a, SPlace b) {
    const double dx = b.east - a.east, dy = b.north - a.north, length2 = dx * dx + dy * dy;
    const double t =
        length2 > 0 ? std::clamp(((p.east - a.east) * dx + (p.north - a.north) * dy) / length2, 0.0, 1.0) : 0;
    return std::hypot(p.east - a.east - t * dx, p.north - a.north - t * dy);
}

class TrackTest : public testing::Test {
  protected:
    // A walk with turns, stops, spikes, a gap and a position that is none.
    TrackTest() {
        CTestRecording recording(m_path);
        std::mt19937 random(7);
        std::uniform_real_distribution<double> turn(-0.2, 0.2);
        double heading = 0, latitude = 45, longitude = 179.99, time = 0;
        for (int i = 0; i < 4000; ++i) {
            heading += turn(random);
            const double speed = i / 500 % 3 == 1 ? 1e-9 : 1e-5;
            latitude += speed * std::cos(heading);
            longitude += speed * std::sin(heading);
            if (longitude > 180) longitude -= 360;
            time += i == 2000 ? 100 : 0.1;
            const double spike = i == 1234 ? 0.01 : 0;
            m_points.push_back({latitude + spike, longitude});
            recording.Gps(time, latitude + spike, longitude, 0);
            if (i == 3000) recording.Gps(time + 0.05, std::nan(""), longitude, 0);
        }
    }
    STrack Reduce(STrackRequest request) {
        request.latitude = Persistance_Xpf::kGpsLayout.IndexOf("Latitude");
        request.longitude = Persistance_Xpf::kGpsLayout.IndexOf("Longitude");
        CTrvTrackQuery query({m_path, Persistance_Xpf::EFileKind::tarin, kGpsNumber},
                             {Seconds(-1e6), Seconds(1e6)}, request, {});
        EXPECT_EQ(query.Execute(), EQueryEnd::done);
        return query.TakeTrack();
    }
    // The distance of a place to the lines that the track draws.
    static double DistanceTo(const STrack& track, SPlace place) {
        double nearest = std::numeric_limits<double>::infinity();
        for (std::size_t i = 0; i < track.points.size(); ++i) {
            const std::size_t from = i > 0 && !track.points[i].isBreak ? i - 1 : i;
            nearest =
                std::min(nearest, DistanceToSegment(place, track.points[from].place, track.points[i].place));
        }
        return nearest;
    }

    CTemporaryFolder m_folder;
    std::filesystem::path m_path = m_folder / "walk.tarin";
    std::vector<SGeoPoint> m_points;
};

TEST_F(TrackTest, WholeKeepsCellsAndExtremes) {
    STrackRequest request;
    request.across = 200;
    const STrack track = Reduce(request);
    EXPECT_EQ(track.count, m_points.size());
    EXPECT_LT(track.points.size(), m_points.size() / 3);
    EXPECT_GT(track.points.size(), 100u);
    double north = -1e9, drawn = -1e9;
    for (const SGeoPoint& point : m_points) {
        const SPlace place = track.frame.ToPlace(point.latitude, point.longitude);
        EXPECT_LE(DistanceTo(track, place), track.cell * 1.5);
        north = std::max(north, place.north);
    }
    for (const STrackPoint& point : track.points) drawn = std::max(drawn, point.place.north);
    EXPECT_EQ(drawn, north) << "the spike is as high as it is";
    const auto breaks = std::ranges::count_if(track.points, &STrackPoint::isBreak);
    EXPECT_EQ(breaks, 3) << "the beginning, the gap, the position that is none";
    EXPECT_EQ(track.points.front().place, SPlace());
}

TEST_F(TrackTest, RegionKeepsWhatIsSeenOfIt) {
    const STrack whole = Reduce({});
    STrackRequest request;
    request.frame = whole.frame;
    const SGeoPoint middle = m_points[600];
    request.region = SGeoBox{{middle.latitude - 2e-4, middle.longitude - 2e-4},
                             {middle.latitude + 2e-4, middle.longitude + 2e-4}};
    request.cell = 0.01;
    const STrack detail = Reduce(request);
    EXPECT_LT(detail.points.size(), m_points.size());
    std::size_t seen = 0;
    for (const SGeoPoint& point : m_points) {
        const double turn = std::abs(point.longitude - middle.longitude);
        if (std::abs(point.latitude - middle.latitude) > 2e-4 || turn > 2e-4) continue;
        ++seen;
        EXPECT_LE(DistanceTo(detail, whole.frame.ToPlace(point.latitude, point.longitude)), 0.02);
    }
    EXPECT_GT(seen, 50u);
}

class PlanTest : public CDataFixture {
  protected:
    PlanTest() {
        m_plan.emplace(*m_document, m_state, m_adaptors);
        m_plan->SetSize({400, 300}, 1);
    }
    ~PlanTest() override { m_plan.reset(); }
    void Show() {
        m_plan->SetShown(true);
        Load();
    }
    void Load() {
        RunUntil([this] { return !m_plan->IsLoading(); });
        m_host.m_queue.RunPending();
    }
    QImage Draw() {
        QImage image(400, 300, QImage::Format_RGB32);
        QPainter painter(&image);
        DrawPlan(*m_plan, painter, {400, 300});
        return image;
    }

    std::optional<CTrvPlan> m_plan;
};

TEST_F(PlanTest, TracksAreFromTheFirstPointOfTheResult) {
    EXPECT_EQ(m_plan->GetNotice(), Text(EText::planEmpty)) << "hidden, it asks for nothing";
    Show();
    EXPECT_EQ(m_plan->GetNotice(), "");
    ASSERT_EQ(m_plan->GetTracks().size(), 2u);
    const SPlanTrack &result = m_plan->GetTracks()[0], &gps = m_plan->GetTracks()[1];
    EXPECT_EQ(result.name, "Result");
    EXPECT_EQ(gps.name, "Gps #1");
    EXPECT_EQ(m_plan->GetFrame()->GetLatitude(), kFirstLatitude);
    EXPECT_EQ(result.whole->points.front().place, SPlace());
    EXPECT_NEAR(gps.whole->points.front().place.north, kGpsBegin * kDegreesPerSecond * 111131.8, 1e-3);
    // Everything is in the picture.
    for (const SPlanTrack& track : m_plan->GetTracks())
        for (const STrackPoint& point : track.whole->points) {
            const auto pixel = m_plan->GetScale().ToPixel(point.place);
            EXPECT_TRUE(Outils_Plot2D::SRect({0, 0, 400, 300}).Contains(pixel));
        }
    Close();
    EXPECT_EQ(m_plan->GetNotice(), Text(EText::planNoProject));
}

TEST_F(PlanTest, ZoomKeepsThePlaceUnderThePointer) {
    Show();
    const SPoint pointer{100, 200};
    const SPlace before = m_plan->GetScale().ToPlace(pointer);
    const double coarse = m_plan->GetScale().metresPerPixel;
    for (int i = 0; i < 6; ++i) m_plan->ZoomAt(pointer, 0.5);
    const SPlace after = m_plan->GetScale().ToPlace(pointer);
    EXPECT_NEAR(after.east, before.east, 1e-6);
    EXPECT_NEAR(after.north, before.north, 1e-6);
    EXPECT_NEAR(m_plan->GetScale().metresPerPixel, coarse / 64, 1e-9);
    Load();
    m_plan->Pan(10, -20);
    EXPECT_NEAR(m_plan->GetScale().ToPlace({110, 180}).east, before.east, 1e-6);
    m_document->UpdateAllViews(nullptr, hintDataFileContentChanged, &Recording());
    Load();
    EXPECT_NEAR(m_plan->GetScale().metresPerPixel, coarse / 64, 1e-9) << "data moves nothing";
    m_plan->ShowAll();
    EXPECT_NEAR(m_plan->GetScale().metresPerPixel, coarse, 1e-9);
}

TEST_F(PlanTest, CursorAndShownPeriodAreMarked) {
    Show();
    const QImage plain = Draw();
    SetCursors(50);
    RunUntil([this] { return m_plan->GetCursors().size() == 2; });
    const SPlanCursor cursor = m_plan->GetCursors()[0];
    EXPECT_NEAR(cursor.place.north, 50 * kDegreesPerSecond * 111131.8, 1e-3);
    EXPECT_TRUE(cursor.hasUncertainty);
    EXPECT_EQ(cursor.ellipse.semiMajor, 4);
    const QImage marked = Draw();
    EXPECT_NE(marked, plain);
    m_state.SetPeriod({Seconds(20), Seconds(40)});
    EXPECT_NE(Draw(), marked);

    // A click beside the track puts the cursor to its sample.
    const auto& points = m_plan->GetTracks()[0].whole->points;
    const SPoint at = m_plan->GetScale().ToPixel(points[points.size() / 4].place);
    EXPECT_TRUE(m_plan->SetCursorAt({at.x + 2, at.y}));
    EXPECT_NE(m_state.GetCursor(ECursor::first), Seconds(50));
    EXPECT_FALSE(m_plan->SetCursorAt({390, 10}));
}

} // namespace
