// FileUpdater.exe: brings packet files of former layouts up to date.
#pragma once

#include "common/child_program.h"

namespace MiseANiveau {

extern const Compagnon::SProgram kFileUpdater;

} // namespace MiseANiveau
