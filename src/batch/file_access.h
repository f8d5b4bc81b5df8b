// Opening the files that a command is given, with a message of its own for each thing that can be wrong.
#pragma once

#include "batch/commands.h"
#include "foundation/date_time.h"
#include "xpf/file.h"
#include "xpf/packet.h"

#include <filesystem>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>

namespace Batch {

// Writes "WHAT: text" on the error stream, the arguments in the places of %1, %2. Returns exitFailure.
int Fail(std::string_view what, EText text, SStreams streams,
         std::initializer_list<std::string_view> arguments = {});

// Writes a message of the application, which may be made for a box, as one line. Returns exitFailure.
int FailWith(std::string_view message, SStreams streams);

// Why the file cannot be read: missing, no rights, a folder, a device, empty. kNoText when it can.
EText FindFileFault(const std::filesystem::path& path);
// Why the file is not one of the application's packet files: what FindFileFault finds, foreign, of another
// layout, or damaged. kNoText when it is one.
EText FindPacketFileFault(const std::filesystem::path& path);
// The same for a project, as far as its first bytes show.
EText FindProjectFault(const std::filesystem::path& path);

// False, with its fault reported, for a file that `find` finds fault with.
bool CheckFile(const std::string& path, EText (*find)(const std::filesystem::path&), SStreams streams);

// The full path at which a command is to make a file. Empty, with the reason reported, when there is a file
// already, or no folder that can be written.
std::optional<std::filesystem::path> FindFreePath(const std::string& path, SStreams streams);
// The same for a project, whose extension is added when it lacks.
std::optional<std::filesystem::path> FindFreeProjectPath(const std::string& path, SStreams streams);
// The full path of a file that a command may replace. Empty, with the reason reported, when its folder
// cannot be written.
std::optional<std::filesystem::path> FindTargetPath(const std::string& path, SStreams streams);

// Whether the path has the extension, without regard to case.
bool HasExtension(const std::filesystem::path& path, std::string_view extension);

struct SOpenFile {
    std::unique_ptr<Persistance_Xpf::CXpfFile> file; // null when it could not be opened
    Persistance_Xpf::EFileKind kind = Persistance_Xpf::EFileKind::tarin;
};
// The file as whichever of the two kinds it is; null, with the reason reported, when it is neither.
SOpenFile OpenFile(const std::string& path, SStreams streams);

struct SOpenChannel : SOpenFile {
    Persistance_Xpf::CXpfChannel* channel = nullptr;     // owned by the file
    std::unique_ptr<Persistance_Xpf::CXpfPacket> packet; // of the channel's type; null on failure
    Outils_Temps::CDateTime utcOrigin = Outils_Temps::CDateTime::Invalid(); // of date zero
};
// A channel by its name, in any case.
SOpenChannel OpenChannel(const std::string& path, const std::string& name, SStreams streams);

// The UTC of date zero of a file: from the UTC channel of a recording, from the first packet of a result.
// Invalid when the file does not give it.
Outils_Temps::CDateTime FindUtcOriginOf(SOpenFile& open, const std::filesystem::path& path);

} // namespace Batch
