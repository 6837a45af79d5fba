// The editor on a real X display: a private Xvfb server on a free display number that the
// fixture starts, and the editor run on it with its output in a log. Tests skip where Xvfb is
// missing.
#pragma once
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/e2e/childprocess.h"

namespace e2e {

constexpr int kServerStartMs = 10000;
constexpr int kEditorMs = 60000;  // generous: the sanitizer build starts slowly

// Reads the display number that Xvfb writes once it accepts clients; -1 on failure or timeout.
inline int ReadDisplayNumber(int fd) {
    std::string text;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kServerStartMs);
    while (text.find('\n') == std::string::npos) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        pollfd p{fd, POLLIN, 0};
        if (left.count() <= 0 || poll(&p, 1, static_cast<int>(left.count())) <= 0) return -1;
        char buffer[32];
        const ssize_t n = read(fd, buffer, sizeof buffer);
        if (n <= 0) return -1;
        text.append(buffer, static_cast<size_t>(n));
    }
    char* end = nullptr;
    const long number = std::strtol(text.c_str(), &end, 10);
    return end != text.c_str() && number >= 0 ? static_cast<int>(number) : -1;
}

inline std::string ReadLog(const std::string& path) {
    QFile file(QString::fromStdString(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
}

inline bool WriteFile(const std::string& path, const std::string& bytes) {
    QFile file(QString::fromStdString(path));
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(bytes.data(), static_cast<qint64>(bytes.size())) == static_cast<qint64>(bytes.size());
}

class EditorOnXDisplay : public ::testing::Test {
protected:
    void SetUp() override {
        if (QStandardPaths::findExecutable("Xvfb").isEmpty()) GTEST_SKIP() << "Xvfb is not installed: no X display to test on";
        ASSERT_TRUE(QDir().mkpath(ZENTREL_E2E_DIR));
    }
    static std::string Path(const char* name) { return std::string(ZENTREL_E2E_DIR) + "/" + name; }

    // Starts a server on a display number that it chooses itself, so that tests running at the
    // same time never collide.
    int StartServer() {
        int fds[2];
        if (pipe2(fds, O_CLOEXEC) != 0) return -1;
        const bool started = m_server.Start({"Xvfb", "-displayfd", std::to_string(CChild::kKeptFd), "-screen", "0", "1280x1024x24",
                                             "-nolisten", "tcp"},
                                            EnvironmentWith({}), Path("xvfb.log"), fds[1]);
        close(fds[1]);
        const int display = started ? ReadDisplayNumber(fds[0]) : -1;
        close(fds[0]);
        return display;
    }

    // The environment of a program on the display: no session bus there, which saying so keeps
    // the toolkit from looking for, and a data directory of the tests' own, so that the views
    // the editor remembers stay out of the user's.
    static std::vector<std::string> DisplayEnvironment(int display) {
        return EnvironmentWith({"DISPLAY=:" + std::to_string(display), "QT_QPA_PLATFORM=xcb", "DBUS_SESSION_BUS_ADDRESS=disabled:",
                                "XDG_DATA_HOME=" + Path("data")});
    }

    CChild m_server;
};

}  // namespace e2e
