// A look at the head of a data file: what it says of itself, and whether it can be read at all.
#pragma once

#include "foundation/text_id.h"
#include "foundation/thread.h"
#include "model/dictionary/file_description.h"
#include "xpf/layout.h"

#include <filesystem>

namespace Application_Tarvel {

using Outils_Texte::EText;
using Outils_Texte::kNoText;

struct SFileLook {
    // Why the file cannot be read as one of its kind, with its path as %1; none if it can, or could once it
    // is brought up to date.
    EText fault = kNoText;
    bool outdated = false;
    Metier_Tarvel_DataModel::SFileDescription description;
};

// Reads a few blocks. Opens regular files only, and so never waits for a writer, but waits for the disk. Any
// thread.
SFileLook LookInto(const std::filesystem::path& path, Persistance_Xpf::EFileKind kind,
                   const Outils::CEvent& cancel);

} // namespace Application_Tarvel
