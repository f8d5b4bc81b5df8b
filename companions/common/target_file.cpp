#include "common/target_file.h"
#include "foundation/texts.h"
#include "foundation/unique_file.h"

#include <cstdio>
#include <string_view>
#include <unistd.h>

namespace Compagnon {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPrefix = "."; // of a name beside the target

} // namespace

EText CTargetFile::Open(const fs::path& target, std::span<const fs::path> sources) {
    Discard();
    std::error_code error;
    m_target = fs::absolute(target, error);
    if (error || m_target.filename().empty() || fs::is_directory(m_target, error))
        return EText::targetIsFolder;
    for (const fs::path& source : sources)
        if (fs::equivalent(source, m_target, error)) return EText::targetIsSource;

    const fs::path folder = m_target.parent_path();
    m_file = Outils_Fichiers::CreateNameless(folder);
    m_path = Outils_Fichiers::GetLink(m_file);
    if (m_file.IsOpen()) return EText::none;
    m_file = Outils_Fichiers::CreateUnique(folder, kPrefix, 0666, m_path);
    m_named = m_file.IsOpen();
    return m_named ? EText::none : EText::targetNotWritable;
}

bool CTargetFile::Commit() {
    if (!m_file.IsOpen()) return false;
    bool done = fsync(m_file.Get()) == 0;
    if (done && !m_named)
        done = m_named = Outils_Fichiers::LinkUnique(m_file, m_target.parent_path(), kPrefix, m_path);
    done = done && m_file.Close() && rename(m_path.c_str(), m_target.c_str()) == 0;
    if (done) m_named = false;
    Discard();
    return done;
}

void CTargetFile::Discard() {
    m_file.Close();
    if (m_named) unlink(m_path.c_str());
    m_named = false;
}

} // namespace Compagnon
