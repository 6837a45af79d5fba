#include "tests/e2e/childprocess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

extern char** environ;

using namespace std::chrono_literals;

bool CChild::Start(const std::vector<std::string>& argv, const std::vector<std::string>& env, const std::string& log,
                   int keepFd) {
    // Everything the child needs is made before it is forked: it only passes descriptors on.
    std::vector<char*> args, vars;
    for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
    for (const std::string& v : env) vars.push_back(const_cast<char*>(v.c_str()));
    args.push_back(nullptr);
    vars.push_back(nullptr);
    const int out = open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (out < 0) return false;
    m_pid = fork();
    if (m_pid == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        dup2(out, STDOUT_FILENO);
        dup2(out, STDERR_FILENO);
        if (keepFd == kKeptFd)
            fcntl(kKeptFd, F_SETFD, 0);  // only the close-on-exec flag is in the way
        else if (keepFd >= 0)
            dup2(keepFd, kKeptFd);
        execvpe(args[0], args.data(), vars.data());
        _exit(127);
    }
    close(out);
    return m_pid > 0;
}

CChild::Ending CChild::Wait(int ms) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
    while (m_pid > 0) {
        int status = 0;
        if (waitpid(m_pid, &status, WNOHANG) == m_pid) {
            m_pid = -1;
            if (WIFSIGNALED(status)) return {true, -1, WTERMSIG(status)};
            return {true, WEXITSTATUS(status), 0};
        }
        if (std::chrono::steady_clock::now() >= deadline) break;
        std::this_thread::sleep_for(10ms);
    }
    return {};
}

void CChild::Stop() {
    if (m_pid <= 0) return;
    kill(m_pid, SIGTERM);
    if (!Wait(1000).finished) {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
    m_pid = -1;
}

std::vector<std::string> EnvironmentWith(const std::vector<std::string>& changes) {
    std::vector<std::string> env;
    for (char** v = environ; *v; ++v) {
        const std::string var = *v;
        const std::string name = var.substr(0, var.find('=') + 1);
        bool replaced = false;
        for (const std::string& c : changes) replaced = replaced || c.compare(0, name.size(), name) == 0;
        if (!replaced) env.push_back(var);
    }
    env.insert(env.end(), changes.begin(), changes.end());
    return env;
}
