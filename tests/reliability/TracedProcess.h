#pragma once

#include <sys/ptrace.h>
#include <sys/types.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdlib>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

namespace reliability
{

/// What became of a process that was to be killed.
struct Ending {
    bool killed = false;
    int status = -1;      ///< of its own ending
    long kernelCalls = 0; ///< begun and ended ones, counted from where it stopped itself
};

/// Runs a program and kills it, as pulling the plug of a process does, at the n-th time that its main thread
/// enters or leaves the kernel after it has stopped itself.
/// @param n        from 1; 0: it runs to its end
/// @returns nothing where processes may not be traced
inline std::optional<Ending> runAndKill(const std::vector<std::string>& command, long n)
{
    const pid_t child = fork();
    if (child == 0) {
        std::vector<char*> arguments;
        for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(126);
        execv(arguments[0], arguments.data());
        _exit(127);
    }
    if (child < 0) return {};
    Ending ending;
    bool isCounting = false;
    int status = 0;
    constexpr int kSystemCall = SIGTRAP | 0x80;
    while (waitpid(child, &status, 0) == child) {
        if (WIFEXITED(status)) {
            ending.status = WEXITSTATUS(status);
            if (ending.status == 126) return {};
            return ending;
        }
        if (WIFSIGNALED(status)) {
            ending.killed = WTERMSIG(status) == SIGKILL;
            return ending;
        }
        int signal = WSTOPSIG(status);
        if (signal == kSystemCall) {
            signal = 0;
            if (isCounting && ++ending.kernelCalls == n) {
                kill(child, SIGKILL);
                continue;
            }
        } else if (signal == SIGSTOP) {
            signal = 0;
            isCounting = true;
        } else if (signal == SIGTRAP) {
            signal = 0; // it has become the program
            ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
        }
        ptrace(isCounting ? PTRACE_SYSCALL : PTRACE_CONT, child, nullptr, signal);
    }
    return {};
}

} // namespace reliability
