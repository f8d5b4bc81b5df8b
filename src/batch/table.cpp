#include "batch/table.h"

#include "foundation/text.h"

#include <cstdio>
#include <ostream>

namespace Batch {

using Outils_Temps::CDateTime;
using Outils_Temps::CDateTimeSpan;

namespace {

constexpr char kSeparator = ';';

// Bytes that are no UTF-8 come from old programs, which wrote in the code page of their time.
std::u16string Decode(std::string_view text) {
    std::u16string decoded = Outils_Texte::Utf8ToUtf16(text);
    if (decoded.find(u'\uFFFD') != decoded.npos && text.find("\xEF\xBF\xBD") == text.npos)
        decoded = Outils_Texte::Utf8ToUtf16(Outils_Texte::Windows1252ToUtf8(text));
    return decoded;
}

// A text of a file must not end the line or steer a terminal.
std::string ToPlainText(std::string_view text) {
    return Outils_Texte::ReplaceControls(Outils_Texte::Utf16ToUtf8(Decode(text)));
}

std::string Quote(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : ToPlainText(text)) quoted.append(c == '"' ? 2 : 1, c);
    return quoted + '"';
}

// Unpaired surrogates, which UTF-8 cannot hold, are escaped like control characters.
std::string QuoteJson(std::string_view text) {
    const std::u16string decoded = Decode(text);
    const auto isHigh = [](char16_t c) { return c >= 0xD800 && c < 0xDC00; };
    const auto isLow = [](char16_t c) { return c >= 0xDC00 && c < 0xE000; };
    std::string quoted = "\"";
    for (std::size_t i = 0; i < decoded.size(); ++i) {
        const char16_t c = decoded[i];
        const bool isPair = isHigh(c) && i + 1 < decoded.size() && isLow(decoded[i + 1]);
        if (c == u'"' || c == u'\\') {
            quoted += {'\\', static_cast<char>(c)};
        } else if (Outils_Texte::IsControl(c) || (!isPair && (isHigh(c) || isLow(c)))) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04X", static_cast<unsigned>(c));
            quoted += escape;
        } else {
            quoted += Outils_Texte::Utf16ToUtf8({&decoded[i], isPair ? 2u : 1u});
            i += isPair;
        }
    }
    return quoted + '"';
}

std::string TrimZeros(std::string text) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) text.pop_back();
    return text;
}

} // namespace

CTable::CTable(std::ostream& out, EForm form, std::string_view columns) : m_out(out), m_form(form) {
    for (std::size_t start = 0; start <= columns.size();) {
        const std::size_t end = std::min(columns.find(kSeparator, start), columns.size());
        const std::string_view name = columns.substr(start, end - start);
        m_keys.push_back(form == EForm::json ? QuoteJson(name) : std::string(name));
        start = end + 1;
    }
    if (form == EForm::rows) m_out << columns << '\n';
}

void CTable::AddCell(std::string_view text) {
    if (m_form == EForm::json) {
        m_line += m_cells == 0 ? '{' : ',';
        m_line += m_keys[m_cells];
        m_line += ':';
    } else if (m_cells > 0) {
        m_line += kSeparator;
    }
    m_line += text;
    ++m_cells;
}

CTable& CTable::Add(std::string_view word) {
    const bool quotes = m_form == EForm::rows && word.find_first_of("\";\r\n") != word.npos;
    if (m_form == EForm::rows && !quotes)
        AddCell(ToPlainText(word));
    else
        Add(SQuoted{word});
    return *this;
}

CTable& CTable::Add(SQuoted quoted) {
    AddCell(m_form == EForm::json ? QuoteJson(quoted.text) : Quote(quoted.text));
    return *this;
}

CTable& CTable::Add(CDateTimeSpan span) { return span.IsValid() ? AddDigits(ToSeconds(span)) : AddEmpty(); }

CTable& CTable::Add(const CDateTime& date) {
    const std::string text = ToIsoText(date);
    return text.empty() ? AddEmpty() : Add(std::string_view(text));
}

CTable& CTable::AddDigits(std::string_view digits) {
    const bool isFinite = digits.find_first_of("ni") == digits.npos; // neither "nan" nor "inf"
    AddCell(m_form == EForm::json && !isFinite ? '"' + std::string(digits) + '"' : std::string(digits));
    return *this;
}

CTable& CTable::AddEmpty() {
    AddCell(m_form == EForm::json ? "null" : "");
    return *this;
}

CTable& CTable::SkipTo(std::size_t column) {
    while (m_cells < column) AddEmpty();
    return *this;
}

void CTable::EndRow(bool flush) {
    SkipTo(m_keys.size());
    if (m_form == EForm::json) m_line += '}';
    m_line += '\n';
    m_out << m_line;
    if (flush) m_out.flush();
    m_line.clear();
    m_cells = 0;
}

std::string ToSeconds(CDateTimeSpan span) { return TrimZeros(span.ToText()); }

std::string ToIsoText(const CDateTime& date) {
    Outils_Temps::CalendarFields fields;
    if (!date.GetCalendar(fields)) return {};
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%07d", fields.year, fields.month,
                  fields.day, fields.hour, fields.minute, fields.second, static_cast<int>(fields.ticks));
    return TrimZeros(text) + 'Z';
}

} // namespace Batch
