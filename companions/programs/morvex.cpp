// The processing engine as a program.
#include "morvex/engine_program.h"

#include <csignal>
#include <string>
#include <vector>

#include <unistd.h>

int main(int count, char** arguments) {
    // An application that has gone is noticed by the failed write, and the run then ends in order.
    std::signal(SIGPIPE, SIG_IGN);
    return Morvex::RunEngine(std::vector<std::string>(arguments + 1, arguments + count), STDIN_FILENO,
                             STDOUT_FILENO);
}
