// Reads the application's commands from standard input.
#pragma once

#include "common/run_control.h"
#include "foundation/thread.h"

#include <atomic>
#include <string>
#include <string_view>

namespace Compagnon {

// Collects bytes into lines of one command word each. Removes blanks around a word, a carriage return, and
// double quotes around the whole word. Drops lines longer than any word.
class CCommandLines {
  public:
    // Calls `take(word)` for every line that these bytes complete.
    template <class Take>
    void Add(std::string_view bytes, Take&& take) {
        for (const char c : bytes) {
            if (c == '\n') {
                if (!m_tooLong) take(std::string_view(Trim()));
                m_line.clear();
                m_tooLong = false;
            } else if (m_line.size() < kLongestLine) {
                m_line += c;
            } else {
                m_tooLong = true;
            }
        }
    }

  private:
    static constexpr std::size_t kLongestLine = 256;
    std::string_view Trim() const;

    std::string m_line;
    bool m_tooLong = false;
};

// Passes the words of a descriptor to a control. Commands "stop" when the other end closes, since the
// application has ended, and when a signal arrives.
class CCommandReader : public Outils::CThread {
  public:
    // `input`: the words; -1 reads none. `signals`: a signal descriptor; -1 watches none. Both stay open and
    // belong to the caller. `control` must outlive the reader.
    CCommandReader(int input, CRunControl& control, int signals = -1)
        : m_input(input), m_signals(signals), m_control(control) {}
    ~CCommandReader() override { Kill(); }

  protected:
    void Run() override;
    void RequestStop() override { m_ending = true; }

  private:
    int m_input;
    int m_signals;
    CRunControl& m_control;
    std::atomic<bool> m_ending{false};
};

} // namespace Compagnon
