// What a child process writes: the first byte cuts the rest into pieces, as reads from a pipe do.
#include "input.h"

#include "processing/line_protocol.h"

using namespace Communication_Processus;

namespace {

std::vector<std::string> ReadLines(std::string_view text, std::size_t piece) {
    std::vector<std::string> lines;
    CLineBuffer buffer;
    for (; !text.empty(); text.remove_prefix(std::min(piece, text.size())))
        buffer.Append(text.substr(0, piece), [&](std::string_view line) { lines.emplace_back(line); });
    return lines;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view text = Fuzz::AsText({data + 1, size - 1});
    const auto lines = ReadLines(text, text.size());
    Fuzz::Require(ReadLines(text, data[0] % 16 + std::size_t{1}) == lines, "lines do not depend on pieces");
    for (const std::string& line : lines)
        for (const std::string& token : SplitTokens(line)) {
            Fuzz::Require(!token.empty(), "no token is empty");
            const auto percent = ParsePercent(token);
            Fuzz::Require(!percent || (*percent >= 0 && *percent <= 100), "a percentage is one");
            const std::string command = FormatCommand(token);
            Fuzz::Require(command.find('\n') == command.size() - 1, "a command is one line");
        }
    return 0;
}
