// Every test program runs with its own data and config folders, so that logs and settings never
// touch the user's and every run starts clean.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/test_folders.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    std::string root = ts::test::MakeTempFolder("ts-test");
    setenv("XDG_DATA_HOME", (root + "/data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (root + "/config").c_str(), 1);
    // The documents folder (editor layouts) too, named where the desktop names it.
    std::filesystem::create_directories(root + "/config");
    std::ofstream(root + "/config/user-dirs.dirs") << "XDG_DOCUMENTS_DIR=\"" << root << "/documents\"\n";
    int result = RUN_ALL_TESTS();
    std::error_code ec;
    std::filesystem::remove_all(root, ec);
    return result;
}
