// What the document remembers of a data file between two looks at it, and why a file cannot be read.
#pragma once

#include "xpf/layout.h"

#include <cstdint>
#include <filesystem>

namespace Application_Tarvel {

// Which file stands under a path: another one put in its place is told apart, though not one that overwrites
// it. All zero for none.
struct SFileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0;
    bool operator==(const SFileIdentity&) const = default;
    bool IsKnown() const { return number != 0; }
};

struct SFileState {
    SFileIdentity identity;
    int fault = 0;            // the text that was told last, 0 once the file is whole again
    std::int64_t damage = -1; // the position that was told last
};

SFileIdentity IdentifyFile(const std::filesystem::path& path);

// The number of the text that says why the file cannot be read as one of this kind, with its path as %1; 0 if
// it can, or could once it is brought up to date. Opens regular files only, and so never waits for a writer.
int FindFileFault(const std::filesystem::path& path, Persistance_Xpf::EFileKind kind);

} // namespace Application_Tarvel
