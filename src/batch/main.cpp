#include "batch/commands.h"

#include <iostream>
#include <string>
#include <vector>

int main(int argc, char* argv[]) {
    std::ios::sync_with_stdio(false);
    const std::vector<std::string> words(argv + 1, argv + argc);
    return Batch::Run(words, {std::cout, std::cerr});
}
