// A file that an exporter writes, in blocks; it appears under its name whole, or not at all.
#pragma once

#include "common/target_file.h"

#include <cstring>
#include <filesystem>
#include <span>
#include <string_view>
#include <vector>

namespace Exportation {

// The most characters that one number or date takes.
inline constexpr std::size_t kWidestValue = 400;

// One thread. After a failed write nothing more is written, and Commit returns false.
class CExportFile {
  public:
    // Prepares the file. EText::none, or what is wrong as CTargetFile::Open says it.
    Outils_Texte::EText Open(const std::filesystem::path& target,
                             std::span<const std::filesystem::path> sources);
    const std::filesystem::path& GetTarget() const { return m_target; }
    bool IsOpen() const { return m_file.IsOpen(); }

    // Room for at least `size` bytes; End takes the place after the last byte used.
    char* Begin(std::size_t size) {
        if (m_bytes.size() - m_used < size) Flush(size);
        return m_bytes.data() + m_used;
    }
    void End(const char* end) { m_used = static_cast<std::size_t>(end - m_bytes.data()); }

    void Write(std::string_view text) {
        std::memcpy(Begin(text.size()), text.data(), text.size());
        m_used += text.size();
    }

    // False once a write has failed.
    bool IsGood() const { return m_good; }
    // Bytes taken so far.
    std::uint64_t GetSize() const { return m_written + m_used; }

    // Hands all bytes to the system; false once a write has failed. Before the first of several files is
    // committed.
    bool Complete() {
        Flush(0);
        return m_good;
    }
    // Brings the bytes to the disk and gives the file its name; on false nothing is left of it.
    bool Commit();

  private:
    void Flush(std::size_t needed);

    std::filesystem::path m_target;
    Compagnon::CTargetFile m_place;
    Outils_Fichiers::CDescriptor m_file;
    std::vector<char> m_bytes; // the first m_used are not written yet
    std::size_t m_used = 0;
    std::uint64_t m_written = 0;
    bool m_good = false;
};

} // namespace Exportation
