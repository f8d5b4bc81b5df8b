#include "foundation/archive.h"

#include "foundation/paths.h"
#include "foundation/text.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

namespace Outils_Objets {

namespace {

static_assert(std::endian::native == std::endian::little,
              "scalars and UTF-16 units go to the stream as they lie");

// First words of an object: an index below kBigIndexTag, or one of these.
constexpr std::uint16_t kBigIndexTag = 0x7FFF;          // the index follows in 32 bits
constexpr std::uint16_t kKnownClassBit = 0x8000;        // the low 15 bits are the index of a class
constexpr std::uint16_t kNewClassTag = 0xFFFF;          // schema and name of a class follow
constexpr std::uint32_t kBigKnownClassBit = 0x80000000; // kKnownClassBit of a 32-bit index

constexpr std::uint16_t kClassSchema = 1;

// A length prefix goes from 8 to 16 to 32 bits; this 16-bit value in the place of a length announces UTF-16.
constexpr std::uint8_t kLongLength8 = 0xFF;
constexpr std::uint16_t kLongLength16 = 0xFFFF;
constexpr std::uint16_t kWideMarker = 0xFFFE;

struct SDepthGuard {
    explicit SDepthGuard(int& depth) : m_depth(depth) { ++m_depth; }
    ~SDepthGuard() { --m_depth; }
    SDepthGuard(const SDepthGuard&) = delete;
    SDepthGuard& operator=(const SDepthGuard&) = delete;
    int& m_depth;
};

} // namespace

const char* CArchiveException::what() const noexcept {
    switch (m_cause) {
    case generic: return "archive: generic";
    case readOnly: return "archive: read only";
    case endOfFile: return "archive: end of file";
    case writeOnly: return "archive: write only";
    case badIndex: return "archive: bad index";
    case badClass: return "archive: bad class";
    case badSchema: return "archive: bad schema";
    }
    return "archive";
}

void AfxThrowArchiveException(CArchiveException::ECause cause, std::string fileName) {
    throw CArchiveException(cause, std::move(fileName));
}

CArchive::CArchive(IByteStream& stream, EMode mode, const CClassRegistry* registry,
                   std::filesystem::path path, std::size_t bufferSize)
    : m_stream(stream),
      m_mode(mode),
      m_registry(registry),
      m_path(std::move(path)),
      m_buffer(std::max<std::size_t>(bufferSize, 16)),
      m_loaded(1) {}

CArchive::~CArchive() = default;

void CArchive::Fail(CArchiveException::ECause cause) const {
    AfxThrowArchiveException(cause, Outils_Fichiers::ToText(m_path));
}

void CArchive::CheckStoring() const {
    if (!IsStoring()) Fail(CArchiveException::readOnly);
}

void CArchive::CheckLoading() const {
    if (!IsLoading()) Fail(CArchiveException::writeOnly);
}

void CArchive::Flush() {
    const std::size_t count = std::exchange(m_bufferPosition, 0);
    if (count > 0 && !m_stream.Write(m_buffer.data(), count)) Fail(CArchiveException::generic);
}

void CArchive::Close() {
    if (IsStoring()) Flush();
}

void CArchive::Write(const void* data, std::size_t size) {
    CheckStoring();
    if (size == 0) return;
    if (size > m_buffer.size() - m_bufferPosition) {
        Flush();
        if (size > m_buffer.size()) {
            if (!m_stream.Write(data, size)) Fail(CArchiveException::generic);
            return;
        }
    }
    std::memcpy(m_buffer.data() + m_bufferPosition, data, size);
    m_bufferPosition += size;
}

void CArchive::Read(void* data, std::size_t size) {
    CheckLoading();
    auto* bytes = static_cast<std::uint8_t*>(data);
    while (size > 0) {
        if (m_bufferPosition == m_bufferEnd) {
            m_bufferPosition = 0;
            m_bufferEnd = 0;
            // What would fill the buffer anyway goes straight to its place. A stream may give less than asked
            // for.
            const bool direct = size >= m_buffer.size();
            const std::size_t count =
                direct ? m_stream.Read(bytes, size) : m_stream.Read(m_buffer.data(), m_buffer.size());
            if (count == 0) Fail(CArchiveException::endOfFile);
            if (direct) {
                bytes += count;
                size -= count;
                continue;
            }
            m_bufferEnd = count;
        }
        const std::size_t count = std::min(size, m_bufferEnd - m_bufferPosition);
        std::memcpy(bytes, m_buffer.data() + m_bufferPosition, count);
        m_bufferPosition += count;
        bytes += count;
        size -= count;
    }
}

std::uint64_t CArchive::GetRemaining() const {
    return m_bufferEnd - m_bufferPosition + m_stream.GetRemaining();
}

void CArchive::WriteString(std::string_view text) {
    const std::u16string units = Outils_Texte::Utf8ToUtf16(text);
    const std::size_t length = units.size();
    *this << kLongLength8 << kWideMarker;
    if (length < kLongLength8) {
        *this << static_cast<std::uint8_t>(length);
    } else if (length < kWideMarker) {
        *this << kLongLength8 << static_cast<std::uint16_t>(length);
    } else if (length < std::numeric_limits<std::uint32_t>::max()) {
        *this << kLongLength8 << kLongLength16 << static_cast<std::uint32_t>(length);
    } else {
        Fail(CArchiveException::generic);
    }
    Write(units.data(), length * sizeof(char16_t));
}

std::string CArchive::ReadString() {
    bool wide = false;
    std::uint32_t length = ReadStringLength(wide);
    // Tested before anything is allocated: the length is whatever the file says.
    if (length * (wide ? std::uint64_t{2} : 1) > GetRemaining())
        AfxThrowArchiveException(CArchiveException::endOfFile);
    if (!wide) {
        std::string bytes(length, '\0');
        Read(bytes.data(), bytes.size());
        return Outils_Texte::Windows1252ToUtf8(bytes);
    }
    std::u16string units(length, u'\0');
    Read(units.data(), units.size() * sizeof(char16_t));
    return Outils_Texte::Utf16ToUtf8(units);
}

std::uint32_t CArchive::ReadStringLength(bool& wide) {
    for (;;) {
        std::uint8_t length8 = 0;
        *this >> length8;
        if (length8 != kLongLength8) return length8;
        std::uint16_t length16 = 0;
        *this >> length16;
        if (length16 == kWideMarker && !wide) {
            wide = true;
            continue;
        }
        if (length16 != kLongLength16) return length16;
        std::uint32_t length32 = 0;
        *this >> length32;
        return length32;
    }
}

void CArchive::WriteCount(std::uint32_t count) {
    if (count < kLongLength16)
        *this << static_cast<std::uint16_t>(count);
    else
        *this << kLongLength16 << count;
}

std::uint32_t CArchive::ReadCount() {
    std::uint16_t count16 = 0;
    *this >> count16;
    if (count16 != kLongLength16) return count16;
    std::uint32_t count32 = 0;
    *this >> count32;
    return count32;
}

void CArchive::WriteObject(const CObject* object) {
    CheckStoring();
    if (!object) {
        *this << std::uint16_t{0};
        return;
    }
    if (const auto known = m_stored.find(object); known != m_stored.end()) {
        if (known->second < kBigIndexTag)
            *this << static_cast<std::uint16_t>(known->second);
        else
            *this << kBigIndexTag << known->second;
        return;
    }
    if (m_depth == kMaximumDepth) Fail(CArchiveException::generic);
    const SDepthGuard guard(m_depth);
    WriteClass(object->GetRuntimeClass());
    m_stored.emplace(object, ++m_lastIndex);
    // One operation serves both directions, so it cannot be const; storing changes nothing.
    const_cast<CObject*>(object)->Serialize(*this);
}

void CArchive::WriteClass(const CRuntimeClass& runtimeClass) {
    if (const auto known = m_stored.find(&runtimeClass); known != m_stored.end()) {
        if (known->second < kBigIndexTag)
            *this << static_cast<std::uint16_t>(kKnownClassBit | known->second);
        else
            *this << kBigIndexTag << (kBigKnownClassBit | known->second);
        return;
    }
    *this << kNewClassTag << kClassSchema << static_cast<std::uint16_t>(runtimeClass.name.size());
    Write(runtimeClass.name.data(), runtimeClass.name.size());
    m_stored.emplace(&runtimeClass, ++m_lastIndex);
}

CObject* CArchive::ReadObject(const CRuntimeClass& expected) {
    CheckLoading();
    std::uint16_t tag = 0;
    *this >> tag;
    if (tag == kNewClassTag) return ReadNewObject(ReadNewClass(), expected);

    bool namesClass = (tag & kKnownClassBit) != 0;
    std::uint32_t index = tag & ~kKnownClassBit;
    if (tag == kBigIndexTag) {
        *this >> index;
        namesClass = (index & kBigKnownClassBit) != 0;
        index &= ~kBigKnownClassBit;
    }
    if (index == 0 && !namesClass) return nullptr;
    if (index >= m_loaded.size()) Fail(CArchiveException::badIndex);
    const SEntry& entry = m_loaded[index];
    if (namesClass) {
        if (!entry.runtimeClass) Fail(CArchiveException::badIndex);
        return ReadNewObject(*entry.runtimeClass, expected);
    }
    if (!entry.object) Fail(CArchiveException::badIndex);
    if (!entry.object->IsKindOf(expected)) Fail(CArchiveException::badClass);
    return entry.object;
}

const CRuntimeClass& CArchive::ReadNewClass() {
    std::uint16_t schema = 0;
    std::uint16_t length = 0;
    *this >> schema >> length;
    if (length > GetRemaining()) Fail(CArchiveException::endOfFile);
    std::string name(length, '\0');
    Read(name.data(), name.size());
    const CRuntimeClass* runtimeClass = m_registry ? m_registry->Find(name) : nullptr;
    if (!runtimeClass) Fail(CArchiveException::badClass);
    if (schema != kClassSchema) Fail(CArchiveException::badSchema);
    m_loaded.push_back({runtimeClass, nullptr, nullptr, false});
    return *runtimeClass;
}

CObject* CArchive::ReadNewObject(const CRuntimeClass& runtimeClass, const CRuntimeClass& expected) {
    if (!runtimeClass.create || !runtimeClass.IsDerivedFrom(expected)) Fail(CArchiveException::badClass);
    if (m_depth == kMaximumDepth) Fail(CArchiveException::generic);
    const SDepthGuard guard(m_depth);

    std::unique_ptr<CObject> made = runtimeClass.create();
    CObject* object = made.get();
    // In the table before it is read: its members may refer back to it.
    const std::size_t index = m_loaded.size();
    m_loaded.push_back({nullptr, object, std::move(made), true});
    m_indexOf.insert_or_assign(object, index);
    object->Serialize(*this);
    m_loaded[index].reading = false;
    return object;
}

std::unique_ptr<CObject> CArchive::Claim(CObject* object) {
    const auto found = m_indexOf.find(object);
    if (found == m_indexOf.end()) Fail(CArchiveException::badIndex);
    SEntry& entry = m_loaded[found->second];
    // An object still being read would become the property of one of its own members, and the ring never be
    // freed.
    if (!entry.owned || entry.reading) Fail(CArchiveException::badIndex);
    return std::move(entry.owned);
}

std::vector<std::unique_ptr<CObject>> CArchive::TakeUnclaimed() {
    std::vector<std::unique_ptr<CObject>> unclaimed;
    for (SEntry& entry : m_loaded)
        if (entry.owned) unclaimed.push_back(std::move(entry.owned));
    return unclaimed;
}

} // namespace Outils_Objets
