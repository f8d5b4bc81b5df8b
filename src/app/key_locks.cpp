#include "app/key_locks.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <filesystem>
#include <fstream>
#include <string>
#endif

namespace Application_Tarvel {

#ifdef _WIN32

std::optional<bool> ReadLock(ELock lock) {
    constexpr int keys[] = {VK_CAPITAL, VK_NUMLOCK, VK_SCROLL};
    return (GetKeyState(keys[static_cast<int>(lock)]) & 1) != 0;
}

#else

// The lights of the keyboards, one folder each ("input3::capslock"), are the one place that tells it without
// asking the window system, whichever it is.
std::optional<bool> ReadLock(ELock lock) {
    constexpr const char* names[] = {"::capslock", "::numlock", "::scrolllock"};
    std::error_code error;
    std::optional<bool> on;
    std::filesystem::directory_iterator folder("/sys/class/leds", error);
    for (; !error && folder != std::filesystem::directory_iterator(); folder.increment(error)) {
        if (!folder->path().filename().string().ends_with(names[static_cast<int>(lock)])) continue;
        int brightness = 0;
        if (std::ifstream(folder->path() / "brightness") >> brightness)
            on = on.value_or(false) || brightness > 0;
    }
    return on;
}

#endif

} // namespace Application_Tarvel
