// A folder for the files of one test, removed with it.
#pragma once

#include <filesystem>
#include <stdlib.h>
#include <string>
#include <string_view>

namespace test {

class CTemporaryFolder {
  public:
    CTemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "varne-test-XXXXXX").string();
        m_path = ::mkdtemp(name.data());
    }
    ~CTemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }
    CTemporaryFolder(const CTemporaryFolder&) = delete;
    CTemporaryFolder& operator=(const CTemporaryFolder&) = delete;

    const std::filesystem::path& GetPath() const { return m_path; }
    std::filesystem::path operator/(std::string_view name) const { return m_path / name; }

  private:
    std::filesystem::path m_path;
};

} // namespace test
