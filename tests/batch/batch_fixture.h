// Runs the batch program's commands in the test's own process and keeps what they write.
#pragma once

#include "batch/commands.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace test {

class Batch : public testing::Test {
  protected:
    Batch() {
        std::string name = (std::filesystem::temp_directory_path() / "varne-batch-XXXXXX").string();
        m_folder = ::mkdtemp(name.data());
    }
    ~Batch() override { std::filesystem::remove_all(m_folder); }

    // The exit status; the streams' texts are in m_out and m_error.
    int Run(std::vector<std::string> words) {
        std::ostringstream out, error;
        const int status = ::Batch::Run(words, {out, error});
        m_out = out.str();
        m_error = error.str();
        return status;
    }
    std::string Path(std::string_view name) const { return (m_folder / name).string(); }
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        std::istringstream text(m_out);
        for (std::string line; std::getline(text, line);) lines.push_back(line);
        return lines;
    }
    static std::vector<std::string> Cells(const std::string& line) {
        std::vector<std::string> cells;
        std::istringstream text(line);
        for (std::string cell; std::getline(text, cell, ';');) cells.push_back(cell);
        return cells;
    }

    std::filesystem::path m_folder;
    std::string m_out;
    std::string m_error;
};

} // namespace test
