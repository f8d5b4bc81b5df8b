// A child with every bad habit: does what its arguments say, in their order, and ends.
#include <csignal>
#include <cstdlib>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

void Write(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const auto count = ::write(descriptor, text.data(), text.size());
        if (count <= 0) std::_Exit(1); // nobody listens any more
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

// "\n", "\r" and "\0" are written as two characters in the arguments.
std::string Unescape(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size())
            plain += text[i];
        else
            plain += text[++i] == 'n' ? '\n' : text[i] == 'r' ? '\r' : text[i] == '0' ? '\0' : text[i];
    }
    return plain;
}

// Answers each command until "stop" or the end of the channel.
void Echo() {
    std::string word;
    for (char c; ::read(STDIN_FILENO, &c, 1) == 1;) {
        if (c != '\n') {
            word += c;
            continue;
        }
        Write(STDOUT_FILENO, "got " + word + "\n");
        if (word == "stop") return;
        word.clear();
    }
}

void Flood(long count) {
    for (long i = 0; i < count; ++i) {
        Write(STDOUT_FILENO, "progress " + std::to_string(i % 101) + "\n");
        Write(STDERR_FILENO, "noise without an end of line ");
    }
}

void WaitForEndOfCommands() {
    for (char c; ::read(STDIN_FILENO, &c, 1) == 1;) {
    }
}

// What was inherited: descriptors, signal mask and actions, session.
void ReportState() {
    std::string report = "state";
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    for (int i = 0; i < static_cast<int>(limit.rlim_cur) && i < 4096; ++i)
        if (::fcntl(i, F_GETFD) >= 0) report += " " + std::to_string(i);
    sigset_t mask;
    ::sigprocmask(SIG_SETMASK, nullptr, &mask);
    struct sigaction action {};
    ::sigaction(SIGPIPE, nullptr, &action);
    report += sigismember(&mask, SIGUSR1) ? " masked" : " unmasked";
    report += action.sa_handler == SIG_DFL ? " default" : " ignored";
    report += ::getsid(0) == ::getpid() ? " leader" : " follower";
    Write(STDOUT_FILENO, report + "\n");
}

} // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        const auto equals = argument.find('=');
        const std::string_view verb = argument.substr(0, equals);
        const std::string value = equals == argument.npos ? "" : Unescape(argument.substr(equals + 1));
        if (verb == "out") Write(STDOUT_FILENO, value);
        if (verb == "bytes")
            for (const char& c : value) Write(STDOUT_FILENO, {&c, 1});
        if (verb == "err") Write(STDERR_FILENO, value);
        if (verb == "echo") Echo();
        if (verb == "flood") Flood(std::atol(value.c_str()));
        if (verb == "state") ReportState();
        if (verb == "closeout") ::close(STDOUT_FILENO);
        if (verb == "deaf") ::pause();
        if (verb == "grandchild" && ::fork() == 0) WaitForEndOfCommands();
    }
    std::_Exit(0);
}
