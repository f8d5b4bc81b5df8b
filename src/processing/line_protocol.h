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
    // A longer line is dropped whole, so that a child that never ends its line cannot exhaust our memory.
    // Bytes, without the line feed.
    static constexpr std::size_t longestLine = std::size_t(1) << 20;

    // Calls `onLine(std::string_view)` for each line that `text` completes, without its end (LF or CR LF);
    // the view is valid during the call. The bytes after the last line feed wait for the next text. The time
    // is proportional to the text, however it is split.
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

    std::string m_line;      // the bytes so far, without a line feed; Complete leaves it as it is
    bool m_complete = false; // m_line was given out; the next text removes it
    bool m_dropping = false; // the current line is too long already
};

// Returns the tokens of a line. Blanks and tabs separate them. A token that starts with a double quote runs
// to the closing one, or without it to the end of the line, and a run of double quotes in it becomes one. An
// empty quoted token is dropped. Text right after a closing quote makes the line malformed: no tokens.
std::vector<std::string> SplitTokens(std::string_view line);

// Returns a command word as it goes to the child: in double quotes if it holds a blank or tab, then each
// double quote in it doubled. Ends with a line feed.
std::string FormatCommand(std::string_view word);

// Reads the percentage of a "progress" line. Empty unless the whole token is a number from 0 to 100
// inclusive.
std::optional<float> ParsePercent(std::string_view token);

} // namespace Communication_Processus
