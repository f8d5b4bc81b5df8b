#include "document/file_looks.h"

#include "config/config_file.h"

#include <algorithm>
#include <new>

namespace Application_Tarvel {

std::chrono::milliseconds GetTimeForChosenFile(const Outils_Configuration::CTrvCnfConfigFile& configuration) {
    using Outils_Configuration::Cnf;
    return std::chrono::milliseconds(std::max(1000, configuration.Get(Cnf<"general/utcSearch/timeout">)));
}

void CFileLooks::Start(const std::shared_ptr<SQuestion>& question, CWork work) {
    SQuestion& asked = *question; // outlives its task
    question->task =
        std::make_unique<Outils::CTask>([this, &asked, work = std::move(work)](const Outils::CEvent& cancel) {
            try {
                work(asked, cancel);
            } catch (const std::bad_alloc&) { // of a file that states more than the memory holds: no answer
            }
            asked.answered.Set();
            asked.port.Post([this, &asked] { TakeAnswer(asked); });
        });
    // Should the system have no thread left to give, there is no answer.
    if (question->task->Start()) m_questions.push_back(question);
}

void CFileLooks::TakeAnswer(SQuestion& question) {
    const auto place = std::find_if(m_questions.begin(), m_questions.end(),
                                    [&question](const auto& asked) { return asked.get() == &question; });
    const auto take = std::exchange(question.take, nullptr);
    Retire(std::move(*place));
    m_questions.erase(place);
    if (take) take(); // may ask again
}

void CFileLooks::Wait(std::chrono::milliseconds patience, Key only) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + patience;
    auto asked = m_questions;
    asked.remove_if([only](const auto& question) { return only && question->key != only; });
    for (const auto& question : asked)
        question->answered.Wait(std::max(std::chrono::milliseconds(0),
                                         std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now())));
    for (const auto& question : asked)
        if (question->answered.IsSet() && question->task) TakeAnswer(*question);
}

void CFileLooks::EndEarly(Key key) {
    for (const auto& question : m_questions)
        if (question->key == key) question->task->Stop();
    Wait(std::chrono::milliseconds(100), key); // ample for a walk, which ends at its next read
}

void CFileLooks::Forget(Key key) {
    m_questions.remove_if([this, key](auto& question) {
        if (question->key != key) return false;
        Retire(std::move(question));
        return true;
    });
}

void CFileLooks::ForgetAll() {
    for (auto& question : std::exchange(m_questions, {})) Retire(std::move(question));
}

bool CFileLooks::IsAsked(Key key) const {
    return std::any_of(m_questions.begin(), m_questions.end(),
                       [key](const auto& question) { return question->key == key; });
}

// What its thread still posts is not heard.
void CFileLooks::Retire(std::shared_ptr<SQuestion> question) {
    question->port.Close();
    auto task = std::move(question->task);
    m_ending.Take(std::move(task), std::move(question));
}

} // namespace Application_Tarvel
