// Runs the batch program's commands in the test's own process and keeps what they write.
#pragma once

#include "batch/commands.h"

#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace test {

// A text that calls back at the end of each line, so that a test can act in the middle of a command.
class CWatchedText : public std::stringbuf {
  public:
    explicit CWatchedText(std::function<void()> onLine) : m_onLine(std::move(onLine)) {}

  protected:
    int sync() override {
        if (m_onLine) m_onLine();
        return 0;
    }

  private:
    std::function<void()> m_onLine;
};

class Batch : public testing::Test {
  protected:
    // The settings and the cache of whoever runs the test are left alone.
    Batch() {
        ::setenv("XDG_CONFIG_HOME", Path("").c_str(), 1);
        ::setenv("XDG_CACHE_HOME", Path("cache").c_str(), 1);
    }
    ~Batch() override {
        ::unsetenv("XDG_CONFIG_HOME");
        ::unsetenv("XDG_CACHE_HOME");
    }

    // Runs a command line of words without blanks; '/' begins the name of a file in the test's folder, and ''
    // is a word of no letters. Returns the exit status; the streams' texts are in m_out and m_error. `onLine`
    // runs after every line that the command writes while it works, such as a progress line.
    int Run(const std::string& line, std::function<void()> onLine = {}) {
        std::vector<std::string> words;
        std::istringstream text(line);
        for (std::string word; text >> word;) {
            if (const auto slash = word.find('/'); slash != word.npos) word.replace(slash, 1, Path(""));
            words.push_back(word == "''" ? std::string() : word);
        }
        CWatchedText outText(std::move(onLine));
        std::ostream out(&outText);
        std::ostringstream error;
        const int status = ::Batch::Run(words, {out, error});
        m_out = outText.str();
        m_error = error.str();
        return status;
    }
    void Succeed(const std::string& line) { ASSERT_EQ(Run(line), 0) << line << '\n' << m_out << m_error; }
    std::string Path(std::string_view name) const { return (m_folder / name).string(); }
    std::string TextOf(std::string_view name) const {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
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

    CTemporaryFolder m_folder;
    std::string m_out;
    std::string m_error;
};

} // namespace test
