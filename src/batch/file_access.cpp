#include "batch/file_access.h"

#include "batch/batch_host.h"
#include "batch/session.h"
#include "dataaccess/data_file_analyzer.h"
#include "foundation/files.h"
#include "foundation/paths.h"
#include "foundation/text.h"
#include "foundation/texts.h"
#include "xpf/packets.h"

#include <cerrno>
#include <cmath>
#include <ostream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Batch {

using namespace Persistance_Xpf;
using Outils_Fichiers::FromText;
using Outils_Fichiers::ToAbsolute;
using Outils_Fichiers::ToText;
using Outils_Temps::CDateTime;

namespace {

constexpr std::string_view kProjectExtension = ".tarprj";
constexpr std::string_view kProjectClass = "CTrvProject"; // named at the start of a project's archive
constexpr std::size_t kProjectHeadSize = 64;

EText GetErrorText(int error) {
    switch (error) {
    case ENOENT:
    case ENOTDIR: return EText::noSuchFile;
    case EACCES:
    case EPERM: return EText::noRights;
    default: return EText::noFile;
    }
}

// Whether a new file can be made in the folder of `path`; reports why not.
bool CheckFolder(const std::filesystem::path& path, const std::string& shown, SStreams streams) {
    const std::filesystem::path folder = path.parent_path();
    std::error_code error;
    const bool exists = std::filesystem::is_directory(folder, error);
    if (exists && Outils_Fichiers::CanWriteInto(folder)) return true;
    Fail(shown, exists ? EText::folderNotWritable : EText::noFolder, streams, {ToText(folder)});
    return false;
}

CDateTime FindResultOrigin(CXpfFile& file) {
    const CXpfTaroutMorvexStdPacketV2 fields;
    CXpfChannel* channel = file.FindChannelByName(kResultChannel);
    const auto packet = channel ? channel->CreatePacket() : nullptr;
    if (!packet || !channel->ReadNextPacket(*packet)) return CDateTime::Invalid();
    constexpr auto at = [](std::string_view name) { return kMorvexStdLayout.IndexOf(name); };
    std::uint16_t year = 0;
    std::uint8_t month = 0, day = 0, hour = 0, minute = 0;
    float second = 0;
    Outils_Temps::CDateTimeSpan date;
    const bool has = packet->GetUInt16(at("UTC Year"), year) && packet->GetUInt8(at("UTC Month"), month) &&
                     packet->GetUInt8(at("UTC Day"), day) && packet->GetUInt8(at("UTC Hour"), hour) &&
                     packet->GetUInt8(at("UTC Minute"), minute) && packet->GetFloat(at("UTC Second"), second);
    if (!has || !packet->GetDate(0, date) || !(second >= 0 && second < 61)) return CDateTime::Invalid();
    // The second is a float: what it says of less than a hundred microseconds is rounding.
    constexpr double kSteps = 1e4;
    CDateTime origin = CDateTime::Invalid();
    origin.SetDateTime(year, month, day, hour, minute, 0, 0);
    origin +=
        Outils_Temps::CDateTimeSpan::FromSeconds(std::round(static_cast<double>(second) * kSteps) / kSteps);
    return origin - date;
}

} // namespace

int Fail(std::string_view what, EText text, SStreams streams,
         std::initializer_list<std::string_view> arguments) {
    streams.error << what << ": " << Outils_Texte::FormatText(text, arguments) << '\n';
    return exitFailure;
}

int FailWith(std::string_view message, SStreams streams) {
    streams.error << ToLine(message) << '\n';
    return exitFailure;
}

EText FindFileFault(const std::filesystem::path& path) {
    // A pipe must not make the opening wait for its writer.
    const int file = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) return GetErrorText(errno);
    struct stat status {};
    const bool known = ::fstat(file, &status) == 0;
    ::close(file);
    if (!known) return EText::noFile;
    if (S_ISDIR(status.st_mode)) return EText::isFolder;
    if (!S_ISREG(status.st_mode)) return EText::notRegularFile;
    return status.st_size == 0 ? EText::emptyFile : EText::none;
}

EText FindPacketFileFault(const std::filesystem::path& path) {
    if (const EText fault = FindFileFault(path); fault != EText::none) return fault;
    bool isDamaged = false;
    for (const EFileKind kind : {EFileKind::tarin, EFileKind::tarout}) {
        const EOpening how = OpenXpfFile(path, kind).how;
        if (how == EOpening::opened) return EText::none;
        if (how == EOpening::foreign) return EText::noPacketFile;
        if (how == EOpening::unreadable) return EText::noFile;
        isDamaged = isDamaged || how == EOpening::damaged;
    }
    return isDamaged ? EText::headerDamaged : EText::olderLayout;
}

EText FindProjectFault(const std::filesystem::path& path) {
    if (const EText fault = FindFileFault(path); fault != EText::none) return fault;
    const auto head = Outils_Fichiers::ReadFileHead(path, kProjectHeadSize);
    if (!head) return EText::noFile;
    const std::string_view text(reinterpret_cast<const char*>(head->data()), head->size());
    const bool isEmptyObject = text.starts_with(std::string_view("\0\0", 2)) && text.size() == 2;
    return isEmptyObject || text.find(kProjectClass) != text.npos ? EText::none : EText::notProject;
}

bool CheckFile(const std::string& path, EText (*find)(const std::filesystem::path&), SStreams streams) {
    const EText fault = find(FromText(path));
    if (fault != EText::none) Fail(path, fault, streams);
    return fault == EText::none;
}

bool HasExtension(const std::filesystem::path& path, std::string_view extension) {
    return Outils_Texte::EqualsNoCase(ToText(path.extension()), extension);
}

std::optional<std::filesystem::path> FindTargetPath(const std::string& path, SStreams streams) {
    const auto full = ToAbsolute(FromText(path));
    return CheckFolder(full, path, streams) ? std::optional(full) : std::nullopt;
}

std::optional<std::filesystem::path> FindFreePath(const std::string& path, SStreams streams) {
    const auto full = FindTargetPath(path, streams);
    std::error_code error;
    if (!full || !std::filesystem::exists(std::filesystem::symlink_status(*full, error))) return full;
    Fail(path, EText::existsAlready, streams);
    return std::nullopt;
}

std::optional<std::filesystem::path> FindFreeProjectPath(const std::string& path, SStreams streams) {
    const bool has = HasExtension(FromText(path), kProjectExtension);
    return FindFreePath(has ? path : path + std::string(kProjectExtension), streams);
}

SOpenFile OpenFile(const std::string& text, SStreams streams) {
    const auto path = FromText(text);
    if (!CheckFile(text, FindPacketFileFault, streams)) return {};
    for (const EFileKind kind : {EFileKind::tarin, EFileKind::tarout}) {
        if (auto file = OpenXpfFile(path, kind).file) return {std::move(file), kind};
    }
    Fail(text, EText::noFile, streams); // it went away meanwhile
    return {};
}

SOpenChannel OpenChannel(const std::string& path, const std::string& name, SStreams streams) {
    SOpenChannel open{OpenFile(path, streams), nullptr, nullptr};
    if (!open.file) return open;
    const auto& channels = open.file->GetChannels();
    const auto nameOf = [](const auto& channel) -> std::string_view { return channel->GetName(); };
    if (const auto index = FindNoCase(channels, nameOf, name)) open.channel = channels[*index].get();
    if (open.channel) open.packet = open.channel->CreatePacket();
    if (!open.channel)
        Fail(path, EText::noChannel, streams, {name, ListWords(channels, nameOf)});
    else if (!open.packet)
        Fail(path, EText::notDecoded, streams, {name});
    else
        open.utcOrigin = FindUtcOriginOf(open, FromText(path));
    return open;
}

CDateTime FindUtcOriginOf(SOpenFile& open, const std::filesystem::path& path) {
    if (open.kind == EFileKind::tarout) return FindResultOrigin(*open.file);
    const int most = CSettings().Get(Outils_Configuration::Cnf<"general/utcSearch/maxPacketCount">);
    return Application_Tarvel::FindUtcOrigin(path, most);
}

} // namespace Batch
