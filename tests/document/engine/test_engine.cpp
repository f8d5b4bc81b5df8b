// Stands in for the processing engine in the tests of the document. TEST_ENGINE in the environment says how
// it behaves: "work" reports and ends, "wait" works until it is told to stop, "deaf" never ends by itself,
// "die" ends at once.
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>

int main(int argc, char* argv[]) {
    const char* chosen = std::getenv("TEST_ENGINE");
    const std::string_view mode = chosen ? chosen : "work";
    if (mode == "die") return 3;
    if (argc != 5 || std::string_view(argv[1]) != "/remote") return 4;
    std::string word;
    if (!std::getline(std::cin, word) || word != "start") return 5;
    const bool readable = std::ifstream(argv[4]).good();
    std::cout << "progress 12.5\n"
              << "message " << (readable ? 0 : 2) << " 7 \"parameters \"\"" << (readable ? "read" : "missing")
              << "\"\"\"\n"
              << "progress 100\nmessage 9 0 odd" << std::endl;
    if (mode == "work") return 0;
    while (std::getline(std::cin, word))
        if (word == "stop" && mode == "wait") return 0;
    // Its input ends with the test.
    return 0;
}
