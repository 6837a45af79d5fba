#include "htmldoc/safefile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

HRESULT HrFromErrno(int err, HRESULT fallback) {
    switch (err) {
        case ENOENT: return STG_E_FILENOTFOUND;
        case EACCES:
        case EPERM: return E_ACCESSDENIED;
        case ENOMEM: return E_OUTOFMEMORY;
        default: return fallback;
    }
}

HRESULT Fail(HRESULT hr, std::string* error, const std::string& what, const std::string& path, int err) {
    if (error) *error = what + " \"" + path + "\": " + std::strerror(err);
    return hr;
}

HRESULT TooLarge(const std::string& path, std::string* error) {
    if (error) *error = "The file \"" + path + "\" is too large to edit";
    return E_OUTOFMEMORY;
}

class CFd {
public:
    explicit CFd(int fd) : m_fd(fd) {}
    ~CFd() {
        if (m_fd >= 0) ::close(m_fd);
    }
    CFd(const CFd&) = delete;
    CFd& operator=(const CFd&) = delete;
    int Get() const { return m_fd; }
    // Closes now, for the error that closing reports.
    bool Close() {
        const int fd = m_fd;
        m_fd = -1;
        return ::close(fd) == 0;
    }

private:
    int m_fd;
};

bool WriteAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t n = ::write(fd, bytes.data(), bytes.size());
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        bytes.remove_prefix(static_cast<size_t>(n));
    }
    return true;
}

// The file that a save replaces: the target of a symbolic link, followed to the end.
std::string ResolvedTarget(const std::string& path) {
    char resolved[PATH_MAX];
    struct stat st;
    if (::lstat(path.c_str(), &st) == 0 && S_ISLNK(st.st_mode) && ::realpath(path.c_str(), resolved)) return resolved;
    return path;
}

std::string DirectoryOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// The process's file mode mask, which mkstemp does not apply; reading it means setting it.
mode_t CurrentUmask() {
    const mode_t mask = ::umask(077);
    ::umask(mask);
    return mask;
}

}  // namespace

HRESULT ReadWholeFile(const std::string& path, size_t limit, std::string* bytes, std::string* error) {
    CFd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (fd.Get() < 0) return Fail(HrFromErrno(errno, STG_E_READFAULT), error, "Cannot open", path, errno);
    struct stat st;
    if (::fstat(fd.Get(), &st) != 0) return Fail(STG_E_READFAULT, error, "Cannot read", path, errno);
    if (S_ISDIR(st.st_mode)) return Fail(STG_E_READFAULT, error, "Cannot read", path, EISDIR);
    if (S_ISREG(st.st_mode)) {
        if (static_cast<unsigned long long>(st.st_size) > limit) return TooLarge(path, error);
        bytes->reserve(static_cast<size_t>(st.st_size));
    }
    char chunk[1 << 16];
    for (;;) {
        const ssize_t got = ::read(fd.Get(), chunk, sizeof chunk);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return Fail(HrFromErrno(errno, STG_E_READFAULT), error, "Cannot read", path, errno);
        if (got == 0) break;
        if (bytes->size() + static_cast<size_t>(got) > limit) return TooLarge(path, error);
        bytes->append(chunk, static_cast<size_t>(got));
    }
    return S_OK;
}

HRESULT ReplaceWholeFile(const std::string& path, std::string_view bytes, std::string* error) {
    const std::string target = ResolvedTarget(path);
    struct stat old;
    const bool existed = ::stat(target.c_str(), &old) == 0;
    std::string temp = target + ".XXXXXX";
    CFd fd(::mkstemp(temp.data()));
    if (fd.Get() < 0) return Fail(HrFromErrno(errno, STG_E_WRITEFAULT), error, "Cannot create a file beside", target, errno);
    const auto failed = [&](const char* what, int err) {
        ::unlink(temp.c_str());
        return Fail(HrFromErrno(err, STG_E_WRITEFAULT), error, what, target, err);
    };
    // The new file gets the old one's permissions, and its owner where this process may give it.
    const mode_t mode = existed ? (old.st_mode & 07777) : (0666 & ~CurrentUmask());
    if (::fchmod(fd.Get(), mode) != 0) return failed("Cannot set the permissions of", errno);
    if (existed && (old.st_uid != ::geteuid() || old.st_gid != ::getegid()) &&
        ::fchown(fd.Get(), old.st_uid, old.st_gid) != 0) {
        // A process that may not give the file away leaves it its own, as any editor does.
    }
    if (!WriteAll(fd.Get(), bytes)) return failed("Cannot write", errno);
    if (::fsync(fd.Get()) != 0) return failed("Cannot write", errno);
    if (!fd.Close()) return failed("Cannot write", errno);
    if (::rename(temp.c_str(), target.c_str()) != 0) return failed("Cannot replace", errno);
    // The new name must reach the disk too.
    CFd dir(::open(DirectoryOf(target).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (dir.Get() >= 0) ::fsync(dir.Get());
    return S_OK;
}
