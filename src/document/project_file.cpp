#include "document/project_file.h"

#include "foundation/archive.h"
#include "foundation/files.h"
#include "foundation/paths.h"
#include "model/registration.h"

namespace Application_Tarvel {

using namespace Outils_Objets;
using Metier_Tarvel::CTrvProject;

namespace {

// A project of ten thousand instructions of each kind takes some megabytes: what exceeds this is no project.
constexpr std::uint64_t kMaximumSize = std::uint64_t{1} << 30;

} // namespace

std::unique_ptr<CTrvProject> LoadProject(const std::filesystem::path& path) {
    auto bytes = Outils_Fichiers::ReadWholeFile(path, kMaximumSize);
    if (!bytes) AfxThrowArchiveException(CArchiveException::generic, Outils_Fichiers::ToText(path));
    CClassRegistry registry;
    Metier_Tarvel::RegisterModelClasses(registry);
    CMemoryStream stream(std::move(*bytes));
    CArchive archive(stream, CArchive::load, &registry, path);
    return CTrvProject::Load(archive);
}

bool StoreProject(const CTrvProject* project, const std::filesystem::path& path) {
    CMemoryStream stream;
    try {
        CArchive archive(stream, CArchive::store, nullptr, path);
        archive.WriteObject(project);
        archive.Close();
    } catch (const CArchiveException&) {
        return false;
    }
    return Outils_Fichiers::SaveAtomically(path, stream.GetBytes());
}

} // namespace Application_Tarvel
