#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/test_folders.h"
#include "ts/configuration.h"

// Runs the command-line host as a separate program, from an argument vector.
namespace ts::test {

struct CliResult {
    int exitCode = -1;  // -1 when the program did not end by itself (a crash, a signal)
    std::string out, err;
};

CliResult RunToolsetCli(const std::vector<std::string>& args);

std::string ReadWholeFile(const std::string& path);
bool Contains(const std::string& text, const std::string& part);

// A test with the demo module made afresh in a folder of its own, removed afterwards.
class CliDemoModule : public ::testing::Test {
protected:
    std::string folder = MakeTempFolder("ts-cli");
    std::string demo = folder + "/demo.tsmod";

    void SetUp() override {
        auto made = RunToolsetCli({"module", "create", ts::ApplicationDataFolder() + "/demo", demo});
        ASSERT_EQ(made.exitCode, 0) << made.err;
    }
    void TearDown() override { std::filesystem::remove_all(folder); }
};

}  // namespace ts::test
