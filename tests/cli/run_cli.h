#pragma once

#include <string>
#include <vector>

namespace ts::test {

struct CliRun {
    int exitCode = -1;  // -1 when the program did not exit by itself (a crash)
    std::string out;
    std::string err;
};

// Runs the command-line host with these arguments (an argument vector, no shell), waits for it
// and collects what it printed.
CliRun RunCli(const std::vector<std::string>& args);

}  // namespace ts::test
