// The line protocol with a child, without the child: bytes to lines, lines to tokens, words to lines.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Communication_Processus {

// Cuts a stream of bytes into lines. One thread at a time.
class CLineBuffer {
  public:
    // A line with more bytes than this before its line feed is dropped whole, so that a child that never
    // ends its line cannot exhaust our memory.
    static constexpr std::size_t longestLine = std::size_t(1) << 20;

    // Calls `onLine(std::string_view)` for each line that `text` completes, without its end (LF or CR LF);
    // the view lives as long as the call. What follows the last line feed waits for the next text. Works in
    // time proportional to the text, however it is split.
    template <class TOnLine>
    void Append(std::string_view text, TOnLine&& onLine) {
        for (auto end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
            if (const auto line = Complete(text.substr(0, end))) onLine(*line);
            text.remove_prefix(end + 1);
        }
        Keep(text);
    }

  private:
    void ForgetComplete();
    std::optional<std::string_view> Complete(std::string_view end);
    void Keep(std::string_view text);

    std::string m_line;      // what came before, without a line feed; left as it is by Complete
    bool m_complete = false; // m_line was given out and goes with the next text
    bool m_dropping = false; // the current line is too long already
};

// The tokens of a line. Tokens stand between blanks and tabs; one that starts with a double quote runs to the
// closing one (or, without any, to the end of the line), and a run of double quotes in it becomes a single
// one. An empty quoted token is no token. A closing quote that something else than a blank or tab follows
// makes the line malformed: no tokens at all.
std::vector<std::string> SplitTokens(std::string_view line);

// A command word as it goes to the child: in double quotes if it holds a blank or tab, then each double quote
// in it doubled; with a line feed behind.
std::string FormatCommand(std::string_view word);

// The percentage of a "progress" line; empty if it is not wholly a number from 0 to 100 inclusive.
std::optional<float> ParsePercent(std::string_view token);

} // namespace Communication_Processus
