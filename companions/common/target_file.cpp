#include "common/target_file.h"
#include "foundation/texts.h"

#include <atomic>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Compagnon {
namespace {

namespace fs = std::filesystem;
using Outils_Fichiers::CDescriptor;

// Not made of the target's name, which may be as long as a name can be.
fs::path NameBeside(const fs::path& target) {
    static std::atomic<unsigned> count{0};
    return target.parent_path() / ("." + std::to_string(getpid()) + "-" + std::to_string(++count));
}

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
    m_file = CDescriptor(open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666));
    m_path = "/proc/self/fd/" + std::to_string(m_file.Get());
    // Without this path the file could neither be written nor given its name.
    if (m_file.IsOpen() && access(m_path.c_str(), W_OK) == 0) return EText::none;
    m_path = NameBeside(m_target);
    m_file = CDescriptor(open(m_path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0666));
    m_named = m_file.IsOpen();
    return m_named ? EText::none : EText::targetNotWritable;
}

bool CTargetFile::Commit() {
    if (!m_file.IsOpen()) return false;
    bool done = fsync(m_file.Get()) == 0;
    if (done && !m_named) {
        const fs::path beside = NameBeside(m_target);
        unlink(beside.c_str());
        m_named = linkat(AT_FDCWD, m_path.c_str(), AT_FDCWD, beside.c_str(), AT_SYMLINK_FOLLOW) == 0;
        m_path = beside;
        done = m_named;
    }
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
