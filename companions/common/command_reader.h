// The application's words on standard input.
#pragma once

#include "foundation/thread.h"
#include "morvex/run_control.h"

#include <atomic>
#include <string>
#include <string_view>

namespace Morvex {

// Collects bytes into lines, each a command word; blanks around it and a carriage return do not count, and a
// word in double quotes is taken without them. Lines beyond any word's length are dropped.
class CCommandLines {
  public:
    // `take(word)` for every line that these bytes complete.
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

// Hands the words of a descriptor to a control. When the other end closes, the application is gone: that is a
// stop.
class CCommandReader : public Outils::CThread {
  public:
    // `control` must outlive the reader; the descriptor stays open and the caller's.
    CCommandReader(int descriptor, CRunControl& control) : m_descriptor(descriptor), m_control(control) {}
    ~CCommandReader() override { Kill(); }

  protected:
    void Run() override;
    void RequestStop() override { m_ending = true; }

  private:
    int m_descriptor;
    CRunControl& m_control;
    std::atomic<bool> m_ending{false};
};

} // namespace Morvex
