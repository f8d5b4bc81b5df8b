// The inertial samples and the fixes of a run, read side by side.
#pragma once

#include "morvex/fix_reader.h"
#include "morvex/imu_reader.h"
#include "morvex/run_plan.h"
#include "morvex/timeline.h"

#include <vector>

namespace Morvex {

class CRunInputs {
  public:
    // `plan` must outlive the inputs. False without inertial data.
    bool OpenImu(const SRunPlan& plan);
    // The numbers, from 0, of the GPS that could not be opened.
    std::vector<int> OpenFixes() { return m_fixes.Open(*m_plan); }

    // The next sample of the plan's period; false at its end.
    bool NextSample(SImuSample& sample);
    // Gives a sample back, to be the next one again.
    void PutBack(const SImuSample& sample);
    bool HasPutBack() const { return m_hasCarry; }
    // Adds up to so many seconds of samples and fixes to the stretch. False when the data end, or a hole
    // follows that cannot be bridged.
    bool ReadAhead(SStretch& stretch, double seconds);

    CImuReader& GetImu() { return m_imu; }
    CFixReader& GetFixes() { return m_fixes; }

    static constexpr double kLongestGap = 60.0; // s of missing inertial data that are bridged

  private:
    const SRunPlan* m_plan = nullptr;
    CImuReader m_imu;
    CFixReader m_fixes;
    SImuSample m_carry;
    bool m_hasCarry = false;
};

// First what was read ahead, then the files: one order of fixes.
class CFixSource {
  public:
    // Both must outlive the source.
    CFixSource(const SStretch& stretch, CFixReader& reader) : m_cursor(stretch.fixes), m_reader(reader) {}
    const SPositionFix* Peek() const {
        const SPositionFix* fix = m_cursor.Peek();
        return fix ? fix : m_reader.Peek();
    }
    void Pop() {
        if (m_cursor.Peek())
            m_cursor.Pop();
        else
            m_reader.Pop();
    }

  private:
    CFixCursor m_cursor;
    CFixReader& m_reader;
};

} // namespace Morvex
