#include "document/file_analyses.h"

#include "model/data_file.h"

#include <algorithm>
#include <utility>

namespace Application_Tarvel {

CFileAnalyses::~CFileAnalyses() {
    for (auto& [file, analysis] : m_analyses) Retire(analysis);
}

void CFileAnalyses::Start(const CTrvDataFile& file, bool isResult) {
    auto& [port, thread] = m_analyses[&file];
    if (!thread) {
        port = std::make_shared<Outils::CMessagePort>(m_target);
        const auto channel = [this, &file](std::uint16_t number) { m_channelFound(file, number); };
        const auto damage = [this, &file](std::int64_t position) { m_damageFound(file, position); };
        if (isResult)
            thread =
                std::make_unique<CTrvDataFileAnalyzerThread>(file.path, *port, channel, damage, m_indexes);
        else
            thread = std::make_unique<CTrvTarinDataFileAnalyzerThread>(file.path, *port, channel, damage,
                                                                       m_indexes);
    }
    thread->Start();
}

void CFileAnalyses::Pause(const CTrvDataFile& file) {
    if (const auto place = m_analyses.find(&file); place != m_analyses.end()) place->second.thread->Stop();
}

bool CFileAnalyses::Stop(const CTrvDataFile& file) {
    const auto place = m_analyses.find(&file);
    if (place == m_analyses.end()) return false;
    Retire(place->second);
    m_analyses.erase(place);
    return true;
}

void CFileAnalyses::Retire(SAnalysis& analysis) {
    analysis.port->Close();
    m_ending.Take(std::move(analysis.thread), std::move(analysis.port));
}

bool CFileAnalyses::IsBusy() const {
    return std::any_of(m_analyses.begin(), m_analyses.end(),
                       [](const auto& entry) { return entry.second.thread->IsAlive(); });
}

SFirstData CFileAnalyses::WaitForFirstData(const CTrvDataFile& file, std::chrono::milliseconds time) {
    const auto place = m_analyses.find(&file);
    if (place == m_analyses.end()) return {};
    auto* thread = dynamic_cast<CTrvTarinDataFileAnalyzerThread*>(place->second.thread.get());
    return thread ? thread->WaitForFirstData(time) : SFirstData();
}

} // namespace Application_Tarvel
