// The command that compares a result with the truth, or with another result.
#include "batch/commands.h"
#include "batch/comparison.h"
#include "batch/file_access.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

#include <cmath>
#include <limits>
#include <ostream>

namespace Batch {

namespace {

constexpr const char* kChannel = "MORVEX_STD";
constexpr double kLongestGap = 10.0; // s: over a longer one nothing is interpolated
constexpr double kSameClock = 1.0;   // s by which the UTC of date zero of one clock may differ

// Seconds from the dates of one file to those of the other: the clocks are taken for one, unless UTC says
// that they are not.
double FindShift(const SOpenChannel& result, const SOpenChannel& truth) {
    if (!result.utcOrigin.IsValid() || !truth.utcOrigin.IsValid()) return 0.0;
    const double shift = (truth.utcOrigin - result.utcOrigin).GetTotalSeconds();
    return std::abs(shift) > kSameClock ? shift : 0.0;
}

// The differences that the option names; all without it.
std::vector<const SDifference*> ChooseDifferences(const COptions& options) {
    std::vector<const SDifference*> chosen;
    const auto text = options.Get("--fields");
    if (!text) {
        for (const SDifference& row : GetDifferences()) chosen.push_back(&row);
        return chosen;
    }
    for (std::size_t start = 0; start <= text->size();) {
        const std::size_t end = std::min(text->find(',', start), text->size());
        const std::string name = text->substr(start, end - start);
        const auto index = FindNoCase(GetDifferences(), &SDifference::name, name);
        if (!index)
            throw CUsageError(EText::compareNoField, {name, ListWords(GetDifferences(), &SDifference::name)});
        chosen.push_back(&GetDifferences()[*index]);
        start = end + 1;
    }
    return chosen;
}

// Two neighbours of the truth, moved on with the result.
class CTruth {
  public:
    explicit CTruth(CSolutionReader reader) : m_reader(std::move(reader)), m_next(m_reader.Next()) {}
    // The truth at a time; times ascend. Empty outside of its data and in its gaps.
    std::optional<SSolution> At(double time) {
        while (m_next && m_next->time < time) {
            m_last = m_next;
            m_next = m_reader.Next();
        }
        if (!m_next) return std::nullopt;
        if (m_next->time == time) return m_next;
        if (!m_last || m_next->time - m_last->time > kLongestGap) return std::nullopt;
        return InterpolateSolution(*m_last, *m_next, time);
    }

  private:
    CSolutionReader m_reader;
    std::optional<SSolution> m_last, m_next;
};

} // namespace

int CompareCommand(const COptions& options, SStreams streams) {
    const auto chosen = ChooseDifferences(options);
    const auto seconds = [&](std::string_view option, double otherwise) {
        const auto span = options.GetSeconds(option);
        return span ? span->GetTotalSeconds() : otherwise;
    };
    constexpr double kForever = std::numeric_limits<double>::infinity();
    const double from = seconds("--from", -kForever), to = seconds("--to", kForever);
    const auto& paths = options.GetArguments();
    const SOpenChannel result = OpenChannel(paths[0], kChannel, streams);
    if (!result.packet) return exitFailure;
    const SOpenChannel truth = OpenChannel(paths[1], kChannel, streams);
    if (!truth.packet) return exitFailure;

    std::vector<CDifferenceStatistics> statistics(chosen.size());
    CSolutionReader reader(*result.channel, 0.0);
    CTruth other(CSolutionReader(*truth.channel, FindShift(result, truth)));
    bool any = false;
    while (const auto solution = reader.Next()) {
        if (solution->time < from) continue;
        if (solution->time > to) break;
        const auto reference = other.At(solution->time);
        if (!reference) continue;
        any = true;
        for (std::size_t i = 0; i < chosen.size(); ++i)
            statistics[i].Add(solution->time, chosen[i]->compute(*solution, *reference),
                              chosen[i]->deviation ? chosen[i]->deviation(*solution, *reference) : 0.0);
    }
    if (!any) return Fail(paths[0], EText::compareNothing, streams, {paths[1]});
    CTable table(streams.out, options.GetForm(), EText::compareColumns);
    for (std::size_t i = 0; i < chosen.size(); ++i) statistics[i].Write(table, *chosen[i]);
    return exitSuccess;
}

} // namespace Batch
