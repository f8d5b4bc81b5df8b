#include "processing/line_protocol.h"

#include "foundation/numbers.h"

#include <algorithm>

namespace Communication_Processus {

namespace {

constexpr std::string_view kBlanks = " \t";

// The position of the quote that closes a token whose inside starts at `line[0]`; npos without one.
std::size_t FindClosingQuote(std::string_view line) {
    std::size_t quote = line.find('"');
    while (quote != std::string_view::npos && quote + 1 < line.size() && line[quote + 1] == '"')
        quote = line.find('"', quote + 2);
    return quote;
}

// The writer doubles every quote on its own, but any run of quotes is read as a single one.
std::string CollapseQuotes(std::string_view inside) {
    std::string token(inside);
    const auto bothQuotes = [](char a, char b) { return a == '"' && b == '"'; };
    token.erase(std::unique(token.begin(), token.end(), bothQuotes), token.end());
    return token;
}

} // namespace

void CLineBuffer::ForgetComplete() {
    if (m_complete) m_line.clear();
    m_complete = false;
}

std::optional<std::string_view> CLineBuffer::Complete(std::string_view end) {
    ForgetComplete();
    std::string_view line = end;
    if (m_dropping || !m_line.empty()) {
        Keep(end);
        line = m_line;
        m_complete = true;
    }
    const bool tooLong = m_dropping || line.size() > longestLine;
    m_dropping = false;
    if (tooLong) return std::nullopt;
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

void CLineBuffer::Keep(std::string_view text) {
    ForgetComplete();
    m_dropping = m_dropping || text.size() > longestLine - m_line.size();
    if (m_dropping)
        m_line.clear();
    else
        m_line += text;
}

std::vector<std::string> SplitTokens(std::string_view line) {
    std::vector<std::string> tokens;
    for (;;) {
        const std::size_t start = line.find_first_not_of(kBlanks);
        if (start == std::string_view::npos) return tokens;
        line.remove_prefix(start);

        if (line.front() != '"') {
            const std::size_t end = std::min(line.find_first_of(kBlanks), line.size());
            tokens.emplace_back(line.substr(0, end));
            line.remove_prefix(end);
            continue;
        }
        line.remove_prefix(1);
        const std::size_t end = std::min(FindClosingQuote(line), line.size());
        if (std::string token = CollapseQuotes(line.substr(0, end)); !token.empty())
            tokens.push_back(std::move(token));
        line.remove_prefix(std::min(end + 1, line.size()));
        if (!line.empty() && kBlanks.find(line.front()) == std::string_view::npos) return {};
    }
}

std::string FormatCommand(std::string_view word) {
    if (word.find_first_of(kBlanks) == std::string_view::npos) return std::string(word) + '\n';
    std::string line = "\"";
    for (const char c : word) line.append(c == '"' ? 2 : 1, c);
    return line + "\"\n";
}

std::optional<float> ParsePercent(std::string_view token) {
    const auto number = Outils_Texte::ParseDouble(token);
    // Far outside a float might not hold it. The limits count after rounding to a float, which can only move
    // a number that is very near to them.
    if (!number || !(*number > -1.0 && *number < 101.0)) return std::nullopt;
    const auto percent = static_cast<float>(*number);
    if (percent < 0.0f || percent > 100.0f) return std::nullopt;
    return percent;
}

} // namespace Communication_Processus
