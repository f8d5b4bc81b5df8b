// What the application says while a command works, in lines of text or as the table of a run.
#pragma once

#include "batch/table.h"
#include "foundation/date_time.h"

#include <chrono>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string_view>

namespace Batch {

// UI thread only.
class IReport {
  public:
    virtual ~IReport() = default;
    // A line of the output panel; `level` is an EMessageLevel.
    virtual void ReportLine(int level, std::string_view text) = 0;
    // Percent of the work that is done.
    virtual void ReportProgress(int percent) = 0;
};

// Lines on a stream: for commands whose table is something else.
class CLineReport final : public IReport {
  public:
    // `out` must outlive the report.
    explicit CLineReport(std::ostream& out) : m_out(out) {}
    void ReportLine(int level, std::string_view text) override;
    void ReportProgress(int percent) override;

  private:
    std::ostream& m_out;
};

// A run as a table: a row for each message and for each percent, with the date that the result has reached
// and the time that is left.
class CRunReport final : public IReport {
  public:
    // `out` must outlive the report.
    CRunReport(std::ostream& out, EForm form) : m_out(out), m_form(form) {}
    // Where the result grows, and the UTC of its date zero, invalid when not known.
    void SetResult(std::filesystem::path result, const Outils_Temps::CDateTime& utcOrigin);

    void ReportLine(int level, std::string_view text) override;
    void ReportProgress(int percent) override;

  private:
    CTable& GetTable();

    std::ostream& m_out;
    EForm m_form;
    std::optional<CTable> m_table; // from the first row on: what fails before a run begins writes no table
    std::filesystem::path m_result;
    Outils_Temps::CDateTime m_utcOrigin = Outils_Temps::CDateTime::Invalid();
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

} // namespace Batch
