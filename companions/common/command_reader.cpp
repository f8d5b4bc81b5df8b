#include "common/command_reader.h"

#include <array>
#include <cerrno>

#include <poll.h>
#include <unistd.h>

namespace Compagnon {

std::string_view CCommandLines::Trim() const {
    std::string_view line = m_line;
    constexpr std::string_view blanks = " \t\r";
    const auto first = line.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    line = line.substr(first, line.find_last_not_of(blanks) - first + 1);
    if (line.size() >= 2 && line.front() == '"' && line.back() == '"') line = line.substr(1, line.size() - 2);
    return line;
}

void CCommandReader::Run() {
    constexpr int kPollSpan = 50; // ms: how late the thread may notice its own end
    CCommandLines lines;
    std::array<char, 1024> buffer;
    while (!m_ending) {
        std::array<pollfd, 2> waits{{{m_input, POLLIN, 0}, {m_signals, POLLIN, 0}}};
        const int ready = poll(waits.data(), waits.size(), kPollSpan);
        if (ready == 0 || (ready < 0 && errno == EINTR)) continue;
        if (waits[1].revents != 0) return m_control.Command("stop");
        const ssize_t size = ready < 0 ? 0 : read(m_input, buffer.data(), buffer.size());
        if (size < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (size <= 0) return m_control.Command("stop");
        lines.Add({buffer.data(), static_cast<std::size_t>(size)},
                  [this](std::string_view word) { m_control.Command(word); });
    }
}

} // namespace Compagnon
