// What the document remembers of a data file between two looks at it, and what such a look finds.
#pragma once

#include "foundation/texts.h"
#include "foundation/thread.h"
#include "model/dictionary/file_description.h"
#include "xpf/layout.h"

#include <cstdint>
#include <filesystem>
#include <set>

namespace Application_Tarvel {

using Outils_Texte::EText;

struct SFileState {
    EText fault = EText::none;        // the text that was told last, 0 once the file is whole again
    bool headIsWhole = false;         // at the last look, told or not
    std::int64_t damage = -1;         // the position that was told last
    std::set<std::uint16_t> channels; // found by the analysis: the file's layers may come after them

    // What is to be done once the look that is under way has its answer.
    bool checkVersion = false; // the first one: the user does not know of an older layout yet
    bool followFile = false;   // the file is new or has changed: its layers, and the views, are to follow
    bool tellMissing = false;  // that it is gone is news
    bool tellReplaced = false; // it is no longer the same recording
    bool lookAgain = false;    // it has changed since, so that the answer may be out of date
};

// What stands in a file's head, and whether it can be read at all.
struct SFileLook {
    // The number of the text that says why the file cannot be read as one of its kind, with its path as %1; 0
    // if it can, or could once it is brought up to date.
    EText fault = EText::none;
    bool outdated = false;
    Metier_Tarvel_DataModel::SFileDescription description;
};

// Reads a few blocks. Opens regular files only, and so never waits for a writer; what a disk does not answer
// it waits for.
SFileLook LookInto(const std::filesystem::path& path, Persistance_Xpf::EFileKind kind,
                   const Outils::CEvent& cancel);

} // namespace Application_Tarvel
