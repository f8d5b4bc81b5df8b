#include "foundation/serialize.h"

#include <limits>

namespace Outils_Objets {

CSchema::CSchema(CArchive& archive, std::int32_t current, std::int32_t oldest)
    : m_archive(archive), m_version(current) {
    if (archive.IsStoring()) {
        archive << current;
        return;
    }
    archive >> m_version;
    if (m_version < oldest || m_version > current) AfxThrowArchiveException(CArchiveException::badSchema);
}

void CSchema::Value(std::string& text) {
    if (m_archive.IsStoring())
        m_archive.WriteString(text);
    else
        text = m_archive.ReadString();
}

void CSchema::Value(Outils_Temps::CDateTime& date) {
    std::uint64_t ticks = date.GetTicks();
    Scalar(ticks);
    if (m_archive.IsLoading()) date = Outils_Temps::CDateTime(ticks);
}

void CSchema::Value(Outils_Temps::CDateTimeSpan& span) {
    std::int64_t ticks = span.GetTicks();
    Scalar(ticks);
    if (m_archive.IsLoading()) span = Outils_Temps::CDateTimeSpan(ticks);
}

std::uint32_t CSchema::Count(std::size_t count) {
    if (count > std::numeric_limits<std::uint32_t>::max())
        AfxThrowArchiveException(CArchiveException::generic);
    auto stored = static_cast<std::uint32_t>(count);
    Scalar(stored);
    return stored;
}

} // namespace Outils_Objets
