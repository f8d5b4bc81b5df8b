// Texts and paths of the system in the form of the window system, and back. Any thread.
#pragma once

#include "foundation/paths.h"
#include "foundation/text_id.h"

#include <QString>

#include <string>
#include <string_view>

namespace Outils_Plot2D {

inline QString ToQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
inline QString ToQString(const std::string& text) { return ToQString(std::string_view(text)); }
inline QString ToQString(const std::filesystem::path& path) {
    return ToQString(Outils_Fichiers::ToText(path));
}
inline std::filesystem::path ToPath(const QString& text) {
    return Outils_Fichiers::FromText(text.toStdString());
}
// A numbered text.
inline QString Text(Outils_Texte::EText id) { return ToQString(Outils_Texte::GetText(id)); }

} // namespace Outils_Plot2D
