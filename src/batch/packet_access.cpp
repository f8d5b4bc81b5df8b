#include "batch/packet_access.h"

#include "batch/batch_host.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

#include <filesystem>
#include <ostream>

namespace Batch {

using Outils_Texte::EText;

using namespace Persistance_Xpf;

int Fail(const std::string& what, EText text, SStreams streams, std::string_view argument) {
    streams.error << what << ": " << Outils_Texte::FormatText(text, {argument}) << '\n';
    return exitFailure;
}

int FailWith(std::string_view message, SStreams streams) {
    streams.error << ToLine(message) << '\n';
    return exitFailure;
}

std::optional<std::filesystem::path> FindFreePath(const std::string& path, SStreams streams) {
    const auto full = Outils_Fichiers::ToAbsolute(Outils_Fichiers::FromText(path));
    std::error_code error;
    if (!std::filesystem::exists(full, error)) return full;
    Fail(path, EText::existsAlready, streams);
    return std::nullopt;
}

SOpenFile OpenFile(const std::string& text, SStreams streams) {
    const auto path = Outils_Fichiers::FromText(text);
    bool outdated = false, damaged = false;
    for (const EFileKind kind : {EFileKind::tarin, EFileKind::tarout}) {
        SOpenedFile opened = OpenXpfFile(path, kind);
        if (opened.file) return {std::move(opened.file), kind};
        outdated = outdated || opened.how == EOpening::outdated;
        damaged = damaged || opened.how == EOpening::damaged;
    }
    std::error_code error;
    const bool exists = std::filesystem::exists(path, error);
    Fail(text,
         !exists    ? EText::noSuchFile
         : damaged  ? EText::damagedHeader
         : outdated ? EText::olderLayout
                    : EText::noPacketFile,
         streams);
    return {};
}

SOpenChannel OpenChannel(const std::string& path, const std::string& name, SStreams streams) {
    SOpenChannel open{OpenFile(path, streams), nullptr, nullptr};
    if (!open.file) return open;
    open.channel = open.file->FindChannelByName(name);
    if (open.channel) open.packet = open.channel->CreatePacket();
    if (!open.packet) Fail(path, open.channel ? EText::notDecoded : EText::noChannel, streams, name);
    return open;
}

} // namespace Batch
