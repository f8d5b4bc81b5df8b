// The kept index of a recording, with bytes changed: as it comes, when no answer may depend on what was
// changed, and with sums that fit again, as only malice makes them, when every query must end.
#include "input.h"

#include "dataaccess/file_indexes.h"
#include "dataaccess/index_format.h"
#include "dataaccess/index_scan.h"
#include "dataaccess/view_queries.h"
#include "foundation/files.h"
#include "recording/recording_writer.h"
#include "xpf/packets.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::int64_t kStep = 50'000; // ticks
constexpr int kPackets = 3000;
constexpr std::size_t kPatch = 4; // bytes of the input: three of a place, and the new value

class CIndexed {
  public:
    CIndexed() {
        constexpr std::string_view channels[] = {"IMU", "DEPTH"};
        Enregistrement::CRecordingWriter writer;
        Fuzz::Require(writer.Create(m_path, channels), "a recording can be written");
        CXpfTarinImuPacketV2 imu;
        CXpfTarinDepthPacketV1 depth;
        for (int i = 0; i < kPackets; ++i) {
            imu.SetDate(0, CDateTimeSpan(i * kStep));
            imu.SetInt32(4, i * 7919 % 1000);
            writer.Write(0, imu);
            if (i % 4 != 0) continue;
            depth.SetDate(0, CDateTimeSpan(i * kStep));
            depth.SetFloat(3, static_cast<float>(i % 37));
            writer.Write(1, depth);
        }
        writer.Close();
        const auto file = OpenXpfFile(m_path, EFileKind::tarin).file;
        const Outils::CEvent never;
        CIndexScan scan(m_path, EFileKind::tarin, MakeIndexes());
        scan.Begin(*file, never);
        scan.GoOn(*file, never);
        Fuzz::Require(scan.End(true), "an index can be kept");
        const auto bytes = Outils_Fichiers::ReadWholeFile(GetPlace(), 1 << 24);
        Fuzz::Require(bytes.has_value(), "an index can be read");
        m_bytes = *bytes;
        m_truth = Ask(nullptr);
    }

    const Bytes& GetBytes() const { return m_bytes; }
    const std::string& GetTruth() const { return m_truth; }
    std::string AskWith(const Bytes& index) const {
        Fuzz::Require(Outils_Fichiers::WriteWholeFile(GetPlace(), index), "an index can be written");
        const auto indexes = MakeIndexes();
        indexes->FindKept(m_path, EFileKind::tarin);
        return Ask(indexes.get());
    }

  private:
    std::shared_ptr<CFileIndexes> MakeIndexes() const {
        SIndexSettings settings;
        settings.folder = m_folder / "cache";
        settings.loaded = 0;
        return std::make_shared<CFileIndexes>(std::move(settings));
    }
    std::filesystem::path GetPlace() const {
        return CIndexStore(m_folder / "cache", 0, 0).GetPlace(LookAtState(m_path)->identity);
    }
    std::string Ask(const CFileIndexes* indexes) const {
        std::string answer;
        for (const std::uint16_t channel : {std::uint16_t{0}, std::uint16_t{8}}) {
            const SChannelAddress address{m_path, EFileKind::tarin, channel, nullptr, indexes};
            for (const std::int64_t slices : {1, 7, 300}) {
                constexpr std::int64_t from = 17 * kStep + 1, to = (kPackets - 40) * kStep;
                CTrvView1DDataQuery query(
                    address, {CDateTimeSpan(from), CDateTimeSpan(to), CDateTimeSpan((to - from) / slices)},
                    nullptr);
                query.Execute();
                const SReducedSeries series = query.TakeSeries();
                for (const auto* list : {&series.representatives, &series.minima, &series.maxima})
                    for (const auto& packet : *list)
                        answer.append(reinterpret_cast<const char*>(packet->GetPayload()),
                                      packet->GetPayloadSize());
            }
            CTrvViewValueDataQuery moment(address, CDateTimeSpan(kPackets / 3 * kStep + 1), nullptr);
            moment.Execute();
            answer += std::to_string(moment.GetPlace().position.Get());
        }
        return answer;
    }

    Fuzz::CScratchFolder m_folder;
    std::filesystem::path m_path = m_folder / "r.tarin";
    Bytes m_bytes;
    std::string m_truth;
};

void SealPage(Bytes& bytes, std::int64_t offset, std::uint64_t seed) {
    constexpr auto size = static_cast<std::int64_t>(CIndexPages::kPage);
    if (offset < 0 || offset > static_cast<std::int64_t>(bytes.size()) - size) return;
    CIndexPages::Page page;
    std::memcpy(page.data(), bytes.data() + offset, page.size());
    CIndexPages::Seal(page, seed);
    std::memcpy(bytes.data() + offset, page.data(), page.size());
}

// Makes all sums fit what is there, as far as the changed tables still say where it is.
void Seal(Bytes& bytes) {
    SIndexFileHead head;
    if (bytes.size() < CIndexPages::kPage) return;
    std::memcpy(&head, bytes.data(), sizeof head);
    const auto rest = static_cast<std::int64_t>(bytes.size() - CIndexPages::kPage);
    if (head.tableSize >= 0 && head.tableSize <= rest) {
        const auto table =
            std::span(bytes).subspan(CIndexPages::kPage, static_cast<std::size_t>(head.tableSize));
        head.tableSum = SumIndexBytes(table, head.seed);
        const std::size_t rows =
            std::min<std::size_t>(head.channels, table.size() / sizeof(SIndexChannelRow));
        for (std::size_t place = 0; place < rows; ++place) {
            SIndexChannelRow row;
            const std::size_t at = table.size() - (rows - place) * sizeof row;
            std::memcpy(&row, bytes.data() + CIndexPages::kPage + at, sizeof row);
            for (std::size_t level = 0; level < kIndexLevels; ++level)
                for (std::uint64_t page = 0; page < std::min<std::uint64_t>(row.levels[level].count, 64);
                     ++page)
                    SealPage(bytes,
                             row.levels[level].offset + static_cast<std::int64_t>(page * CIndexPages::kPage),
                             GetLevelSeed(head, place, level) + page);
        }
    }
    std::memcpy(bytes.data(), &head, sizeof head);
    SealPage(bytes, 0, kIndexHeadSeed);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const CIndexed indexed;
    if (size < 1) return 0;
    const bool seals = data[0] & 1;
    Bytes bytes = indexed.GetBytes();
    for (std::size_t at = 1; at + kPatch <= size; at += kPatch) {
        std::uint32_t patch = 0;
        std::memcpy(&patch, data + at, sizeof patch);
        bytes[(patch >> 8) % bytes.size()] = static_cast<std::uint8_t>(patch);
    }
    if (data[0] & 2) bytes.resize(bytes.size() - size % bytes.size());
    if (seals) Seal(bytes);
    const std::string answer = indexed.AskWith(bytes);
    Fuzz::Require(seals || answer == indexed.GetTruth(), "a changed index is not believed");
    return 0;
}
