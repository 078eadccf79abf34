// Saves killed at random points: real import processes of the command-line host are started and
// killed with SIGKILL part-way. After each kill the module must pass its integrity check and hold
// the resource exactly as it was before the save or exactly as the save made it, never a mixture.
//
// TS_KILL_TRIALS sets the number of trials (30 by default, so the test command stays quick);
// scripts/kill_test.sh runs thousands.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <thread>

#include "support/test_folders.h"
#include "ts/resourcestore.h"
#include "ts/text.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// A conversation of `lines` NPC lines whose long texts carry `mark`: quick to read, and some
// hundreds of pages for a save to write.
std::string Conversation(char mark, int lines) {
    std::string npc;
    for (int i = 0; i < lines; ++i)
        npc += std::string(i ? "," : "") + "{\"Text\": \"" + std::to_string(i) +
               std::string(20000, mark) + "\"}";
    return "{\"resource\": \"big\", \"type\": \"dlg\", \"fields\": {\"NPCLineList\": [" + npc +
           "]}}";
}

pid_t StartImport(const std::string& module, const std::string& file) {
    std::vector<std::string> words{TS_CLI_PATH, "import", module, file, "--replace"};
    std::vector<char*> argv;
    for (auto& w : words) argv.push_back(w.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t pid = -1;
    if (posix_spawn(&pid, TS_CLI_PATH, &actions, nullptr, argv.data(), environ) != 0) pid = -1;
    posix_spawn_file_actions_destroy(&actions);
    return pid;
}

std::vector<std::uint8_t> StoredBytes(const std::string& module) {
    auto store = ts::OpenSqliteStore(module, {});
    std::vector<std::uint8_t> bytes;
    EXPECT_TRUE(store && store->ReadResource(u"big", u"dlg", bytes));
    return bytes;
}

bool Exists(const std::string& path) {
    struct stat st {};
    return ::stat(path.c_str(), &st) == 0;
}

// Whether a killed save had begun writing: the module's log holds frames. (The test closes the
// module after every trial, which folds the log in and removes it.)
bool LogWritten(const std::string& module) {
    struct stat st {};
    return ::stat((module + "-wal").c_str(), &st) == 0 && st.st_size > 0;
}

// An import run to its end, or killed `killAfter` after it opened the module (its log file
// appeared): starting, reading and encoding the file come first and take most of the time, so
// the kills are aimed at the part that writes. `window` is how long the module was open, until
// the import closed it and its log was removed (the rest is the program ending).
struct ImportRun {
    int status = 0;
    Clock::duration window{};
};
ImportRun RunImport(const std::string& module, const std::string& file,
                    std::optional<Clock::duration> killAfter = std::nullopt) {
    ImportRun run;
    pid_t pid = StartImport(module, file);
    if (pid <= 0) return run;
    auto poll = [] { std::this_thread::sleep_for(std::chrono::microseconds(50)); };
    bool ended = false;
    while (!Exists(module + "-wal") && !(ended = waitpid(pid, &run.status, WNOHANG) != 0)) poll();
    auto opened = Clock::now();
    if (killAfter) {
        std::this_thread::sleep_for(*killAfter);
        ::kill(pid, SIGKILL);
    } else {
        while (Exists(module + "-wal") && !ended) poll();
        run.window = Clock::now() - opened;
    }
    if (!ended) waitpid(pid, &run.status, 0);
    return run;
}

TEST(KillDuringSave, EveryKilledSaveLeavesTheOldOrTheNewVersionWhole) {
    int trials = 30;
    if (const char* n = std::getenv("TS_KILL_TRIALS"); n && std::atoi(n) > 0) trials = std::atoi(n);
    std::string folder = ts::test::MakeTempFolder("ts-kill");
    std::string module = folder + "/m.tsmod";
    const std::string files[2] = {folder + "/a/big.dlg.json", folder + "/b/big.dlg.json"};
    fs::create_directories(folder + "/a");
    fs::create_directories(folder + "/b");
    std::ofstream(files[0]) << Conversation('a', 60);
    std::ofstream(files[1]) << Conversation('b', 60);

    // The bytes each version is stored as, and how long a whole save keeps the module open.
    ASSERT_TRUE(ts::OpenSqliteStore(module, {.create = true}));
    std::vector<std::uint8_t> version[2];
    Clock::duration window{};
    for (int v : {0, 1, 0, 1}) {
        ImportRun run = RunImport(module, files[v]);
        ASSERT_TRUE(WIFEXITED(run.status) && WEXITSTATUS(run.status) == 0);
        window = std::max(window, run.window);  // the longest of four
        version[v] = StoredBytes(module);
    }
    ASSERT_NE(version[0], version[1]);

    using std::chrono::microseconds;
    std::mt19937 random(20261124);
    std::uniform_int_distribution<std::int64_t> delay(
        0, std::chrono::duration_cast<microseconds>(window).count() * 11 / 10);
    int killed = 0, midWrite = 0, intact = 0, current = 1;
    for (int trial = 0; trial < trials; ++trial) {
        SCOPED_TRACE("trial " + std::to_string(trial));
        int next = 1 - current;
        ASSERT_FALSE(Exists(module + "-wal"));
        int status = RunImport(module, files[next], microseconds(delay(random))).status;
        if (WIFSIGNALED(status)) {
            ++killed;
            if (LogWritten(module)) ++midWrite;
        } else {
            ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "a save failed";
        }

        auto store = ts::OpenSqliteStore(module, {});
        ASSERT_TRUE(store) << "the module cannot be opened after a kill";
        std::vector<std::u16string> problems;
        ASSERT_TRUE(store->CheckIntegrity(problems));
        ASSERT_TRUE(problems.empty()) << ts::Utf16ToUtf8(problems.front());
        std::vector<std::uint8_t> bytes;
        ASSERT_TRUE(store->ReadResource(u"big", u"dlg", bytes));
        ASSERT_TRUE(bytes == version[0] || bytes == version[1]) << "a mixture of two versions";
        if (WIFEXITED(status)) {
            ASSERT_EQ(bytes, version[next]) << "a finished save was lost";
        }
        current = bytes == version[1] ? 1 : 0;
        ++intact;
    }
    std::printf("[ kill test ] %d trials, %d killed (%d mid-write), %d intact\n", trials, killed,
                midWrite, intact);
    EXPECT_EQ(intact, trials);
    EXPECT_GT(killed, 0) << "no save was killed: the kills came too late";
    fs::remove_all(folder);
}

}  // namespace
