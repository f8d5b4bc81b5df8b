// What a file says of its own packets, read with the header and never changed.
#pragma once

#include "xpf/layout.h"
#include "xpf/records.h"

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

namespace Persistance_Xpf {

// A field record kept whole, so that a header of very many fields is read and let go of in no time.
class CXpfFieldDefinition {
  public:
    using Record = std::array<std::uint8_t, kFieldRecordSize>;

    explicit CXpfFieldDefinition(const Record& record) : m_record(record) {}

    std::string_view GetName() const { return LoadPaddedText(m_record.data(), kFieldNameSize); }
    // EFieldType, or a code that this system does not know.
    std::uint8_t GetTypeCode() const { return m_record[kFieldNameSize]; }
    // Elements.
    std::uint32_t GetCount() const { return LoadWord(&m_record[kFieldNameSize + 1]); }
    std::string_view GetDescription() const {
        return LoadPaddedText(&m_record[kFieldNameSize + 5], kFieldDescriptionSize);
    }

  private:
    Record m_record;
};

class CXpfPacketDefinition {
  public:
    std::uint16_t type = 0;
    std::uint32_t version = 0;
    std::vector<CXpfFieldDefinition> fields;
};

} // namespace Persistance_Xpf
