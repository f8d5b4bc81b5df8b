#include "simulator/command_line.h"
#include "simulator/mission_writer.h"

#include <cstdio>

int main(int count, char** arguments) {
    Simulation::SCommandLine commandLine;
    std::string error;
    const std::vector<std::string> words(arguments + (count > 0 ? 1 : 0), arguments + count);
    if (!Simulation::ParseCommandLine(words, commandLine, error)) {
        std::fprintf(stderr, "%s\n\n%s", error.c_str(), Simulation::GetUsage().c_str());
        return 2;
    }
    if (commandLine.help) {
        std::fputs(Simulation::GetUsage().c_str(), stdout);
        return 0;
    }
    if (!Simulation::WriteMission(commandLine.options, commandLine.output, commandLine.truth, error)) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 1;
    }
    return 0;
}
