// Runs the built messenger as a child process with a script on its input, collecting its output.
#pragma once

#include "scratch_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

extern char** environ;

namespace testsupport {

namespace fs = std::filesystem;

struct Result {
    int status = -1;  // the exit status; -1 when it did not exit normally
    std::string out;
    std::string err;
};

// Variables of the machine the run must not inherit, each between spaces.
inline bool isMachineSpecific(const std::string& name) {
    static const std::string kNames =
        " MESSENGER_INSERT_LIBRARIES LANGUAGE LC_ALL LC_MESSAGES LANG http_proxy HTTP_PROXY "
        "https_proxy HTTPS_PROXY all_proxy ALL_PROXY no_proxy NO_PROXY ";
    return kNames.find(" " + name + " ") != std::string::npos;
}

// Runs the messenger with arguments and input; `env` adds (or with "" removes) variables. The run
// ignores the machine: no inherited libraries, locale or proxy; English unless `--language`; http
// to a refusing loopback port unless `env` names a proxy. `cwd`, if given, is its folder.
inline Result run(const std::vector<std::string>& args, const std::string& input = "",
                  const std::map<std::string, std::string>& env = {}, const fs::path& cwd = {}) {
    const ScratchFolder io("messenger-io");
    const fs::path in = io / "in", out = io / "out", err = io / "err";
    std::ofstream(in, std::ios::binary) << input;

    std::vector<std::string> argStrings{MESSENGER_PATH};
    argStrings.insert(argStrings.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (auto& a : argStrings) argv.push_back(a.data());
    argv.push_back(nullptr);

    std::vector<std::string> envStrings;
    for (char** e = environ; *e != nullptr; ++e) {
        const std::string entry = *e;
        const std::string name = entry.substr(0, entry.find('='));
        if (isMachineSpecific(name) || env.count(name) != 0) continue;
        envStrings.push_back(entry);
    }
    for (const auto& [name, value] : std::map<std::string, std::string>{
             {"LANG", "en_US.UTF-8"}, {"http_proxy", "http://127.0.0.1:1"}}) {
        if (env.count(name) == 0) envStrings.push_back(name + "=" + value);
    }
    for (const auto& [name, value] : env) {
        if (!value.empty()) envStrings.push_back(name + "=" + value);
    }
    std::vector<char*> envp;
    for (auto& e : envStrings) envp.push_back(e.data());
    envp.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, in.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (!cwd.empty()) posix_spawn_file_actions_addchdir_np(&actions, cwd.c_str());
    pid_t pid = 0;
    const int spawned =
        posix_spawn(&pid, MESSENGER_PATH, &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    Result result;
    if (spawned != 0) {
        ADD_FAILURE() << "cannot start " << MESSENGER_PATH << ": " << std::strerror(spawned);
        return result;
    }
    // A messenger that hangs (a hook calling itself) fails the test instead of the suite.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    int status = 0;
    bool killed = false;
    for (pid_t done; (done = waitpid(pid, &status, WNOHANG)) != pid;) {
        if (done < 0 && errno != EINTR) break;
        if (std::chrono::steady_clock::now() > deadline && !killed) {
            kill(pid, SIGKILL);
            killed = true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.out = readFile(out);
    result.err = readFile(err);
    if (killed) result.err += "\n(killed: no end within 60 s)";
    return result;
}

// Runs the script from a file in `home`, the device folder; `inject` loads the library.
inline Result runScript(const ScratchFolder& home, const std::string& script,
                        std::vector<std::string> options = {}, bool inject = false,
                        const std::map<std::string, std::string>& env = {},
                        const std::string& input = "") {
    const fs::path file = home / "test.script";
    std::ofstream(file) << script;
    std::vector<std::string> args{"--home", home.path(), "--script", file.string()};
    args.insert(args.end(), options.begin(), options.end());
    if (inject) args.insert(args.end(), {"--inject", PARCELVANE_LIBRARY});
    return run(args, input, env);
}

inline std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> list;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) list.push_back(line);
    return list;
}

inline bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

}  // namespace testsupport
