#include "dataaccess/format_sniffers.h"

#include "foundation/numbers.h"

#include <algorithm>
#include <cstdint>

namespace Application_Tarvel {

using Outils_Valeurs::CDateTimeAdaptor;

namespace {

constexpr char kFrameMark = '$';
constexpr std::size_t kFrameBytes = 512; // looked at
constexpr int kEventLines = 4;           // make an event text

bool BeginsWithAny(std::string_view line, std::span<const std::string_view> words) {
    return std::any_of(words.begin(), words.end(),
                       [line](std::string_view word) { return line.starts_with(word); });
}

// The next run of characters other than tabs; empty when there is none.
std::string_view NextToken(std::string_view& line) {
    line.remove_prefix(std::min(line.find_first_not_of('\t'), line.size()));
    const std::string_view token = line.substr(0, line.find('\t'));
    line.remove_prefix(token.size());
    return token;
}

bool IsEvent(std::string_view line, const CDateTimeAdaptor& dates) {
    const std::string_view date = NextToken(line);
    const std::string_view edge = NextToken(line);
    const std::string_view number = NextToken(line);
    Outils_Temps::CDateTime value;
    return dates.TextToValue(date, value) && (edge.empty() || edge == "0" || edge == "1" || edge == "2") &&
           (number.empty() || Outils_Texte::ParseInt(number));
}

} // namespace

bool CHeadLines::Next(std::string_view& line) {
    if (m_count == 0 || m_rest.empty()) return false;
    --m_count;
    // The two characters more are the end of a line of the full length.
    const std::size_t end = m_rest.substr(0, m_limit + 2).find('\n');
    line = m_rest.substr(0, end);
    if (end != std::string_view::npos && line.ends_with('\r')) line.remove_suffix(1);
    if (line.size() > m_limit) {
        line = line.substr(0, m_limit);
        m_rest.remove_prefix(m_limit);
    } else {
        m_rest.remove_prefix(end == std::string_view::npos ? m_rest.size() : end + 1);
    }
    return true;
}

bool AnyLineBegins(std::string_view head, const SSniffer& sniffer, const CDateTimeAdaptor&) {
    CHeadLines lines(head, sniffer.lines, sniffer.lineLimit);
    for (std::string_view line; lines.Next(line);)
        if (BeginsWithAny(line, sniffer.words)) return true;
    return false;
}

bool EachWordBegins(std::string_view head, const SSniffer& sniffer, const CDateTimeAdaptor& dates) {
    for (const std::string_view& word : sniffer.words) {
        SSniffer single = sniffer;
        single.words = std::span(&word, 1);
        if (!AnyLineBegins(head, single, dates)) return false;
    }
    return true;
}

bool MostLinesBegin(std::string_view head, const SSniffer& sniffer, const CDateTimeAdaptor&) {
    CHeadLines lines(head, sniffer.lines, sniffer.lineLimit);
    std::size_t read = 0;
    std::size_t tagged = 0;
    for (std::string_view line; lines.Next(line); ++read)
        if (BeginsWithAny(line, sniffer.words)) ++tagged;
    return read > 0 && tagged * 100 >= read * 80;
}

bool HoldsFrame(std::string_view head, const SSniffer&, const CDateTimeAdaptor&) {
    head = head.substr(0, kFrameBytes);
    for (std::size_t i = 0; i + 1 < head.size(); ++i) {
        if (head[i] != kFrameMark) continue;
        const std::size_t next = i + static_cast<std::uint8_t>(head[i + 1]);
        if (next < head.size() && head[next] == kFrameMark) return true;
    }
    return false;
}

bool HoldsEvents(std::string_view head, const SSniffer& sniffer, const CDateTimeAdaptor& dates) {
    CHeadLines lines(head, sniffer.lines, sniffer.lineLimit);
    int events = 0;
    for (std::string_view line; lines.Next(line);)
        if (IsEvent(line, dates) && ++events == kEventLines) return true;
    return false;
}

} // namespace Application_Tarvel
