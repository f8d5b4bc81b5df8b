#include "model/dictionary/file_description.h"

#include "foundation/text.h"
#include "xpf/file.h"

#include <array>
#include <cstring>

namespace Metier_Tarvel_DataModel {

using namespace Persistance_Xpf;

namespace {

// Far above any real file; bounds what the header of a hostile file costs.
constexpr std::size_t kLargestFieldTotal = 1u << 18;

// One fixed record of the header.
template <std::size_t Size>
class CRecord {
  public:
    bool Read(CXpfFile& file) { return file.Read(m_bytes.data(), Size) == Size; }

    template <class T>
    T Get(std::size_t offset) const {
        T value;
        std::memcpy(&value, m_bytes.data() + offset, sizeof value);
        return value;
    }
    std::string GetText(std::size_t offset, std::size_t size) const {
        return Outils_Texte::Windows1252ToUtf8(Outils_Texte::TrimAtZero({m_bytes.data() + offset, size}));
    }

  private:
    std::array<char, Size> m_bytes;
};

bool ReadChannel(CXpfFile& file, SFileDescription& description) {
    constexpr std::size_t kName = 2;
    constexpr std::size_t kDescription = kName + kChannelNameSize;
    constexpr std::size_t kType = kDescription + kChannelDescriptionSize;
    CRecord<kChannelRecordSize> record;
    if (!record.Read(file)) return false;
    description.channels.push_back({record.Get<std::uint16_t>(0), record.GetText(kName, kChannelNameSize),
                                    record.GetText(kDescription, kChannelDescriptionSize),
                                    record.Get<std::uint16_t>(kType)});
    return true;
}

bool ReadField(CXpfFile& file, SFileDescription& description) {
    constexpr std::size_t kType = kFieldNameSize;
    constexpr std::size_t kCount = kType + 1;
    constexpr std::size_t kDescription = kCount + 4;
    constexpr std::size_t kNature = kDescription + kFieldDescriptionSize;
    static_assert(kNature + 1 == kFieldRecordSize);
    CRecord<kFieldRecordSize> record;
    if (description.fields.size() == kLargestFieldTotal || !record.Read(file)) return false;
    description.fields.push_back({record.GetText(0, kFieldNameSize),
                                  record.GetText(kDescription, kFieldDescriptionSize),
                                  record.Get<std::uint8_t>(kType), record.Get<std::uint32_t>(kCount),
                                  record.Get<std::uint8_t>(kNature)});
    return true;
}

bool ReadDefinition(CXpfFile& file, SFileDescription& description) {
    CRecord<kDefinitionRecordSize> record;
    if (!record.Read(file)) return false;
    const auto fieldCount = record.Get<std::uint16_t>(6);
    const std::size_t firstField = description.fields.size();
    for (std::uint32_t i = 0; i < fieldCount; ++i)
        if (!ReadField(file, description)) return false;
    description.definitions.push_back(
        {record.Get<std::uint16_t>(0), record.Get<std::uint32_t>(2), firstField, fieldCount});
    return true;
}

} // namespace

bool ReadFileDescription(const std::filesystem::path& path, SFileDescription& description) {
    CXpfFile file;
    CRecord<kFileHeaderSize> header;
    if (!file.Open(path) || !header.Read(file)) return false;
    for (std::uint32_t left = header.Get<std::uint16_t>(kChannelCountOffset); left > 0; --left)
        if (!ReadChannel(file, description)) return false;
    for (std::uint32_t left = header.Get<std::uint16_t>(kDefinitionCountOffset); left > 0; --left)
        if (!ReadDefinition(file, description)) return false;
    return true;
}

} // namespace Metier_Tarvel_DataModel
