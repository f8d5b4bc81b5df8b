#include "convert/record_sink.h"

#include "convert/packet_values.h"
#include "foundation/texts.h"
#include "xpf/tarin_layouts.h"

#include <algorithm>
#include <cstring>

namespace Conversion {

using Enregistrement::PlaceOf;
using Outils_Texte::EText;
using namespace Persistance_Xpf;

namespace {

static_assert(kNelixNavLayout.payloadSize <= 64, "no packet of a recording is larger");

// With a longer gap after it the first record counts as a stray one.
constexpr Ticks kIsolated = kTicksPerDay;

} // namespace

std::uint16_t GetChannelRow(std::string_view name) {
    return static_cast<std::uint16_t>(FindChannelLayout(name) - GetChannelLayouts().data());
}

CRecordSink::CRecordSink(std::filesystem::path path, EDates dates, ChannelSet known, CFaultCounter& faults)
    : m_path(std::move(path)),
      m_writesUtc(dates == EDates::utc),
      m_isAbsolute(dates == EDates::utc),
      m_channels(std::move(known)),
      m_faults(faults) {}

void CRecordSink::Add(std::uint16_t channel, Ticks date, std::span<const std::uint8_t> payload,
                      std::uint64_t place) {
    if (IsDone()) return;
    // Old data in between must not seem to overtake what waits.
    if (date < m_lastDate) return m_faults.Add(EText::faultLate, place);
    std::size_t index = m_waiting;
    while (index > 0 && At(index - 1).date > date) --index;
    if (IsRepeated(channel, date, payload, index)) return m_faults.Add(EText::faultRepeated, place);
    for (std::size_t i = m_waiting; i > index; --i) At(i) = At(i - 1);
    SRecord& record = At(index);
    record.date = date;
    record.number = m_number++;
    record.place = place;
    record.channel = channel;
    record.size = static_cast<std::uint8_t>(payload.size());
    std::memcpy(record.payload.data(), payload.data(), payload.size());
    if (++m_waiting > index + 1) DropAheadOfAll();
    if (m_waiting > kWaiting) WriteFirst();
}

// The same record waits already, just before this place.
bool CRecordSink::IsRepeated(std::uint16_t channel, Ticks date, std::span<const std::uint8_t> payload,
                             std::size_t place) {
    while (place-- > 0 && At(place).date == date) {
        const SRecord& other = At(place);
        if (other.channel == channel &&
            std::equal(payload.begin() + sizeof date, payload.end(), other.payload.begin() + sizeof date))
            return true;
    }
    return false;
}

// The last ones that wait, when too many have overtaken them.
void CRecordSink::DropAheadOfAll() {
    while (m_waiting > 0 && At(m_waiting - 1).number + kOvertakers < m_number) {
        m_faults.Add(EText::faultAhead, At(m_waiting - 1).place);
        --m_waiting;
    }
}

// A first record whose date lies far before all the others.
void CRecordSink::DropFarBack() {
    constexpr std::size_t kEnough = 8;
    while (m_waiting >= kEnough && At(1).date - At(0).date > kIsolated) {
        m_faults.Add(EText::faultLate, At(0).place);
        m_first = (m_first + 1) % m_records.size();
        --m_waiting;
    }
}

bool CRecordSink::Begin() {
    m_begun = true;
    DropFarBack();
    for (std::size_t i = 0; i < m_waiting; ++i) m_channels.insert(At(i).channel);
    if (m_writesUtc) m_channels.insert(GetChannelRow("UTC"));
    if (m_isAbsolute) m_origin = At(0).date / kTicksPerDay * kTicksPerDay;
    std::vector<std::string_view> names;
    for (const std::uint16_t row : m_channels) names.push_back(GetChannelLayouts()[row].name);
    if (!m_writer.Create(m_path, names)) return false;
    for (const std::uint16_t row : m_channels)
        m_handles[row] = *m_writer.FindChannel(GetChannelLayouts()[row].name);
    return true;
}

void CRecordSink::WriteFirst() {
    if (!m_begun && !Begin()) m_failed = true;
    if (m_failed || m_waiting == 0) return;
    SRecord& record = At(0);
    m_first = (m_first + 1) % m_records.size();
    --m_waiting;
    m_lastDate = record.date;
    if (!m_channels.contains(record.channel)) {
        m_channels.insert(record.channel);
        m_mustRestart = true;
    } else if (!Write(record)) {
        m_failed = true;
    }
}

bool CRecordSink::Write(SRecord& record) {
    const Ticks date = m_isAbsolute ? record.date - m_origin : record.date;
    std::memcpy(record.payload.data(), &date, sizeof date);
    if (m_writesUtc) WriteUtc(m_isAbsolute ? record.date : record.date + m_origin);
    ++m_count;
    return m_writer.WriteRaw(m_handles[record.channel], {record.payload.data(), record.size});
}

// At the whole second, which the packet's small fields hold without rounding.
void CRecordSink::WriteUtc(Ticks utc) {
    if (utc < 0) return;
    const Ticks second = utc / kTicksPerSecond;
    if (second == m_lastSecond) return;
    m_lastSecond = second;
    Outils_Temps::CalendarFields fields;
    if (!Outils_Temps::CDateTime(static_cast<std::uint64_t>(second * kTicksPerSecond)).GetCalendar(fields))
        return;
    Enregistrement::CPayload payload;
    payload.Reset(kUtcLayout.payloadSize);
    payload.PutDate(second * kTicksPerSecond - m_origin);
    payload.Put(PlaceOf(kUtcLayout, "Rejection"), kAuto);
    payload.Put(PlaceOf(kUtcLayout, "UTC Year"), fields.year);
    payload.Put(PlaceOf(kUtcLayout, "UTC Month"), fields.month);
    payload.Put(PlaceOf(kUtcLayout, "UTC day"), fields.day);
    payload.Put(PlaceOf(kUtcLayout, "UTC Hour"), fields.hour);
    payload.Put(PlaceOf(kUtcLayout, "UTC Minute"), fields.minute);
    payload.Put(PlaceOf(kUtcLayout, "UTC Second"), fields.second);
    if (!m_writer.WriteRaw(m_handles[GetChannelRow("UTC")], payload.Get())) m_failed = true;
}

bool CRecordSink::Finish() {
    // Those at the end that few could overtake any more.
    while (!IsDone() && m_waiting > 1 && At(m_waiting - 1).date - At(m_waiting - 2).date > kIsolated &&
           At(m_waiting - 1).number < At(m_waiting - 2).number) {
        m_faults.Add(EText::faultAhead, At(m_waiting - 1).place);
        --m_waiting;
    }
    while (!IsDone() && m_waiting > 0) WriteFirst();
    if (!m_writer.Close()) m_failed = true;
    return !m_failed;
}

} // namespace Conversion
