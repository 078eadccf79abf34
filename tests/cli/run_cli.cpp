#include "run_cli.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "support/test_folders.h"

extern char** environ;

namespace ts::test {

namespace {
std::string Slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}
}  // namespace

CliRun RunCli(const std::vector<std::string>& args) {
    static const std::string folder = MakeTempFolder("ts-cli-output");
    std::string outPath = folder + "/out", errPath = folder + "/err";

    std::vector<std::string> argv{TS_CLI_PATH};
    argv.insert(argv.end(), args.begin(), args.end());
    std::vector<char*> raw;
    for (auto& a : argv) raw.push_back(a.data());
    raw.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0600);
    posix_spawn_file_actions_addopen(&actions, 2, errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0600);
    pid_t pid = 0;
    CliRun run;
    if (posix_spawn(&pid, TS_CLI_PATH, &actions, nullptr, raw.data(), environ) == 0) {
        int status = 0;
        waitpid(pid, &status, 0);
        run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    posix_spawn_file_actions_destroy(&actions);
    run.out = Slurp(outPath);
    run.err = Slurp(errPath);
    return run;
}

}  // namespace ts::test
