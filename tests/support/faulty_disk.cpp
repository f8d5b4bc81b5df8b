#include "support/faulty_disk.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <condition_variable>
#include <list>
#include <mutex>
#include <optional>
#include <sys/syscall.h>
#include <unistd.h>

namespace test {

namespace {

struct SFault {
    const void* owner;
    std::filesystem::path path;
    CFaultyDisk::EFault fault;
    std::int64_t offset;
    int held = 0;
};

struct SFaults {
    std::atomic<int> count{0}; // spares the reads of other tests the lock
    std::mutex mutex;          // guards what follows
    std::condition_variable changed;
    std::list<SFault> faults;

    SFault* Find(int file, bool writes) {
        char name[PATH_MAX];
        const auto link = std::filesystem::path("/proc/self/fd") / std::to_string(file);
        const ssize_t length = ::readlink(link.c_str(), name, sizeof name);
        if (length <= 0) return nullptr;
        const std::filesystem::path path(std::string(name, static_cast<std::size_t>(length)));
        const auto found = std::find_if(faults.begin(), faults.end(), [&](const SFault& fault) {
            return (fault.path == path || fault.path == path.parent_path()) &&
                   (fault.fault == CFaultyDisk::isFull) == writes;
        });
        return found == faults.end() ? nullptr : &*found;
    }
};

SFaults& Faults() {
    static SFaults faults;
    return faults;
}

// What is left of a read at `offset`, or -1 for an error.
std::int64_t Pass(int file, std::int64_t size, std::int64_t offset) {
    SFaults& all = Faults();
    if (all.count == 0) return size;
    std::unique_lock lock(all.mutex);
    SFault* fault = all.Find(file, false);
    if (!fault || offset + size <= fault->offset) return size;
    if (fault->fault == CFaultyDisk::stalls) {
        const void* owner = fault->owner;
        ++fault->held;
        all.changed.notify_all();
        all.changed.wait(lock, [&] {
            return std::none_of(all.faults.begin(), all.faults.end(),
                                [owner](const SFault& other) { return other.owner == owner; });
        });
        return size;
    }
    return offset < fault->offset ? fault->offset - offset : -1;
}

} // namespace

CFaultyDisk::CFaultyDisk(std::filesystem::path path, EFault fault, std::int64_t offset) {
    const std::lock_guard lock(Faults().mutex);
    Faults().faults.push_back({this, std::move(path), fault, offset});
    ++Faults().count;
}

CFaultyDisk::~CFaultyDisk() {
    const std::lock_guard lock(Faults().mutex);
    Faults().faults.remove_if([this](const SFault& fault) { return fault.owner == this; });
    --Faults().count;
    Faults().changed.notify_all();
}

void CFaultyDisk::WaitForHeld(int count) const {
    std::unique_lock lock(Faults().mutex);
    Faults().changed.wait(lock, [this, count] {
        return std::any_of(Faults().faults.begin(), Faults().faults.end(),
                           [&](const SFault& fault) { return fault.owner == this && fault.held >= count; });
    });
}

void StopHalfWay(const std::filesystem::path& file, std::function<void(const Outils::CEvent&)> look) {
    std::optional<CFaultyDisk> disk(std::in_place, file, CFaultyDisk::stalls, file_size(file) / 2);
    Outils::CTask task(std::move(look));
    if (!task.Start()) return;
    disk->WaitForHeld(1);
    task.Stop();
    disk.reset();
    task.Join();
}

} // namespace test

extern "C" {

ssize_t pread(int file, void* buffer, std::size_t size, off_t offset) {
    const std::int64_t left = test::Pass(file, static_cast<std::int64_t>(size), offset);
    if (left >= 0) return ::syscall(SYS_pread64, file, buffer, static_cast<std::size_t>(left), offset);
    errno = EIO;
    return -1;
}

ssize_t read(int file, void* buffer, std::size_t size) {
    const off_t offset = test::Faults().count == 0 ? 0 : ::lseek(file, 0, SEEK_CUR);
    const std::int64_t left = test::Pass(file, static_cast<std::int64_t>(size), offset);
    if (left >= 0) return ::syscall(SYS_read, file, buffer, static_cast<std::size_t>(left));
    errno = EIO;
    return -1;
}

ssize_t write(int file, const void* buffer, std::size_t size) {
    if (test::Faults().count != 0) {
        const std::lock_guard lock(test::Faults().mutex);
        if (test::Faults().Find(file, true)) {
            errno = ENOSPC;
            return -1;
        }
    }
    return ::syscall(SYS_write, file, buffer, size);
}
}
