// Opening a packet file or one of its channels for a command, with the reason told when that fails.
#pragma once

#include "batch/commands.h"
#include "foundation/texts.h"
#include "xpf/file.h"
#include "xpf/packet.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace Batch {

using Outils_Texte::EText;

// Writes "WHAT: text" on the error stream; `argument` takes the place of %1. Always exitFailure.
int Fail(const std::string& what, EText text, SStreams streams, std::string_view argument = {});

// Writes a message of the application; one that is made for a box becomes a line. Always exitFailure.
int FailWith(std::string_view message, SStreams streams);

// The full path at which a command is to make a file; empty, with the reason told, when there is one already.
std::optional<std::filesystem::path> FindFreePath(const std::string& path, SStreams streams);

struct SOpenFile {
    std::unique_ptr<Persistance_Xpf::CXpfFile> file; // null when it could not be opened
    Persistance_Xpf::EFileKind kind = Persistance_Xpf::EFileKind::tarin;
};

// The file as whichever of the two kinds it is.
SOpenFile OpenFile(const std::string& path, SStreams streams);

struct SOpenChannel : SOpenFile {
    Persistance_Xpf::CXpfChannel* channel = nullptr;     // owned by the file
    std::unique_ptr<Persistance_Xpf::CXpfPacket> packet; // of the channel's type; null on failure
};

SOpenChannel OpenChannel(const std::string& path, const std::string& name, SStreams streams);

} // namespace Batch
