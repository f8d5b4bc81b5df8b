#include "document/unsaved_work.h"

#include "document/document_host.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

#include <algorithm>

namespace Application_Tarvel {

namespace fs = std::filesystem;
using Outils_Fichiers::FromText;
using Outils_Texte::EText;
using Outils_Texte::GetText;

namespace {

constexpr int kMostFiles = 100; // of one name in the user's folder

bool IsFile(const fs::path& path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

void Remove(const fs::path& file) {
    std::error_code ignored;
    fs::remove(file, ignored);
}

// A name in the user's folder that no other file has; empty when there is none.
fs::path FindFreeName(const fs::path& folder, const fs::path& project) {
    std::error_code error;
    if (folder.empty()) return {};
    fs::create_directories(folder, error);
    const fs::path stem = project.empty() ? FromText(GetText(EText::untitled)) : project.stem();
    for (int i = 1; i <= kMostFiles; ++i) {
        const std::string number = i > 1 ? "-" + std::to_string(i) : std::string();
        const fs::path name = stem.native() + number + std::string(GetText(EText::projectExtension));
        const fs::path file = CUnsavedWork::GetFile(folder / name);
        if (!fs::exists(fs::symlink_status(file, error))) return file;
    }
    return {};
}

} // namespace

fs::path CUnsavedWork::GetFile(const fs::path& project) {
    return project.native() + std::string(GetText(EText::unsavedExtension));
}

fs::path CUnsavedWork::GetProject(const fs::path& file) const {
    return file.parent_path() == m_host.GetUserFolder() ? fs::path() : file.parent_path() / file.stem();
}

std::vector<fs::path> CUnsavedWork::Find(const std::vector<fs::path>& projects, const fs::path& userFolder) {
    std::vector<fs::path> files;
    for (const fs::path& project : projects)
        if (IsFile(GetFile(project))) files.push_back(GetFile(project));
    std::error_code error;
    const auto others = static_cast<std::ptrdiff_t>(files.size());
    fs::directory_iterator entry(userFolder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error))
        if (entry->path().extension() == GetText(EText::unsavedExtension) && IsFile(entry->path()))
            files.push_back(entry->path());
    std::sort(files.begin() + others, files.end());
    return files;
}

bool CUnsavedWork::Keep(const fs::path& project, const std::function<bool(const fs::path&)>& store) {
    m_ended = true;
    m_discards = false;
    if (!m_file.empty() && store(m_file)) return true;
    if (!project.empty() && store(GetFile(project))) return true;
    const fs::path file = FindFreeName(m_host.GetUserFolder(), project);
    return !file.empty() && store(file);
}

CUnsavedWork::EOffer CUnsavedWork::Offer(const fs::path& project) {
    if (!IsFile(GetFile(project))) return EOffer::none;
    m_ended = false;
    const std::string question =
        Outils_Texte::FormatText(EText::restoreUnsaved, {Outils_Fichiers::ToText(project)});
    const EAnswer answer = m_host.ShowMessage(question, EButtons::yesNo, EIcon::question);
    if (m_ended) return EOffer::ended;
    return answer == EAnswer::yes ? EOffer::accepted : EOffer::refused;
}

fs::path CUnsavedWork::Choose(const std::vector<fs::path>& files, const fs::path& openProject) {
    for (const fs::path& file : files) {
        const fs::path project = GetProject(file);
        if (file == m_file || (!project.empty() && project == openProject)) continue;
        const std::string name = Outils_Fichiers::ToText(project.empty() ? file : project);
        const std::string question = Outils_Texte::FormatText(EText::openUnsaved, {name});
        if (m_host.ShowMessage(question, EButtons::yesNo, EIcon::question) == EAnswer::yes) return file;
    }
    return {};
}

void CUnsavedWork::OnSaved(const fs::path& project) {
    m_discards = false;
    if (!project.empty()) Remove(GetFile(project));
    if (!m_file.empty()) Remove(std::exchange(m_file, {}));
}

void CUnsavedWork::OnClosed(const fs::path& project) {
    if (m_discards) OnSaved(project);
    m_file.clear();
}

} // namespace Application_Tarvel
