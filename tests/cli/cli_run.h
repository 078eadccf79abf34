#pragma once

#include <string>
#include <vector>

// Runs the command-line host as a separate program, from an argument vector.
namespace ts::test {

struct CliResult {
    int exitCode = -1;  // -1 when the program did not end by itself (a crash, a signal)
    std::string out, err;
};

CliResult RunToolsetCli(const std::vector<std::string>& args);

std::string ReadWholeFile(const std::string& path);
bool Contains(const std::string& text, const std::string& part);

}  // namespace ts::test
