#include "bench/process.h"

#include <chrono>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {

double run(std::vector<std::string> command, const std::string& outputPath) {
    using Clock = std::chrono::steady_clock;
    const auto started = Clock::now();
    std::vector<char*> arguments;
    for (std::string& argument : command) {
        if (argument == "@start") {
            argument = std::to_string(
                std::chrono::duration_cast<std::chrono::nanoseconds>(started.time_since_epoch()).count());
        }
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, outputPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    pid_t child = 0;
    const int failed = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    if (failed != 0 || waitpid(child, &status, 0) != child || status != 0) {
        throw std::runtime_error(command[0] + " failed");
    }
    return std::chrono::duration<double>(Clock::now() - started).count();
}

}  // namespace bench
