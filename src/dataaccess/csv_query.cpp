#include "dataaccess/csv_query.h"

#include "foundation/bytes.h"

#include <array>
#include <charconv>
#include <cstring>

namespace Application_Tarvel {

using namespace Persistance_Xpf;
using namespace Outils_Temps;

namespace {

constexpr char kSeparator = ';';
constexpr std::size_t kTextSize = 1 << 20;
constexpr std::size_t kWidestValue = 40; // characters, with the separator

template <class Element>
char* FormatElement(const std::uint8_t* bytes, const SCsvColumn& column, char* out) {
    const auto value = Outils::Load<Element>(bytes);
    if (column.factor == 1 && column.offset == 0) return std::to_chars(out, out + kWidestValue, value).ptr;
    return std::to_chars(out, out + kWidestValue, static_cast<double>(value) * column.factor + column.offset)
        .ptr;
}

} // namespace

CTrvCsvQuery::CTrvCsvQuery(SChannelAddress address, SClosedPeriod period, SCsvClock clock,
                           std::vector<SCsvColumn> columns, std::filesystem::path target, Callback onDone)
    : TPeriodQuery(std::move(address), period, std::move(onDone)),
      m_clock(std::move(clock)),
      m_columns(std::move(columns)),
      m_target(std::move(target)) {}

bool CTrvCsvQuery::Begin(const SPacketLayout& layout) {
    Abandon();
    m_elements.clear();
    m_headings.clear();
    m_rows = 0;
    m_targetAtFault = false;
    AppendHeading(m_clock.heading);
    for (const SCsvColumn& column : m_columns)
        if (!AddElements(layout, column)) return false;
    m_headings += '\n';
    m_text.resize(kTextSize + m_headings.size() + (m_elements.size() + 1) * kWidestValue);
    std::memcpy(m_text.data(), m_headings.data(), m_headings.size());
    m_used = m_headings.size();
    return OpenTarget() || Fail();
}

bool CTrvCsvQuery::AddElements(const SPacketLayout& layout, const SCsvColumn& column) {
    static constexpr std::array<Format, 8> formats = {
        FormatElement<std::uint8_t>, FormatElement<std::uint16_t>, FormatElement<std::uint32_t>,
        FormatElement<std::int8_t>,  FormatElement<std::int16_t>,  FormatElement<std::int32_t>,
        FormatElement<float>,        FormatElement<double>};
    if (column.field >= layout.fields.size()) return false;
    const SFieldLayout& row = layout.fields[column.field];
    const auto type = static_cast<std::size_t>(row.type);
    if (type >= formats.size()) return false;
    for (std::uint32_t i = 0; i < row.count; ++i) {
        m_headings += kSeparator;
        AppendHeading(row.count > 1 ? column.heading + '[' + std::to_string(i) + ']' : column.heading);
        m_elements.push_back({&column, formats[type], layout.offsets[column.field] + i * GetWidth(row.type)});
    }
    return true;
}

void CTrvCsvQuery::AppendHeading(const std::string& heading) {
    if (heading.find_first_of(";\"\r\n") == std::string::npos) {
        m_headings += heading;
        return;
    }
    m_headings += '"';
    for (const char c : heading) m_headings += c == '"' ? std::string("\"\"") : std::string(1, c);
    m_headings += '"';
}

bool CTrvCsvQuery::Take(Payloads payloads) {
    for (const std::uint8_t* payload : payloads) {
        if (m_used >= kTextSize && !Flush()) return Fail();
        char* out = FormatDate(Outils::Load<std::int64_t>(payload), m_text.data() + m_used);
        for (const SElement& element : m_elements) {
            *out++ = kSeparator;
            out = element.format(payload + element.offset, *element.column, out);
        }
        *out++ = '\n';
        m_used = static_cast<std::size_t>(out - m_text.data());
    }
    m_rows += payloads.size();
    return true;
}

char* CTrvCsvQuery::FormatDate(std::int64_t date, char* out) {
    const CDateTimeSpan span(date);
    if (m_clock.zero)
        if (char* end = m_iso.Format(*m_clock.zero + span, out); end != out) return end;
    const CDateTimeSpan shown = span + m_clock.origin;
    return Outils_Temps::FormatSeconds(shown.IsValid() ? shown.GetTicks() : date, out);
}

bool CTrvCsvQuery::OpenTarget() {
    if (!m_file.Open(m_target)) return false;
    m_target = m_file.GetTarget();
    return true;
}

bool CTrvCsvQuery::Flush() {
    const std::span text(m_text.data(), m_used);
    m_used = 0;
    return m_file.Write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

bool CTrvCsvQuery::Finish() { return (Flush() && m_file.Commit()) || Fail(); }

bool CTrvCsvQuery::Fail() {
    m_targetAtFault = true;
    return false;
}

} // namespace Application_Tarvel
