// The whole program, from its command line to its exit code.
#pragma once

namespace Application_Tarvel {

// 0 after a normal end, 1 when a snapshot failed, 2 after wrong usage and without a display.
int RunProgram(int argc, char* argv[]);

} // namespace Application_Tarvel
