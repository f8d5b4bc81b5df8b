// Packet objects: the payload byte for byte as in the file, with typed access by field index.
//
// `field` is the index in definition order. A typed accessor returns true only for a field of exactly its
// type, and leaves `value` unchanged otherwise. Not thread-safe; a packet belongs to its creator.
#pragma once

#include "foundation/date_time.h"
#include "xpf/layout.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace Persistance_Xpf {

using Outils_Temps::CDateTimeSpan;

class CXpfPacket {
  public:
    virtual ~CXpfPacket() = default;

    // The payload bytes, filled by CXpfChannel::ReadNextPacket. Valid while the packet lives.
    virtual std::uint8_t* GetPayload() = 0;
    const std::uint8_t* GetPayload() const { return const_cast<CXpfPacket*>(this)->GetPayload(); }
    const SPacketLayout& GetLayout() const { return m_layout; }
    // Bytes.
    std::uint32_t GetPayloadSize() const { return m_layout.payloadSize; }
    // Sets the payload to zero.
    void Clear() { std::memset(GetPayload(), 0, GetPayloadSize()); }

    // The packet as one line: the date as "seconds.ticks" with seven decimals, floats with 8 significant
    // digits, 8-bit values as numbers, the elements of a field one by one; `separator` between them.
    std::string ToText(std::string_view separator) const;
    // The field names in order, a name once for each element.
    std::string GetHeaderText(std::string_view separator) const;

    std::uint32_t GetFieldCount() const { return static_cast<std::uint32_t>(m_layout.fields.size()); }
    bool GetFieldInfo(std::uint32_t field, EFieldType& type, std::uint32_t& count,
                      std::uint8_t& nature) const;

    virtual bool HasDate() const { return false; }
    // Field 0 of a dated packet only.
    bool GetDate(std::uint32_t field, CDateTimeSpan& value) const;
    bool SetDate(std::uint32_t field, CDateTimeSpan value);
    // Any scalar field as a 64-bit float; a date as its tick count.
    bool GetDouble(std::uint32_t field, double& value) const;

    bool GetFloat(std::uint32_t field, float& value) const { return GetScalar(field, value); }
    bool GetInt32(std::uint32_t field, std::int32_t& value) const { return GetScalar(field, value); }
    bool GetInt16(std::uint32_t field, std::int16_t& value) const { return GetScalar(field, value); }
    bool GetInt8(std::uint32_t field, std::int8_t& value) const { return GetScalar(field, value); }
    bool GetUInt32(std::uint32_t field, std::uint32_t& value) const { return GetScalar(field, value); }
    bool GetUInt16(std::uint32_t field, std::uint16_t& value) const { return GetScalar(field, value); }
    bool GetUInt8(std::uint32_t field, std::uint8_t& value) const { return GetScalar(field, value); }

    // SetDouble sets a 64-bit float field only.
    bool SetDouble(std::uint32_t field, double value) { return SetScalar(field, value); }
    bool SetFloat(std::uint32_t field, float value) { return SetScalar(field, value); }
    bool SetInt32(std::uint32_t field, std::int32_t value) { return SetScalar(field, value); }
    bool SetInt16(std::uint32_t field, std::int16_t value) { return SetScalar(field, value); }
    bool SetInt8(std::uint32_t field, std::int8_t value) { return SetScalar(field, value); }
    bool SetUInt32(std::uint32_t field, std::uint32_t value) { return SetScalar(field, value); }
    bool SetUInt16(std::uint32_t field, std::uint16_t value) { return SetScalar(field, value); }
    bool SetUInt8(std::uint32_t field, std::uint8_t value) { return SetScalar(field, value); }

    // One element of a field of several; false for an element at or above the count. No packet has several
    // dates.
    bool GetDateElement(std::uint32_t, std::uint32_t, CDateTimeSpan&) const { return false; }
    bool GetDoubleElement(std::uint32_t field, std::uint32_t element, double& value) const {
        return GetElement(field, element, value);
    }
    bool GetFloatElement(std::uint32_t field, std::uint32_t element, float& value) const {
        return GetElement(field, element, value);
    }
    bool GetInt32Element(std::uint32_t field, std::uint32_t element, std::int32_t& value) const {
        return GetElement(field, element, value);
    }
    bool GetInt16Element(std::uint32_t field, std::uint32_t element, std::int16_t& value) const {
        return GetElement(field, element, value);
    }
    bool GetInt8Element(std::uint32_t field, std::uint32_t element, std::int8_t& value) const {
        return GetElement(field, element, value);
    }
    bool GetUInt32Element(std::uint32_t field, std::uint32_t element, std::uint32_t& value) const {
        return GetElement(field, element, value);
    }
    bool GetUInt16Element(std::uint32_t field, std::uint32_t element, std::uint16_t& value) const {
        return GetElement(field, element, value);
    }
    bool GetUInt8Element(std::uint32_t field, std::uint32_t element, std::uint8_t& value) const {
        return GetElement(field, element, value);
    }

    // The literal index of a status field, see CXpfFile::GetStatusField; false when the bits mean none.
    bool GetStatusValue(std::uint32_t statusField, std::uint32_t& value) const;

  protected:
    // `layout` must outlive the packet.
    explicit CXpfPacket(const SPacketLayout& layout) : m_layout(layout) {}

  private:
    // The bytes of an element of type T, in a field of one element or of `several`; null for any other field.
    template <class T>
    const std::uint8_t* Find(std::uint32_t field, std::uint32_t element, bool several) const {
        if (field >= m_layout.fields.size()) return nullptr;
        const SFieldLayout& row = m_layout.fields[field];
        const bool fits = row.type == GetFieldType<T>() && (row.count > 1) == several && element < row.count;
        return fits ? GetPayload() + m_layout.offsets[field] + element * sizeof(T) : nullptr;
    }
    template <class T>
    bool GetElement(std::uint32_t field, std::uint32_t element, T& value, bool several = true) const {
        const std::uint8_t* bytes = Find<T>(field, element, several);
        if (bytes) std::memcpy(&value, bytes, sizeof value);
        return bytes != nullptr;
    }
    template <class T>
    bool GetScalar(std::uint32_t field, T& value) const {
        return GetElement(field, 0, value, false);
    }
    template <class T>
    bool SetScalar(std::uint32_t field, T value) {
        const std::uint8_t* bytes = Find<T>(field, 0, false);
        if (bytes)
            std::memcpy(GetPayload() + (bytes - std::as_const(*this).GetPayload()), &value, sizeof value);
        return bytes != nullptr;
    }

    const SPacketLayout& m_layout;
};

// A packet whose first field is its date on the recording's clock.
class CXpfDatedPacket : public CXpfPacket {
  public:
    bool HasDate() const override { return true; }
    // With valid status.
    CDateTimeSpan GetPacketDate() const;

  protected:
    using CXpfPacket::CXpfPacket;
};

} // namespace Persistance_Xpf
