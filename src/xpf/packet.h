// Packet objects: the payload byte for byte as in the file, with typed access by field index.
//
// `field` is the index in definition order. A typed accessor answers true only for a field of exactly its
// type and leaves `value` alone otherwise. Not thread-safe; a packet belongs to whoever created it.
#pragma once

#include "foundation/date_time.h"
#include "xpf/layout.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace Persistance_Xpf {

using Outils_Temps::CDateTimeSpan;

class CXpfPacket {
  public:
    virtual ~CXpfPacket() = default;

    // The payload bytes, to be filled by CXpfChannel::ReadNextPacket; valid while the packet lives.
    virtual std::uint8_t* GetPayload() = 0;
    const std::uint8_t* GetPayload() const { return const_cast<CXpfPacket*>(this)->GetPayload(); }
    virtual std::uint32_t GetPayloadSize() const = 0;
    // Sets the payload to zero.
    virtual void Clear() = 0;

    // The packet as one line: the date as "seconds.ticks" with seven decimals, floats with 8 significant
    // digits, 8-bit values as numbers, elements of a field one after the other; `separator` between them.
    virtual std::string ToText(std::string_view separator) const = 0;
    // The field names in order, a name once for each element.
    virtual std::string GetHeaderText(std::string_view separator) const = 0;

    virtual std::uint32_t GetFieldCount() const = 0;
    virtual bool GetFieldInfo(std::uint32_t field, EFieldType& type, std::uint32_t& count,
                              std::uint8_t& nature) const = 0;

    virtual bool HasDate() const { return false; }
    // Field 0 of a dated packet only.
    virtual bool GetDate(std::uint32_t, CDateTimeSpan&) const { return false; }
    // Any scalar field as a 64-bit float; a date gives its tick count.
    virtual bool GetDouble(std::uint32_t, double&) const { return false; }
    virtual bool GetFloat(std::uint32_t, float&) const { return false; }
    virtual bool GetInt32(std::uint32_t, std::int32_t&) const { return false; }
    virtual bool GetInt16(std::uint32_t, std::int16_t&) const { return false; }
    virtual bool GetInt8(std::uint32_t, std::int8_t&) const { return false; }
    virtual bool GetUInt32(std::uint32_t, std::uint32_t&) const { return false; }
    virtual bool GetUInt16(std::uint32_t, std::uint16_t&) const { return false; }
    virtual bool GetUInt8(std::uint32_t, std::uint8_t&) const { return false; }

    virtual bool SetDate(std::uint32_t, CDateTimeSpan) { return false; }
    // A 64-bit float field only.
    virtual bool SetDouble(std::uint32_t, double) { return false; }
    virtual bool SetFloat(std::uint32_t, float) { return false; }
    virtual bool SetInt32(std::uint32_t, std::int32_t) { return false; }
    virtual bool SetInt16(std::uint32_t, std::int16_t) { return false; }
    virtual bool SetInt8(std::uint32_t, std::int8_t) { return false; }
    virtual bool SetUInt32(std::uint32_t, std::uint32_t) { return false; }
    virtual bool SetUInt16(std::uint32_t, std::uint16_t) { return false; }
    virtual bool SetUInt8(std::uint32_t, std::uint8_t) { return false; }

    // One element of a field of several; false for an element at or above the count.
    virtual bool GetDateElement(std::uint32_t, std::uint32_t, CDateTimeSpan&) const { return false; }
    virtual bool GetDoubleElement(std::uint32_t, std::uint32_t, double&) const { return false; }
    virtual bool GetFloatElement(std::uint32_t, std::uint32_t, float&) const { return false; }
    virtual bool GetInt32Element(std::uint32_t, std::uint32_t, std::int32_t&) const { return false; }
    virtual bool GetInt16Element(std::uint32_t, std::uint32_t, std::int16_t&) const { return false; }
    virtual bool GetInt8Element(std::uint32_t, std::uint32_t, std::int8_t&) const { return false; }
    virtual bool GetUInt32Element(std::uint32_t, std::uint32_t, std::uint32_t&) const { return false; }
    virtual bool GetUInt16Element(std::uint32_t, std::uint32_t, std::uint16_t&) const { return false; }
    virtual bool GetUInt8Element(std::uint32_t, std::uint32_t, std::uint8_t&) const { return false; }

    // The literal's index of a status field (see CXpfFile::GetStatusField); false when the bits give none.
    virtual bool GetStatusValue(std::uint32_t, std::uint32_t&) const { return false; }
};

// A packet whose first field is its date on the recording's clock.
class CXpfDatedPacket : public CXpfPacket {
  public:
    bool HasDate() const override { return true; }
    // With valid status.
    virtual CDateTimeSpan GetPacketDate() const = 0;
};

} // namespace Persistance_Xpf
