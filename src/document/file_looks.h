// Questions to files, each asked on a thread of its own: no disk can be trusted to answer, and none holds up
// the UI thread. That may give the answers a moment; those that are late come as messages.
#pragma once

#include "foundation/message_target.h"
#include "foundation/thread.h"

#include <chrono>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace Outils_Configuration {
class CTrvCnfConfigFile;
}

namespace Application_Tarvel {

// How long a user waits for the look at a file that was just chosen: as long as the settings allow
// for the search of its UTC date, but not so short that no file could be chosen.
std::chrono::milliseconds GetTimeForChosenFile(const Outils_Configuration::CTrvCnfConfigFile& configuration);

// All operations on the UI thread.
class CFileLooks {
  public:
    using Key = const void*; // identity of what a question is about; never followed

    // `target` must outlive the object. Destroying it waits for the threads.
    explicit CFileLooks(Outils::IMessageTarget& target) : m_target(target) {}
    ~CFileLooks() { ForgetAll(); }

    // Calls `look` on a thread, with the event that asks it to give up, and then `take` on the UI thread
    // with its answer: from within Wait, or by a message. A thread may outlive its question, so `look` holds
    // copies of all that it needs. Of exceptions only std::bad_alloc may leave it, and then the question ends
    // without an answer. One question for each key at a time.
    template <class Look, class Take>
    void Ask(Key key, Look look, Take take) {
        auto question = std::make_shared<SQuestion>(key, m_target);
        Start(question, [look = std::move(look), take = std::move(take)](SQuestion& asked,
                                                                         const Outils::CEvent& cancel) {
            auto answer = std::make_shared<std::invoke_result_t<Look, const Outils::CEvent&>>(look(cancel));
            asked.take = [answer = std::move(answer), take] { take(std::move(*answer)); };
        });
    }
    // The answer, if it comes within the time. A look that then gives up may still say what it has.
    template <class Look>
    auto Call(Look look, std::chrono::milliseconds patience) {
        std::optional<std::invoke_result_t<Look, const Outils::CEvent&>> result;
        Ask(&result, std::move(look), [&result](auto&& answer) { result = std::move(answer); });
        Wait(patience, &result);
        if (!result) EndEarly(&result);
        Forget(&result);
        return result;
    }
    // Waits at most this long for all answers together, or for that to the question of the key, and has those
    // that are there taken, in the order of the questions.
    void Wait(std::chrono::milliseconds patience, Key only = nullptr);
    // The question's answer will not be taken.
    void Forget(Key key);
    void ForgetAll();
    bool IsAsked(Key key) const;
    bool IsBusy() const { return !m_questions.empty(); }

  private:
    struct SQuestion {
        SQuestion(Key about, Outils::IMessageTarget& target) : key(about), port(target) {}
        Key key;
        Outils::CMessagePort port;
        std::function<void()> take; // set by the thread before the event
        Outils::CEvent answered;
        std::unique_ptr<Outils::CTask> task;
    };
    using CWork = std::function<void(SQuestion&, const Outils::CEvent&)>;

    void Start(const std::shared_ptr<SQuestion>& question, CWork work);
    void TakeAnswer(SQuestion& question);
    void EndEarly(Key key);
    void Retire(std::shared_ptr<SQuestion> question);

    Outils::IMessageTarget& m_target;
    Outils::CEndingThreads m_ending;
    std::list<std::shared_ptr<SQuestion>> m_questions; // in the order in which they were asked
};

} // namespace Application_Tarvel
