#include "graph/plan.h"

#include "config/config_file.h"
#include "foundation/texts.h"
#include "xpf/tarin_layouts.h"
#include "xpf/tarout_layouts.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace Presentation_Tarvel_Graphics {

using namespace Application_Tarvel;
using namespace Metier_Tarvel;
using namespace Persistance_Xpf;
using Outils_Configuration::Cnf;
using Outils_Texte::EText;
using Outils_Texte::GetText;

namespace {

constexpr float kMargin = 0.05f;     // of the picture about the whole of all tracks
constexpr float kLegendLine = 16;    // pixels, above everything
constexpr double kLeastSpan = 1;     // metres, of a picture of everything
constexpr double kFinest = 1e-4;     // metres a pixel
constexpr double kCoarsest = 1e5;    // metres a pixel
constexpr double kCellsPerPixel = 2; // device pixels
constexpr double kReach = 12;        // pixels, of a click beside a track
constexpr double kDetailMargin = 1;  // of the picture on each side of it, for pans

// Where the packets of a type have their position, and what they know of its errors.
struct SPositionFields {
    std::uint16_t type;
    EFileKind kind;
    std::uint32_t latitude, longitude, north, east, covariance;
};
constexpr SPositionFields FieldsOf(const SPacketLayout& layout, EFileKind kind, std::string_view latitude,
                                   std::string_view longitude) {
    return {layout.type,
            kind,
            layout.IndexOf(latitude),
            layout.IndexOf(longitude),
            layout.IndexOf("Std. dev. north"),
            layout.IndexOf("Std. dev. east"),
            layout.IndexOf("Covariance XY")};
}
// In the order in which tracks are drawn and named.
constexpr SPositionFields kPositions[] = {
    FieldsOf(kMorvexStdLayout, EFileKind::tarout, "Latitude0", "Longitude0"),
    FieldsOf(kGpsLayout, EFileKind::tarin, "Latitude", "Longitude"),
    FieldsOf(kUsblLayout, EFileKind::tarin, "Latitude", "Longitude"),
};

const SPositionFields* FindPositions(std::uint16_t type) {
    const auto* row = std::ranges::find(kPositions, type, &SPositionFields::type);
    return row == std::end(kPositions) ? nullptr : row;
}

constexpr ETrackMark kPointMarks[] = {ETrackMark::cross, ETrackMark::circle, ETrackMark::square,
                                      ETrackMark::triangle, ETrackMark::diamond};

} // namespace

// --- Values

const STrack* SPlanTrack::GetBest(const SGeoBox& seen) const {
    return detail && detailBox.Contains(seen) ? detail.get() : whole.get();
}

SPoint SPlanScale::ToPixel(const SPlace& place) const {
    return {size.width / 2 + static_cast<float>((place.east - centre.east) / metresPerPixel),
            size.height / 2 - static_cast<float>((place.north - centre.north) / metresPerPixel)};
}

SPlace SPlanScale::ToPlace(SPoint pixel) const {
    return {centre.east + static_cast<double>(pixel.x - size.width / 2) * metresPerPixel,
            centre.north - static_cast<double>(pixel.y - size.height / 2) * metresPerPixel};
}

// --- The plan

CTrvPlan::CTrvPlan(CTrvDocument& document, CViewState& state, const Outils_Valeurs::CTrvAdaptors& adaptors)
    : m_document(document),
      m_state(state),
      m_adaptors(adaptors),
      m_moments(document, [this] { Changed(); }),
      m_self(std::make_shared<CTrvPlan*>(this)),
      m_manager(document.GetMessageTarget()),
      m_subscription(state.Listen([this](EViewChange) { FollowView(); })) {
    m_document.AddView(this);
}

CTrvPlan::~CTrvPlan() {
    m_document.RemoveView(this);
    *m_self = nullptr;
    for (SQuestion& question : m_questions) {
        Withdraw(question.whole);
        Withdraw(question.detail);
    }
}

void CTrvPlan::SetShown(bool shown) {
    if (std::exchange(m_shown, shown) == shown) return;
    UpdateTracks(nullptr);
}

void CTrvPlan::SetSize(SSize size, double devicePixelRatio) {
    m_scale.size = size;
    m_devicePixelRatio = devicePixelRatio > 0 ? devicePixelRatio : 1;
    if (m_showsAll) FitAll();
    AskDetail();
    Changed();
}

SGeoBox CTrvPlan::GetSeen() const {
    if (!m_frame) return {};
    const SGeoPoint low = ToGeo(m_scale.ToPlace({0, m_scale.size.height}));
    return {low, ToGeo(m_scale.ToPlace({m_scale.size.width, 0}))};
}

// Good enough to say what is seen: the meridians are taken as parallel.
SGeoPoint CTrvPlan::ToGeo(const SPlace& place) const {
    return {m_frame->GetLatitude() + place.north / m_frame->GetMetresPerLatitude(),
            m_frame->GetLongitude() + place.east / std::max(m_frame->GetMetresPerLongitude(), 1.0)};
}

std::string CTrvPlan::GetNotice() const {
    if (!m_document.GetProject()) return std::string(GetText(EText::planNoProject));
    const bool hasPoints = std::ranges::any_of(
        m_tracks, [](const SPlanTrack& track) { return track.whole && !track.whole->points.empty(); });
    if (hasPoints) return {};
    return std::string(GetText(IsLoading() ? EText::loading : EText::planEmpty));
}

bool CTrvPlan::IsLoading() const {
    return std::ranges::any_of(m_questions, [](const SQuestion& question) {
        return question.whole || question.detail || question.isDue;
    });
}

std::vector<SPlanCursor> CTrvPlan::GetCursors() const {
    std::vector<SPlanCursor> cursors;
    if (!m_frame) return cursors;
    for (const SPlanTrack& track : m_tracks) {
        const SSample& sample = m_moments.Get(track.channel, 0);
        if (!sample.packet) continue;
        const SPositionFields* fields = FindPositions(sample.packet->GetLayout().type);
        double latitude = 0, longitude = 0, covariance = 0;
        if (!fields || !sample.packet->GetDouble(fields->latitude, latitude) ||
            !sample.packet->GetDouble(fields->longitude, longitude))
            continue;
        SPlanCursor cursor{&track, m_frame->ToPlace(latitude, longitude), false, 0, 0, {}};
        if (!std::isfinite(cursor.place.east + cursor.place.north)) continue;
        cursor.hasUncertainty = sample.packet->GetDouble(fields->north, cursor.north) &&
                                sample.packet->GetDouble(fields->east, cursor.east) &&
                                sample.packet->GetDouble(fields->covariance, covariance) &&
                                std::isfinite(cursor.north + cursor.east + covariance);
        if (cursor.hasUncertainty) cursor.ellipse = ToEllipse(cursor.north, cursor.east, covariance);
        cursors.push_back(cursor);
    }
    return cursors;
}

// --- Commands

void CTrvPlan::ZoomAt(SPoint pixel, double factor) {
    if (!(factor > 0)) return;
    const SPlace fixed = m_scale.ToPlace(pixel);
    m_scale.metresPerPixel = std::clamp(m_scale.metresPerPixel * factor, kFinest, kCoarsest);
    const SPlace moved = m_scale.ToPlace(pixel);
    m_scale.centre.east += fixed.east - moved.east;
    m_scale.centre.north += fixed.north - moved.north;
    m_showsAll = false;
    AskDetail();
    Changed();
}

void CTrvPlan::Pan(float dx, float dy) {
    m_scale.centre.east -= static_cast<double>(dx) * m_scale.metresPerPixel;
    m_scale.centre.north += static_cast<double>(dy) * m_scale.metresPerPixel;
    m_showsAll = false;
    AskDetail();
    Changed();
}

void CTrvPlan::ShowAll() {
    m_showsAll = true;
    FitAll();
    AskDetail();
    Changed();
}

bool CTrvPlan::FitAll() {
    double low[2] = {}, high[2] = {};
    bool isAny = false;
    for (const SPlanTrack& track : m_tracks) {
        if (!track.whole) continue;
        for (const STrackPoint& point : track.whole->points) {
            const double at[2] = {point.place.east, point.place.north};
            if (!std::isfinite(at[0] + at[1])) continue;
            for (int axis = 0; axis < 2; ++axis) {
                low[axis] = isAny ? std::min(low[axis], at[axis]) : at[axis];
                high[axis] = isAny ? std::max(high[axis], at[axis]) : at[axis];
            }
            isAny = true;
        }
    }
    // The legend has a line for each track, the origin, and two for the numbers at the cursor.
    const float inner = 1 - 2 * kMargin;
    const float legend =
        std::min(kLegendLine * static_cast<float>(m_tracks.size() + 3), m_scale.size.height / 3);
    if (!isAny || !(m_scale.size.width > 0) || !(m_scale.size.height > 0)) return false;
    const auto fit = [&](int axis, float pixels) {
        return std::max(high[axis] - low[axis], kLeastSpan) / static_cast<double>(pixels * inner);
    };
    m_scale.metresPerPixel = std::clamp(
        std::max(fit(0, m_scale.size.width), fit(1, m_scale.size.height - legend)), kFinest, kCoarsest);
    m_scale.centre = {(low[0] + high[0]) / 2,
                      (low[1] + high[1]) / 2 + static_cast<double>(legend / 2) * m_scale.metresPerPixel};
    return true;
}

bool CTrvPlan::SetCursorAt(SPoint pixel) {
    const SPlace sought = m_scale.ToPlace(pixel);
    const SGeoBox seen = GetSeen();
    for (const SPlanTrack& track : m_tracks) {
        const STrack* drawn = track.GetBest(seen);
        if (!drawn || drawn->points.empty()) continue;
        const auto distance = [&](const STrackPoint& point) {
            return std::hypot(point.place.east - sought.east, point.place.north - sought.north);
        };
        const auto nearest = std::ranges::min_element(drawn->points, {}, distance);
        if (!(distance(*nearest) <= kReach * m_scale.metresPerPixel)) continue;
        m_state.SetCursor(ECursor::first, nearest->date + track.origin);
        return true;
    }
    return false;
}

// --- Following

void CTrvPlan::OnUpdate(EHint hint, const Outils_Objets::CObject* object) {
    switch (hint) {
    case hintDataFileRemoved: UpdateTracks(object); break; // it exists until all views know
    case hintRefresh:
        m_frame.reset();
        m_showsAll = true;
        UpdateTracks(nullptr);
        Refresh(nullptr);
        break;
    case hintDataFileAdded:
    case hintDataFileTimeOffsetChanged:
    case hintOutputFileNameChanged:
    case hintDataLayersRebuilt: UpdateTracks(nullptr); break;
    case hintChannelFound:
    case hintDataFileContentChanged:
        UpdateTracks(nullptr);
        Refresh(object);
        break;
    case hintRunStarted:
    case hintRunEnded:
        if (const auto* project = m_document.GetProject()) {
            // Nobody must take the former result for the result of the run that has just started.
            for (SPlanTrack& track : m_tracks)
                if (track.channel.file == project->simulationParameters->outputFile.get())
                    track.whole = track.detail = nullptr;
            Refresh(project->simulationParameters->outputFile.get());
        }
        break;
    default: break;
    }
}

void CTrvPlan::UpdateTracks(const Outils_Objets::CObject* leaving) {
    std::vector<SPlanTrack> tracks;
    std::vector<SQuestion> questions;
    const auto* project = m_shown ? m_document.GetProject() : nullptr;
    const auto& settings = m_document.GetConfiguration();
    std::set<SChannelKey> channels;
    for (const SPositionFields& fields : kPositions) {
        if (!project) break;
        for (const auto& layer : project->dataModel->m_layers) {
            const SChannelLayout* layout = FindChannelLayout(layer->m_name);
            const CTrvDataFile* file = layer->m_dataFile;
            if (!file || file == leaving || !layout || layout->packetType != fields.type ||
                layout->kind != fields.kind || !layer->m_hasData)
                continue;
            SPlanTrack track;
            SQuestion question;
            track.channel = {file, layer->m_channelNumber};
            track.origin = ToSpan(file->timeOffset);
            for (std::size_t i = 0; i < m_tracks.size(); ++i)
                if (m_tracks[i].channel == track.channel) {
                    track.whole = m_tracks[i].whole;
                    track.detail = m_tracks[i].detail;
                    track.detailBox = m_tracks[i].detailBox;
                    question = std::exchange(m_questions[i], {});
                }
            track.name =
                fields.kind == EFileKind::tarout
                    ? std::string(GetText(EText::planResult))
                    : MakeChannelLabel(layer->m_name, settings.Get(Cnf<"viewMetadata/translateChannelLabel">),
                                       settings.Get(Cnf<"viewMetadata/displayChannelLabel">)) +
                          MakeFileSuffix(*project, file);
            track.colour = tracks.size();
            if (fields.kind == EFileKind::tarin)
                track.mark = kPointMarks[tracks.size() % std::size(kPointMarks)];
            channels.insert(track.channel);
            tracks.push_back(std::move(track));
            questions.push_back(std::move(question));
        }
    }
    for (SQuestion& question : m_questions) {
        Withdraw(question.whole);
        Withdraw(question.detail);
    }
    m_tracks = std::move(tracks);
    m_questions = std::move(questions);
    if (m_tracks.empty()) m_frame.reset();
    m_moments.Follow(channels);
    m_moments.SetTime(0, m_state.GetCursor(ECursor::first));
    AskWhole();
    Changed();
}

void CTrvPlan::Refresh(const Outils_Objets::CObject* file) {
    for (std::size_t i = 0; i < m_tracks.size(); ++i)
        if (!file || m_tracks[i].channel.file == file) m_questions[i].isDue = true;
    m_moments.Refresh(file);
    AskWhole();
    Changed();
}

// One round at a time. The first track that has positions gives the origin, so that the others wait for it.
void CTrvPlan::AskWhole() {
    if (std::ranges::any_of(m_questions, [](const SQuestion& q) { return q.whole != nullptr; })) return;
    STrackRequest request;
    request.across =
        kCellsPerPixel * m_devicePixelRatio *
        std::max({1000.0, static_cast<double>(m_scale.size.width), static_cast<double>(m_scale.size.height)});
    for (std::size_t i = 0; i < m_tracks.size(); ++i) {
        if (!std::exchange(m_questions[i].isDue, false)) continue;
        // The result is east and north of its own first point, and so is everything beside it.
        request.frame = m_tracks[i].mark == ETrackMark::line ? std::nullopt : m_frame;
        Ask(i, true, request);
        if (!request.frame) return;
    }
}

// Asks for what is seen in cells of half a pixel, where the whole is too coarse for it.
void CTrvPlan::AskDetail() {
    if (!m_frame || !(m_scale.size.width > 0)) return;
    const SGeoBox seen = GetSeen();
    const double cell = m_scale.metresPerPixel / (kCellsPerPixel * m_devicePixelRatio);
    STrackRequest request;
    request.frame = m_frame;
    request.cell = cell;
    const double latitudes = (seen.high.latitude - seen.low.latitude) * kDetailMargin;
    const double longitudes = (seen.high.longitude - seen.low.longitude) * kDetailMargin;
    request.region = SGeoBox{{seen.low.latitude - latitudes, seen.low.longitude - longitudes},
                             {seen.high.latitude + latitudes, seen.high.longitude + longitudes}};
    const auto fits = [&](const STrack& track) { return track.cell <= 2 * cell; };
    for (std::size_t i = 0; i < m_tracks.size(); ++i) {
        const SPlanTrack& track = m_tracks[i];
        SQuestion& question = m_questions[i];
        if (!track.whole || fits(*track.whole) ||
            (track.detail && track.detailBox.Contains(seen) && fits(*track.detail))) {
            Withdraw(question.detail);
            continue;
        }
        if (question.detail) {
            const auto& asked = question.detail->GetRequest();
            if (asked.region->Contains(seen) && asked.cell <= 2 * cell && asked.cell >= cell / 4) continue;
            Withdraw(question.detail);
        }
        Ask(i, false, request);
    }
}

void CTrvPlan::Ask(std::size_t index, bool whole, const STrackRequest& request) {
    const SPlanTrack& track = m_tracks[index];
    const SChannelAddress address =
        m_document.GetFiles()->GetAddress(*track.channel.file, track.channel.channel);
    const auto* layer =
        m_document.GetProject()->dataModel->FindLayer(track.channel.file, track.channel.channel);
    const SChannelLayout* layout = layer ? FindChannelLayout(layer->m_name) : nullptr;
    const SPositionFields* fields = layout ? FindPositions(layout->packetType) : nullptr;
    if (!fields) return;
    STrackRequest asked = request;
    asked.latitude = fields->latitude;
    asked.longitude = fields->longitude;
    const SClosedPeriod everything{CDateTimeSpan(std::numeric_limits<std::int64_t>::min()),
                                   CDateTimeSpan(std::numeric_limits<std::int64_t>::max())};
    auto& query = whole ? m_questions[index].whole : m_questions[index].detail;
    query = std::make_shared<CTrvTrackQuery>(address, everything, asked,
                                             [self = m_self](CTrvTrackQuery& answered, EQueryEnd end) {
                                                 if (*self) (*self)->OnAnswer(answered, end);
                                             });
    m_manager.Submit(query);
}

void CTrvPlan::Withdraw(std::shared_ptr<CTrvTrackQuery>& query) {
    // Forgotten before it is cancelled, so that its answer finds nobody.
    if (const auto old = std::exchange(query, nullptr)) m_manager.Cancel(old);
}

void CTrvPlan::OnAnswer(CTrvTrackQuery& query, EQueryEnd end) {
    for (std::size_t i = 0; i < m_tracks.size(); ++i) {
        SQuestion& question = m_questions[i];
        SPlanTrack& track = m_tracks[i];
        const bool isWhole = question.whole.get() == &query;
        if (!isWhole && question.detail.get() != &query) continue;
        const auto keep = std::exchange(isWhole ? question.whole : question.detail, nullptr);
        if (end == EQueryEnd::done) {
            auto answer = std::make_shared<STrack>(query.TakeTrack());
            if (isWhole) {
                if (answer->box) TakeFrame(answer->frame);
                track.whole = answer;
                track.detail = nullptr; // of the file as it was
                if (m_showsAll) FitAll();
            } else {
                track.detail = answer;
                track.detailBox = *query.GetRequest().region;
            }
        }
        break;
    }
    AskWhole();
    AskDetail();
    Changed();
}

// All tracks are drawn from one origin.
void CTrvPlan::TakeFrame(const CLocalFrame& frame) {
    if (m_frame && m_frame->GetLatitude() == frame.GetLatitude() &&
        m_frame->GetLongitude() == frame.GetLongitude())
        return;
    if (m_frame) {
        const SGeoPoint centre = ToGeo(m_scale.centre);
        m_scale.centre = frame.ToPlace(centre.latitude, centre.longitude);
    }
    m_frame = frame;
    for (std::size_t i = 0; i < m_tracks.size(); ++i) {
        m_questions[i].isDue = m_questions[i].isDue || m_tracks[i].whole;
        m_tracks[i].whole = m_tracks[i].detail = nullptr;
    }
}

void CTrvPlan::FollowView() {
    m_moments.SetTime(0, m_state.GetCursor(ECursor::first));
    Changed();
}

void CTrvPlan::Changed() {
    if (m_onChanged) m_onChanged();
}

} // namespace Presentation_Tarvel_Graphics
