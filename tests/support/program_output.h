// What a program that nobody here wrote reads in a file of ours.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace test {

// The standard output of a command of the shell, which must end well.
inline std::string Ask(const std::string& command) {
    std::string text;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe) return text;
    for (int c; (c = std::fgetc(pipe)) != EOF;) text += static_cast<char>(c);
    EXPECT_EQ(::pclose(pipe), 0) << command << "\n" << text;
    return text;
}

} // namespace test
