// The engine as a program: its command line, and the run of a parameter file.
#pragma once

#include "common/child_program.h"

namespace Morvex {

// One file: the parameter file. Exit codes: 0 finished, 1 failed, 2 stopped.
extern const Compagnon::SProgram kEngineProgram;

} // namespace Morvex
