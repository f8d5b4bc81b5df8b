// The files of a run beside its result: the former result, and the mark of a run that is under way or did not
// come to its end.
#pragma once

#include "foundation/descriptor.h"

#include <filesystem>

namespace Application_Tarvel {

// The mark is locked while its run is under way, by the system, which frees it however the program ends. A
// mark that nobody has locked says that the result is partial. One thread at a time.
class CResultGuard {
  public:
    enum class ETake { taken, busy, failed };
    // What a run leaves under the result's name. `former` is the result of an earlier run, `none` also a file
    // without navigation.
    enum class ELeft { whole, partial, former, none };

    // Marks the result as of a run under way. `busy` when another run has it, in this program or another;
    // `failed` when its folder cannot be written.
    ETake Take(const std::filesystem::path& result);
    // Moves the old result aside. A partial one goes instead while a whole one is aside. True when there is
    // nothing under the result's name after it. REQUIRES: Take gave `taken`.
    bool SetAside();
    bool HasSetAside() const { return m_setAside; }
    // Undoes Take and SetAside for a run that did not start.
    void Cancel();
    // Ends the run: removes the former result when the run has `finished`, brings it back when the run made
    // none.
    ELeft Release(bool finished, bool hasResult);

    // Where a former result waits.
    static std::filesystem::path GetFormerPath(const std::filesystem::path& result);
    // The result's state while no run of this program has it: `partial`, `former` when this call brought back
    // what a killed program had set aside, else `whole`, also for a missing file.
    static ELeft Examine(const std::filesystem::path& result);

  private:
    ELeft RestoreFormer();
    void NoteFormer() const;
    void Unlock(bool keepsMark);

    std::filesystem::path m_result;
    Outils_Fichiers::CDescriptor m_mark;
    bool m_wasPartial = false;
    bool m_setAside = false;        // there was a result under the name
    bool m_formerIsPartial = false; // the one that is aside
};

} // namespace Application_Tarvel
