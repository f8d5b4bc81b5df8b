#include "app/program.h"

int main(int argc, char* argv[]) { return Application_Tarvel::RunProgram(argc, argv); }
