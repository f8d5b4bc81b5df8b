#include "processing/child_run.h"

#include "processing/command_line.h"

#include <gmock/gmock.h>

#include <csignal>
#include <mutex>
#include <thread>

using namespace Communication_Processus;
using namespace std::chrono_literals;
using enum CChildRun::ERunState;

namespace {

class CListener : public CRemoteProcess {
  public:
    ~CListener() override { Close(); }
    std::vector<std::string> TakeLines() {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_lines, {});
    }

  protected:
    void OnCommand(const std::vector<std::string>& tokens) override {
        const std::lock_guard lock(m_mutex);
        m_lines.push_back(tokens.back());
    }

  private:
    std::mutex m_mutex;
    std::vector<std::string> m_lines;
};

class ChildRun : public testing::Test, private IChildRunOwner {
  protected:
    bool Start(const char* script) {
        return m_run.Start("/bin/sh -c " + QuoteArgument("read word; echo $word; " + std::string(script)));
    }
    CChildRun::ERunState WaitForEnd() {
        for (;;) {
            if (const auto state = m_run.Poll(); state != running) return state;
            std::this_thread::yield();
        }
    }
    Outils_Temps::CDateTime GetTime() override { return m_time; }
    void Sleep(std::chrono::milliseconds time) override {
        m_time +=
            Outils_Temps::CDateTimeSpan((time + m_delay).count() * Outils_Temps::kTicksPerSecond / 1000);
        std::this_thread::yield();
    }
    bool AskToTerminate() override {
        ++m_questions;
        return m_terminates;
    }

    CListener m_child;
    Outils_Temps::CDateTime m_time{1'000'000'000};
    std::chrono::milliseconds m_delay{0}; // of a computer that was asleep
    int m_questions = 0;
    bool m_terminates = false;
    CChildRun m_run{m_child, *this};
};

constexpr const char* kStoppable = "while read word; do [ $word = stop ] && exit 7; done";
constexpr const char* kDeaf = "exec sleep 1000";

} // namespace

TEST_F(ChildRun, EndFollowsTheLastOutput) {
    EXPECT_EQ(m_run.Poll(), idle);
    EXPECT_FALSE(m_run.Start("/nowhere/tool"));
    EXPECT_EQ(m_run.Poll(), idle);
    // One child after the other; the second leaves its pipe full.
    for (const auto& [code, lines] : {std::pair{0, 1}, {3, 9000}}) {
        const std::string number = std::to_string(lines);
        ASSERT_TRUE(Start(("seq " + number + "; exit " + std::to_string(code)).c_str()));
        EXPECT_TRUE(m_run.IsActive());
        EXPECT_EQ(WaitForEnd(), ended);
        const std::vector<std::string> seen = m_child.TakeLines();
        EXPECT_EQ(seen.size(), 1u + static_cast<std::size_t>(lines));
        EXPECT_EQ(seen.back(), number);
        EXPECT_EQ(m_run.GetEnd(), (SProcessEnd{SProcessEnd::EKind::exited, code}));
        EXPECT_FALSE(m_run.IsActive() || m_run.IsStopRequested());
        EXPECT_EQ(m_run.Poll(), idle);
    }
}

TEST_F(ChildRun, StopsWithoutAQuestionUnlessFrozen) {
    ASSERT_TRUE(Start(kStoppable));
    auto state = m_run.Stop();
    if (state == running) state = WaitForEnd();
    EXPECT_EQ(state, ended);
    EXPECT_TRUE(m_run.IsStopRequested());
    EXPECT_EQ(m_run.GetEnd().number, 7);
    EXPECT_EQ(m_run.Stop(), idle);

    ASSERT_TRUE(Start(kDeaf));
    EXPECT_EQ(m_run.Stop(), running);
    EXPECT_EQ(m_run.Stop(), running);
    EXPECT_EQ(m_questions, 0) << "five seconds have not passed";
    Sleep(6s);
    EXPECT_EQ(m_run.Stop(), running);
    EXPECT_EQ(m_questions, 1);
    m_terminates = true;
    EXPECT_EQ(m_run.Stop(), ended);
    EXPECT_EQ(m_run.GetEnd(), (SProcessEnd{SProcessEnd::EKind::killed, SIGKILL}));
}

TEST_F(ChildRun, FirstStopAsksNothing) {
    ASSERT_TRUE(Start(kDeaf));
    m_delay = 10s;
    EXPECT_EQ(m_run.Stop(), running);
    EXPECT_EQ(m_questions, 0);
    m_run.StopNow(0s);
}

TEST_F(ChildRun, StopNowAsksNobody) {
    EXPECT_EQ(m_run.StopNow(1s), idle);
    ASSERT_TRUE(Start(kDeaf));
    EXPECT_EQ(m_run.StopNow(1s), ended);
    EXPECT_EQ(m_run.GetEnd().kind, SProcessEnd::EKind::killed);
    ASSERT_TRUE(Start(kStoppable));
    EXPECT_EQ(m_run.StopNow(std::chrono::hours(1000)), ended);
    EXPECT_EQ(m_run.GetEnd().number, 7);
    EXPECT_EQ(m_questions, 0);
}
