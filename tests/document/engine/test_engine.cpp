// Stands in for the processing engine in the tests of the document. TEST_ENGINE in the environment names a
// row of the table below. With a name in TEST_ENGINE_RESULT the engine gives a copy of that file as its
// result, under the name in TEST_ENGINE_TARGET.
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>

namespace {

enum EEnd { atOnce, onStop, never, killed };

struct SMode {
    std::string_view name;
    bool completes; // says 100 percent
    int messages;   // more than the usual ones
    EEnd end;
    int code;
};

constexpr SMode kModes[] = {
    {"work", true, 0, atOnce, 0},   {"wait", true, 0, onStop, 0},    {"deaf", true, 0, never, 0},
    {"fail", false, 0, atOnce, 1},  {"stop", false, 0, onStop, 2},   {"crash", false, 0, killed, 0},
    {"short", false, 0, atOnce, 0}, {"talk", true, 1500, atOnce, 0},
};

std::string_view GetVariable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

} // namespace

int main(int argc, char* argv[]) {
    const std::string_view name = GetVariable("TEST_ENGINE");
    if (name == "die") return 3;
    const auto* mode = std::find_if(std::begin(kModes), std::end(kModes),
                                    [name](const SMode& row) { return row.name == name; });
    if (mode == std::end(kModes)) mode = kModes;
    if (argc != 5 || std::string_view(argv[1]) != "/remote") return 4;
    std::string word;
    if (!std::getline(std::cin, word) || word != "start") return 5;
    if (const auto result = GetVariable("TEST_ENGINE_RESULT"); !result.empty())
        std::filesystem::copy_file(result, GetVariable("TEST_ENGINE_TARGET"));
    const bool readable = std::ifstream(argv[4]).good();
    std::cout << "progress 12.5\n"
              << "message " << (readable ? 0 : 2) << " 7 \"parameters \"\"" << (readable ? "read" : "missing")
              << "\"\"\"\n";
    if (mode->completes) std::cout << "progress 100\n";
    for (int i = 0; i < mode->messages; ++i) std::cout << "message 0 0 " << i << '\n';
    std::cout << "message 9 0 odd" << std::endl;
    if (mode->end == killed) std::raise(SIGKILL);
    if (mode->end == atOnce) return mode->code;
    // The input of one that never stops ends with the test.
    while (std::getline(std::cin, word))
        if (word == "stop" && mode->end == onStop) break;
    return mode->code;
}
