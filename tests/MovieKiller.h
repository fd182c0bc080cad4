#pragma once

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

namespace tests
{

/// How many kills a test is to make: ZORVEX_TEST_KILLS, or `usual`.
inline int killsAsked(int usual)
{
    const char* given = std::getenv("ZORVEX_TEST_KILLS");
    return given != nullptr ? std::atoi(given) : usual;
}

/// The processes of movies that this process has started and that have not ended.
inline std::vector<pid_t> movieProcesses()
{
    std::vector<pid_t> found;
    std::error_code gone;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task", gone)) {
        std::ifstream children(thread.path() / "children");
        for (pid_t child = 0; children >> child;) {
            std::string name, state;
            std::ifstream("/proc/" + std::to_string(child) + "/comm") >> name;
            std::ifstream stat("/proc/" + std::to_string(child) + "/stat");
            stat >> state >> state >> state;
            if (name == "zorvex-movie" && state != "Z") found.push_back(child);
        }
    }
    return found;
}

/// Ends the movies' processes at a moment that the seed decides, from a thread of its own: also while this
/// process waits for them.
class MovieKiller
{
public:
    explicit MovieKiller(unsigned seed) : m_random(seed) {}
    ~MovieKiller() { join(); }

    /// @param ms the moment lies between now and then
    void strikeWithin(int ms, int signal)
    {
        join();
        const std::chrono::microseconds moment(std::uniform_int_distribution<>(0, ms * 1000)(m_random));
        m_struck = 0;
        m_thread = std::thread([this, moment, signal] {
            std::this_thread::sleep_for(moment);
            for (const pid_t process : movieProcesses()) m_struck += kill(process, signal) == 0 ? 1 : 0;
        });
    }
    /// Waits for the moment. @returns how many processes were ended
    int join()
    {
        if (m_thread.joinable()) m_thread.join();
        return m_struck;
    }

private:
    std::mt19937 m_random;
    std::thread m_thread;
    int m_struck = 0; // read after join()
};

} // namespace tests
