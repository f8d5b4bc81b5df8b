// The processing engine as a program.
#include "morvex/engine_program.h"

int main(int count, char** arguments) { return Compagnon::RunMain(Morvex::kEngineProgram, count, arguments); }
