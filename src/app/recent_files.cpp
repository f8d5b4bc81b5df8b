#include "app/recent_files.h"

#include "plot/text.h"

#include <QSettings>
#include <QStringList>

namespace Application_Tarvel {

using Outils_Plot2D::ToPath;
using Outils_Plot2D::ToQString;

namespace {

constexpr const char* kKey = "recentFiles";

} // namespace

CRecentFiles::CRecentFiles(QSettings& settings) : m_settings(settings) {
    for (const QString& file : settings.value(kKey).toStringList())
        if (!file.isEmpty() && m_files.size() < mostFiles) m_files.push_back(ToPath(file));
}

void CRecentFiles::Add(const std::filesystem::path& file) {
    std::erase_if(m_files, [&](const auto& other) { return Outils_Fichiers::SamePath(other, file); });
    m_files.insert(m_files.begin(), file);
    if (m_files.size() > mostFiles) m_files.resize(mostFiles);
    Store();
}

void CRecentFiles::Remove(const std::filesystem::path& file) {
    std::erase_if(m_files, [&](const auto& other) { return Outils_Fichiers::SamePath(other, file); });
    Store();
}

void CRecentFiles::Store() {
    QStringList list;
    for (const auto& file : m_files) list << ToQString(file);
    m_settings.setValue(kKey, list);
}

} // namespace Application_Tarvel
