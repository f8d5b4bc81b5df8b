#include "update/file_update.h"

#include "common/target_file.h"
#include "foundation/bytes.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "recording/recording_writer.h"
#include "update/packet_conversion.h"
#include "xpf/file.h"
#include "xpf/stream_walk.h"
#include "xpf/whole_packet_search.h"

#include <map>
#include <optional>

#include <sys/stat.h>
#include <unistd.h>

namespace MiseANiveau {

using namespace Persistance_Xpf;
using Compagnon::CTargetFile;
using Compagnon::ELevel;
using Outils_Fichiers::ToText;
namespace fs = std::filesystem;

namespace {

constexpr int kPacketsBetweenQuestions = 512;
constexpr double kWritingShare = 0.6; // of the progress; the rest is reading back

// How the packets of one channel go into the new file.
struct SRoute {
    Enregistrement::ChannelHandle handle;
    std::uint16_t row;                           // in the channel table
    std::optional<CPacketConversion> conversion; // without one they are taken as they are
    std::optional<std::uint32_t> date;           // its offset in the former payload
};

std::optional<std::uint32_t> FindDate(const SOwnDefinition* definition) {
    if (!definition) return 0;
    for (const SOwnField& field : definition->fields)
        if (field.type == static_cast<std::uint8_t>(EFieldType::date)) return field.offset;
    return std::nullopt;
}

std::int64_t LoadDate(std::span<const std::uint8_t> payload, std::optional<std::uint32_t> offset) {
    const bool holds = offset && *offset + sizeof(std::int64_t) <= payload.size();
    return holds ? Outils::Load<std::int64_t>(payload.data() + *offset) : 0;
}

std::uint16_t GetRow(std::string_view channel) {
    return static_cast<std::uint16_t>(FindChannelLayout(channel) - GetChannelLayouts().data());
}

// "NAME.bak", or with the first free number after it.
fs::path NameBackup(const fs::path& path) {
    fs::path backup = path;
    backup += ".bak";
    for (int number = 2; fs::exists(fs::symlink_status(backup)); ++number) {
        backup = path;
        backup += ".bak" + std::to_string(number);
    }
    return backup;
}

// A second name for the file, or a copy where the file system has no second names.
bool KeepBackup(const fs::path& path, const fs::path& backup) {
    if (::link(path.c_str(), backup.c_str()) == 0) return true;
    CTargetFile copy;
    std::error_code error;
    if (copy.Open(backup, {}) != EText::none) return false;
    return fs::copy_file(path, copy.GetPath(), fs::copy_options::overwrite_existing, error) && copy.Commit();
}

} // namespace

class CFileUpdate::CContentSum {
  public:
    void Add(std::uint16_t row, std::int64_t date) {
        constexpr std::uint64_t kPrime = 0x100000001B3; // FNV-1a over two words
        m_content.dates = (m_content.dates ^ row) * kPrime;
        m_content.dates = (m_content.dates ^ static_cast<std::uint64_t>(date)) * kPrime;
        ++m_content.packets;
    }
    SContent m_content;
};

EUpdate CFileUpdate::Refuse(EText code, std::string_view detail) const {
    if (detail.empty())
        m_monitor.Report(ELevel::error, code, {ToText(m_path)});
    else
        m_monitor.Report(ELevel::error, code, {detail, ToText(m_path)});
    return EUpdate::refused;
}

EUpdate CFileUpdate::Stop() const {
    m_monitor.Report(ELevel::warning, EText::updaterStopped, {ToText(m_path)});
    return EUpdate::stopped;
}

EUpdate CFileUpdate::Run(const fs::path& path, bool keepsBackup) {
    std::error_code error;
    m_path = fs::canonical(path, error); // what a link names is replaced, not the link
    if (error) m_path = path;
    m_stopped = false;
    const SFileLayout layout = ReadFileLayout(m_path);
    switch (layout.state) {
    case ELayout::unreadable: return Refuse(EText::exportSourceUnreadable);
    case ELayout::foreign: return Refuse(EText::exportSourceForeign);
    case ELayout::damaged: return Refuse(EText::exportSourceDamaged);
    case ELayout::newer: return Refuse(EText::updaterNewer);
    case ELayout::unknown: return Refuse(EText::updaterUnknown, layout.culprit);
    case ELayout::current:
        m_monitor.Report(ELevel::information, EText::updaterUpToDate, {ToText(m_path)});
        m_monitor.Progress(m_last);
        return EUpdate::upToDate;
    case ELayout::former: break;
    }
    return Convert(layout, keepsBackup);
}

EUpdate CFileUpdate::Convert(const SFileLayout& layout, bool keepsBackup) {
    struct stat before {
    }, after{};
    if (::stat(m_path.c_str(), &before) != 0) return Refuse(EText::exportSourceUnreadable);
    CTargetFile target;
    const EText fault = target.Open(m_path, {});
    if (fault != EText::none) return Refuse(fault);
    SContent written, found;
    if (!WriteTo(target.GetPath(), layout, written))
        return m_stopped ? Stop() : Refuse(EText::exportWriteFailed);
    const bool same = ReadBack(target.GetPath(), found) && found == written;
    if (m_stopped) return Stop();
    // A file that someone writes meanwhile is not raised: its last packets would be missing.
    const bool still = ::stat(m_path.c_str(), &after) == 0 && after.st_ino == before.st_ino &&
                       after.st_size == before.st_size;
    if (!same || !still) return Refuse(EText::updaterDiffers);

    ::chmod(target.GetPath().c_str(), before.st_mode & 07777);
    if (written.damaged) m_monitor.Report(ELevel::warning, EText::updaterDamaged, {ToText(m_path)});
    fs::path backup;
    if (keepsBackup || written.damaged) {
        backup = NameBackup(m_path);
        if (!KeepBackup(m_path, backup)) return Refuse(EText::updaterBackupFailed);
    }
    if (!target.Commit()) {
        if (!backup.empty()) ::unlink(backup.c_str());
        return Refuse(EText::exportWriteFailed);
    }
    if (!backup.empty()) m_monitor.Report(ELevel::information, EText::updaterBackup, {ToText(backup)});
    m_monitor.Report(ELevel::information, EText::updaterDone,
                     {ToText(m_path), std::to_string(written.packets)});
    m_monitor.Progress(m_last);
    return EUpdate::raised;
}

bool CFileUpdate::WriteTo(const fs::path& target, const SFileLayout& layout, SContent& content) {
    std::vector<std::string_view> names;
    for (const SOwnChannel& channel : layout.channels) names.push_back(channel.name);
    Enregistrement::CRecordingWriter writer;
    if (!writer.Create(target, names)) return false;
    std::map<std::uint16_t, SRoute> routes;
    for (const SOwnChannel& channel : layout.channels) {
        const SOwnDefinition* own = layout.FindDefinition(channel.packetType);
        const SPacketLayout* present = FindPacketLayout(channel.packetType);
        SRoute route{*writer.FindChannel(channel.name), GetRow(channel.name), std::nullopt, FindDate(own)};
        if (own && present && own->version != present->version) route.conversion.emplace(*own, *present);
        routes.emplace(channel.number, std::move(route));
    }

    CXpfFile file;
    if (!file.Open(m_path) || !file.Seek(layout.dataStart)) return false;
    CStreamWalk walk(file);
    CContentSum sum;
    const std::int64_t size = file.GetFileSize();
    SPacketHeader header;
    std::span<const std::uint8_t> payload;
    const auto goOn = [this] {
        m_stopped = m_stopped || !m_monitor.GoOn();
        return !m_stopped;
    };
    for (int count = 0; file.GetPosition() < size; ++count) {
        const std::int64_t position = file.GetPosition();
        if (count % kPacketsBetweenQuestions == 0) {
            m_monitor.Progress(m_first + (m_last - m_first) * kWritingShare * static_cast<double>(position) /
                                             static_cast<double>(size));
            if (!goOn()) return false;
        }
        if (walk.Next(header, payload) == EPacketRead::whole) {
            const auto route = routes.find(header.channel);
            if (route == routes.end() || header.GetPayloadSize() != payload.size()) {
                sum.m_content.damaged = true; // a packet of no channel of the file, or one beyond any size
                continue;
            }
            sum.Add(route->second.row, LoadDate(payload, route->second.date));
            auto& conversion = route->second.conversion;
            if (!writer.WriteRaw(route->second.handle, conversion ? conversion->Convert(payload) : payload))
                return false;
            continue;
        }
        const bool goesOn = FindWholePacket(file, position + 1, goOn);
        sum.m_content.damaged = sum.m_content.damaged || goesOn || !file.IsTornTail(position);
        if (!goesOn) break;
    }
    content = sum.m_content;
    return !m_stopped && writer.Close();
}

bool CFileUpdate::ReadBack(const fs::path& path, SContent& content) {
    const SFileLayout layout = ReadFileLayout(path);
    if (layout.state != ELayout::current) return false;
    std::map<std::uint16_t, std::uint16_t> rows; // by number in the file
    for (const SOwnChannel& channel : layout.channels) rows.emplace(channel.number, GetRow(channel.name));
    CXpfFile file;
    if (!file.Open(path) || !file.Seek(layout.dataStart)) return false;
    CStreamWalk walk(file);
    CContentSum sum;
    const std::int64_t size = file.GetFileSize();
    SPacketHeader header;
    std::span<const std::uint8_t> payload;
    for (int count = 0; file.GetPosition() < size; ++count) {
        if (count % kPacketsBetweenQuestions == 0) {
            const double part = static_cast<double>(file.GetPosition()) / static_cast<double>(size);
            m_monitor.Progress(m_first + (m_last - m_first) * (kWritingShare + (1 - kWritingShare) * part));
            m_stopped = !m_monitor.GoOn();
            if (m_stopped) return false;
        }
        const auto row =
            walk.Next(header, payload) == EPacketRead::whole ? rows.find(header.channel) : rows.end();
        if (row == rows.end()) return false;
        sum.Add(row->second, LoadDate(payload, 0));
    }
    content = sum.m_content;
    return true;
}

} // namespace MiseANiveau
