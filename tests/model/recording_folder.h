// A folder for the files of one test, removed with it.
#pragma once

#include <filesystem>
#include <stdlib.h>
#include <string>

class CRecordingFolder {
  public:
    CRecordingFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "varne-model-XXXXXX").string();
        m_path = mkdtemp(pattern.data());
    }
    ~CRecordingFolder() {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }
    CRecordingFolder(const CRecordingFolder&) = delete;
    CRecordingFolder& operator=(const CRecordingFolder&) = delete;

    std::filesystem::path operator/(const char* name) const { return m_path / name; }

  private:
    std::filesystem::path m_path;
};
