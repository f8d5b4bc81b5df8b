// The document's surroundings in a test: questions are answered from a script, everything is written down.
#pragma once

#include "document/document_host.h"
#include "foundation/message_target.h"
#include "foundation/text_id.h"
#include "processing/message_line.h"
#include "processing/receivers.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace test {

using namespace Application_Tarvel;

inline std::string Text(Outils_Texte::EText id) { return std::string(Outils_Texte::GetText(id)); }

class CScriptedHost : public IDocumentHost, private Communication_Processus::INotificationWindow {
  public:
    CScriptedHost() : m_receiver(m_queue, this) {}

    Outils::CMessageQueue m_queue;
    std::deque<EAnswer> m_answers;                            // to the next questions; ok when there is none
    std::deque<std::optional<std::filesystem::path>> m_paths; // for the next save dialogs
    std::vector<std::string> m_messages;                      // of the message boxes
    std::vector<std::string> m_output;                        // lines of the output panel
    std::vector<int> m_progress, m_shownProgress;             // all, and while the bar shows
    bool m_progressShows = false;
    int m_waitCursors = 0;
    std::filesystem::path m_programFolder, m_userFolder;
    Outils_Temps::CDateTime m_time{1'000'000'000}; // moves with Sleep alone

    // The texts of the message boxes since the last call.
    std::vector<std::string> TakeMessages() { return std::exchange(m_messages, {}); }

    EAnswer ShowMessage(const std::string& text, EButtons, EIcon) override {
        m_messages.push_back(text);
        if (m_answers.empty()) return EAnswer::ok;
        const EAnswer answer = m_answers.front();
        m_answers.pop_front();
        return answer;
    }
    std::optional<std::filesystem::path> m_commandFile, m_dataFile; // chosen in the next dialogs
    std::filesystem::path m_proposed;                               // to the last dialog
    std::vector<std::filesystem::path> AskPath(const SPathQuestion& question) override {
        using enum Outils_Texte::EText;
        m_proposed = question.proposed;
        auto answer = question.filter == xmlFilter ? m_commandFile : m_dataFile;
        if (question.filter == projectFilter) {
            answer = m_paths.empty() ? std::nullopt : m_paths.front();
            if (!m_paths.empty()) m_paths.pop_front();
        }
        return answer ? std::vector{*answer} : std::vector<std::filesystem::path>();
    }

    // Makes a project, from the command file if the path is not empty; cancelled when not set.
    std::function<EOutcome(const std::filesystem::path&, SMadeProject&)> m_makeProject;
    EOutcome MakeProject(SMadeProject& made) override { return MakeProjectFrom({}, made); }
    EOutcome MakeProjectFrom(const std::filesystem::path& commandFile, SMadeProject& made) override {
        return m_makeProject ? m_makeProject(commandFile, made) : EOutcome::cancelled;
    }
    std::filesystem::path m_repaired; // what the updater makes of any file; empty when it fails
    EOutcome UpdateDataFile(const std::filesystem::path& path) override {
        if (m_repaired.empty()) return EOutcome::failed;
        std::filesystem::copy_file(m_repaired, path, std::filesystem::copy_options::overwrite_existing);
        return EOutcome::done;
    }
    using CConversion = std::pair<std::vector<std::filesystem::path>, ERawFormat>;
    std::vector<CConversion> m_conversions;
    std::optional<std::filesystem::path> m_converted; // what the converters make of any file
    EOutcome ConvertRawFiles(const std::vector<std::filesystem::path>& files, ERawFormat format,
                             std::filesystem::path& converted) override {
        m_conversions.emplace_back(files, format);
        if (m_converted) converted = *m_converted;
        return m_converted ? EOutcome::done : EOutcome::cancelled;
    }

    void AppendOutputText(const SOutputLine& line) override { m_output.push_back(line.text); }
    void SetProgress(int percent) override {
        m_progress.push_back(percent);
        if (m_progressShows) m_shownProgress.push_back(percent);
    }
    void ShowProgress(bool visible) override { m_progressShows = visible; }
    void ShowWaitCursor(bool on) override { m_waitCursors += on ? 1 : -1; }
    void UpdateMenuForEquipment(std::int32_t equipment) override { m_equipment = equipment; }
    Communication_Interfaces::IMorvexNotification* GetReceiver() override { return &m_receiver; }
    std::filesystem::path GetProgramFolder() override { return m_programFolder; }
    std::filesystem::path GetUserFolder() override { return m_userFolder; }
    Outils_Temps::CDateTime GetTime() override { return m_time; }
    void Sleep(std::chrono::milliseconds time) override {
        m_time += Outils_Temps::CDateTimeSpan(time.count() * Outils_Temps::kTicksPerSecond / 1000);
    }
    std::chrono::milliseconds GetPatience() override { return m_patience; }
    std::int32_t m_equipment = 0;
    std::chrono::milliseconds m_patience = std::chrono::seconds(30);

  private:
    void OnProgressChanged() override { SetProgress(static_cast<int>(m_receiver.LastProgress())); }
    void OnMessageQueued() override {
        int level = 0, code = 0;
        std::string text;
        if (m_receiver.TakeMessage(level, code, text))
            AppendOutputText(Communication_Processus::FormatMessageLine(level, text));
    }

    Communication_Processus::CMorvexReceiver m_receiver;
};

} // namespace test
