// Programs that a test runs beside itself, such as a display server or the application, each
// with its output in a log file.
#pragma once
#include <sys/types.h>

#include <string>
#include <vector>

// A program run by the test. It ends with the test at the latest, also when the test process
// dies.
class CChild {
public:
    // How a program ended: `finished` is false while it is still running.
    struct Ending {
        bool finished = false;
        int code = -1;   // its exit code, if it exited
        int signal = 0;  // the signal that ended it, if one did
    };

    CChild() = default;
    CChild(const CChild&) = delete;
    CChild& operator=(const CChild&) = delete;
    ~CChild() { Stop(); }

    // Runs argv[0] from the PATH with the environment `env`, its output going to the file `log`;
    // `keepFd`, if given, is handed to the program as descriptor kKeptFd.
    bool Start(const std::vector<std::string>& argv, const std::vector<std::string>& env, const std::string& log,
               int keepFd = -1);
    // Waits up to `ms` for the program to end.
    Ending Wait(int ms);
    // Asks the program to end, and forces it after a second.
    void Stop();

    static constexpr int kKeptFd = 3;

private:
    pid_t m_pid = -1;
};

// The environment of this process with `changes` ("NAME=value") put in.
std::vector<std::string> EnvironmentWith(const std::vector<std::string>& changes);
