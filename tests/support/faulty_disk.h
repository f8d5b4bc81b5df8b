// A disk that misbehaves: the reads and writes of a test program pass through here on their way to the
// system.
#pragma once

#include "foundation/thread.h"

#include <cstdint>
#include <filesystem>
#include <functional>

namespace test {

// As long as the object lives, one file, or all in one folder, are on a bad disk.
class CFaultyDisk {
  public:
    enum EFault {
        stalls, // a read that reaches behind `offset` does not return before the object goes
        fails,  // a read of what lies behind `offset` ends there, or fails if it begins there
        isFull  // a write fails
    };
    CFaultyDisk(std::filesystem::path path, EFault fault, std::int64_t offset = 0);
    ~CFaultyDisk(); // held reads go on
    CFaultyDisk(const CFaultyDisk&) = delete;
    CFaultyDisk& operator=(const CFaultyDisk&) = delete;

    // Returns once so many reads are held.
    void WaitForHeld(int count) const;
};

// Runs `look` on a thread until a read of the second half of `file` is held, and tells it to stop there.
void StopHalfWay(const std::filesystem::path& file, std::function<void(const Outils::CEvent&)> look);

} // namespace test
