// Runs a fuzz target without the fuzzer, as a test: every file of a corpus, and inputs made from each by
// cutting it and changing bytes of it, always the same ones.
#include "input.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

namespace {

using Input = std::vector<std::uint8_t>;

constexpr int kCuts = 8;
constexpr int kChanges = 40;

void Run(const Input& input) { LLVMFuzzerTestOneInput(input.data(), input.size()); }

std::vector<std::filesystem::path> ListFiles(const char* folder) {
    std::vector<std::filesystem::path> files;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error))
        if (entry.is_regular_file()) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

void RunVariants(const Input& whole) {
    for (std::size_t cut = 1; cut <= kCuts; ++cut)
        Run(Input(whole.begin(),
                  whole.end() - static_cast<std::ptrdiff_t>(whole.size() * cut / (kCuts + 1))));
    if (whole.empty()) return;
    std::minstd_rand random(static_cast<unsigned>(whole.size()));
    for (int i = 0; i < kChanges; ++i) {
        Input changed = whole;
        for (int bytes = 0; bytes <= i % 4; ++bytes)
            changed[random() % changed.size()] = static_cast<std::uint8_t>(i % 3 == 0 ? 0xFF : random() >> 8);
        Run(changed);
    }
}

} // namespace

int main(int argc, char** argv) {
    const auto files = argc == 2 ? ListFiles(argv[1]) : std::vector<std::filesystem::path>();
    if (files.empty()) {
        std::fprintf(stderr, "usage: %s FOLDER_OF_INPUTS\n", argv[0]);
        return 1;
    }
    Run({});
    for (const auto& path : files) {
        std::ifstream stream(path, std::ios::binary);
        const Input input{std::istreambuf_iterator<char>(stream), {}};
        Run(input);
        RunVariants(input);
    }
    std::printf("%zu inputs and their variants\n", files.size());
    return 0;
}
