#include "document/result_guard.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Application_Tarvel {

namespace fs = std::filesystem;
using Outils_Fichiers::CDescriptor;

namespace {

fs::path MarkOf(const fs::path& result) { return result.native() + ".run"; }

// A lock of the open file, not of the process: two documents of one program exclude each other too.
bool Lock(int file, int command, short& type) {
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    const bool done = ::fcntl(file, command, &lock) == 0;
    type = lock.l_type;
    return done;
}

bool Lock(int file) {
    short type = F_WRLCK;
    return Lock(file, F_OFD_SETLK, type);
}

bool IsLocked(const fs::path& path) {
    const CDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    short type = F_WRLCK;
    return file.IsOpen() && Lock(file.Get(), F_OFD_GETLK, type) && type != F_UNLCK;
}

bool IsSameFile(int file, const fs::path& path) {
    struct stat opened, named;
    return ::fstat(file, &opened) == 0 && ::lstat(path.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

bool Exists(const fs::path& path) {
    struct stat status;
    return ::lstat(path.c_str(), &status) == 0;
}

// A folder or a device is no result of ours.
bool IsFileOrLink(const fs::path& path) {
    struct stat status;
    return ::lstat(path.c_str(), &status) == 0 && (S_ISREG(status.st_mode) || S_ISLNK(status.st_mode));
}

bool Move(const fs::path& from, const fs::path& to) { return ::rename(from.c_str(), to.c_str()) == 0; }

} // namespace

fs::path CResultGuard::GetFormerPath(const fs::path& result) { return result.native() + ".former"; }

CResultGuard::ETake CResultGuard::Take(const fs::path& result) {
    const fs::path path = MarkOf(result);
    m_result = result;
    m_setAside = m_formerIsPartial = false;
    for (;;) {
        m_wasPartial = Exists(path);
        CDescriptor mark(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0666));
        struct stat status;
        if (!mark.IsOpen() || ::fstat(mark.Get(), &status) != 0 || !S_ISREG(status.st_mode))
            return ETake::failed;
        // A disk without locks gives any other failure: there nobody keeps two runs apart.
        if (!Lock(mark.Get()) && (errno == EAGAIN || errno == EACCES)) return ETake::busy;
        // A run that ended between the two calls has removed the file that is locked now.
        if (!IsSameFile(mark.Get(), path)) continue;
        m_mark = std::move(mark);
        return ETake::taken;
    }
}

bool CResultGuard::SetAside() {
    if (!Exists(m_result)) return true;
    const fs::path former = GetFormerPath(m_result);
    // Without a mark no run has left it there: it is the user's, and is not written over.
    if (!m_wasPartial && IsFileOrLink(former)) return false;
    if (m_wasPartial && IsFileOrLink(former)) {
        m_setAside = ::unlink(m_result.c_str()) == 0;
    } else {
        m_setAside = IsFileOrLink(m_result) && Move(m_result, former);
        m_formerIsPartial = m_setAside && m_wasPartial;
    }
    NoteFormer();
    return m_setAside;
}

void CResultGuard::Cancel() {
    const bool restored = m_setAside && RestoreFormer() == ELeft::former;
    Unlock(restored ? m_formerIsPartial : m_wasPartial);
}

CResultGuard::ELeft CResultGuard::Release(bool finished, bool hasResult) {
    const ELeft left = finished ? ELeft::whole : hasResult ? ELeft::partial : RestoreFormer();
    if (finished) ::unlink(GetFormerPath(m_result).c_str());
    Unlock(left == ELeft::partial || (left == ELeft::former && m_formerIsPartial) ||
           (left == ELeft::none && Exists(m_result)));
    return left;
}

CResultGuard::ELeft CResultGuard::RestoreFormer() {
    const fs::path former = GetFormerPath(m_result);
    return IsFileOrLink(former) && Move(former, m_result) ? ELeft::former : ELeft::none;
}

// For the case that this program is killed: the mark has a byte while a partial result is aside.
void CResultGuard::NoteFormer() const {
    [[maybe_unused]] const int noted = ::ftruncate(m_mark.Get(), m_formerIsPartial ? 1 : 0);
}

void CResultGuard::Unlock(bool keepsMark) {
    if (!keepsMark) ::unlink(MarkOf(m_result).c_str());
    m_mark.Close();
}

CResultGuard::ELeft CResultGuard::Examine(const fs::path& result) {
    const fs::path mark = MarkOf(result);
    // A run that is under way will report itself. The question needs no lock, which could turn away a run
    // that starts at this moment.
    if (!Exists(mark) || IsLocked(mark)) return ELeft::whole;
    if (Exists(result)) return ELeft::partial;
    CResultGuard guard;
    if (guard.Take(result) != ETake::taken) return ELeft::whole;
    struct stat status;
    const bool wasPartial = ::fstat(guard.m_mark.Get(), &status) == 0 && status.st_size > 0;
    const ELeft left = guard.RestoreFormer();
    guard.Unlock(left == ELeft::former && wasPartial);
    return left == ELeft::former ? left : ELeft::whole;
}

} // namespace Application_Tarvel
