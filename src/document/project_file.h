// A project as a file: an object archive with one CTrvProject. Any thread.
#pragma once

#include "model/project.h"

#include <filesystem>
#include <memory>

namespace Application_Tarvel {

// Null for a file of the empty document. Throws CArchiveException for a file that cannot be read or is no
// project.
std::unique_ptr<Metier_Tarvel::CTrvProject> LoadProject(const std::filesystem::path& path);

// Writes the project, null for the empty document, as one step. False on failure, and an existing file is as
// it was.
bool StoreProject(const Metier_Tarvel::CTrvProject* project, const std::filesystem::path& path);

} // namespace Application_Tarvel
