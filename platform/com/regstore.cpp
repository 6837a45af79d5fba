#include "platform/com/regstore.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <strings.h>

#include "platform/com/classfactory.h"

namespace {

constexpr const char* kHeader = "zentrel-registration 1";
constexpr const char* kEnd = "end";

std::string Escape(const std::string& value) {
    std::string out;
    for (char c : value) {
        if (c == '\\') out += "\\\\";
        else if (c == '\n') out += "\\n";
        else if (c == '\r') out += "\\r";
        else out += c;
    }
    return out;
}

std::optional<std::string> Unescape(const std::string& text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            out += text[i];
            continue;
        }
        if (++i == text.size()) return std::nullopt;
        if (text[i] == '\\') out += '\\';
        else if (text[i] == 'n') out += '\n';
        else if (text[i] == 'r') out += '\r';
        else return std::nullopt;
    }
    return out;
}

// Key paths hold no line breaks or brackets, value names no '=' and no leading '#' (a comment):
// anything else could not be read back as written.
bool ValidKey(const std::string& key) {
    return !key.empty() && key.find_first_of("[]\r\n") == std::string::npos;
}
bool ValidName(const std::string& name) {
    return name.find_first_of("=\r\n") == std::string::npos && (name.empty() || (name[0] != '#' && name[0] != '['));
}

std::string ClsidKey(REFCLSID clsid) { return "CLSID\\" + StringFromGuid(clsid); }

bool SameFile(const std::string& a, const std::string& b) {
    std::error_code ec;
    return std::filesystem::equivalent(a, b, ec);
}

// Writes `text` to a new file beside `path` and renames it over `path`: the old file stays
// whole until the new one is complete on the disk.
// Gives 0 or the errno of the step that failed.
int WriteAtomically(const std::string& path, const std::string& text) {
    std::string temp = path + ".XXXXXX";
    int fd = mkstemp(temp.data());
    if (fd < 0) return errno;
    size_t done = 0;
    while (done < text.size()) {
        ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        done += static_cast<size_t>(n);
    }
    int error = 0;
    if (done != text.size() || fsync(fd) != 0) error = errno ? errno : EIO;
    // The store keeps its permissions; a new one is readable by all, as mkstemp's is not.
    struct stat old {};
    fchmod(fd, stat(path.c_str(), &old) == 0 ? old.st_mode & 07777 : 0644);
    if (close(fd) != 0 && !error) error = errno;
    if (!error && rename(temp.c_str(), path.c_str()) != 0) error = errno;
    if (error) unlink(temp.c_str());
    return error;
}

}  // namespace

bool CRegistrationStore::LessNoCase::operator()(const std::string& a, const std::string& b) const {
    return strcasecmp(a.c_str(), b.c_str()) < 0;
}

CRegistrationStore::Result CRegistrationStore::Fail(HRESULT hr, const std::string& what) const {
    return {hr, "registration store " + m_path + ": " + what};
}

CRegistrationStore::Result CRegistrationStore::Load() {
    m_keys.clear();
    std::error_code ec;
    if (!std::filesystem::exists(m_path, ec)) return Fail(STG_E_FILENOTFOUND, "no such file");
    if (std::filesystem::is_directory(m_path, ec)) return Fail(STG_E_READFAULT, "is a directory");
    std::ifstream in(m_path, std::ios::binary);
    if (!in) return Fail(errno == EACCES ? STG_E_ACCESSDENIED : STG_E_READFAULT, std::strerror(errno));
    std::ostringstream text;
    text << in.rdbuf();
    if (in.bad()) return Fail(STG_E_READFAULT, "read error");
    Result r = ParseLines(text.str());
    if (!r.Ok()) m_keys.clear();
    return r;
}

CRegistrationStore::Result CRegistrationStore::LoadOrEmpty() {
    std::error_code ec;
    if (!std::filesystem::exists(m_path, ec) && !ec) {
        m_keys.clear();
        return {};
    }
    return Load();
}

CRegistrationStore::Result CRegistrationStore::ParseLines(const std::string& text) {
    std::istringstream lines(text);
    std::string line;
    int number = 0;
    bool header = false, ended = false;
    Values* current = nullptr;
    auto corrupt = [&](const std::string& why) {
        return Fail(STG_E_DOCFILECORRUPT, "line " + std::to_string(number) + ": " + why);
    };
    while (std::getline(lines, line)) {
        ++number;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line[0] == '#') continue;
        if (ended) return corrupt("text after the end line");
        if (!header) {
            if (line != kHeader) return corrupt("not a registration store (the first line is not \"" + std::string(kHeader) + "\")");
            header = true;
        } else if (line == kEnd) {
            ended = true;
        } else if (line[0] == '[') {
            std::string key = line.size() > 1 ? line.substr(1, line.size() - 2) : std::string();
            if (line.back() != ']' || !ValidKey(key)) return corrupt("malformed key");
            if (m_keys.contains(key)) return corrupt("key " + key + " stands twice");
            current = &m_keys[key];
        } else {
            size_t eq = line.find('=');
            if (eq == std::string::npos) return corrupt("neither a key nor a value");
            if (!current) return corrupt("a value before any key");
            std::string name = line.substr(0, eq);
            std::optional<std::string> value = Unescape(line.substr(eq + 1));
            if (!value || !ValidName(name)) return corrupt("malformed value");
            if (!current->emplace(name, *value).second) return corrupt("value " + name + " stands twice");
        }
    }
    if (!header) return Fail(STG_E_DOCFILECORRUPT, "empty file, not a registration store");
    if (!ended) return Fail(STG_E_DOCFILECORRUPT, "cut short (no end line)");
    return {};
}

CRegistrationStore::Result CRegistrationStore::Save() const {
    std::string text = std::string(kHeader) + "\n";
    for (const auto& [key, values] : m_keys) {
        text += "[" + key + "]\n";
        for (const auto& [name, value] : values) text += name + "=" + Escape(value) + "\n";
    }
    text += std::string(kEnd) + "\n";
    if (int error = WriteAtomically(m_path, text))
        return Fail(error == EACCES ? STG_E_ACCESSDENIED : STG_E_WRITEFAULT, std::strerror(error));
    return {};
}

bool CRegistrationStore::HasKey(const std::string& key) const { return m_keys.contains(key); }

std::optional<std::string> CRegistrationStore::Value(const std::string& key, const std::string& name) const {
    auto k = m_keys.find(key);
    if (k == m_keys.end()) return std::nullopt;
    auto v = k->second.find(name);
    if (v == k->second.end()) return std::nullopt;
    return v->second;
}

void CRegistrationStore::AddKey(const std::string& key) {
    if (!ValidKey(key)) throw std::invalid_argument("registration key \"" + key + "\" cannot be stored");
    for (size_t at = key.find('\\'); at != std::string::npos; at = key.find('\\', at + 1)) m_keys[key.substr(0, at)];
    m_keys[key];
}

void CRegistrationStore::SetValue(const std::string& key, const std::string& name, const std::string& value) {
    if (!ValidName(name)) throw std::invalid_argument("registration value name \"" + name + "\" cannot be stored");
    AddKey(key);
    m_keys[key][name] = value;
}

bool CRegistrationStore::RemoveTree(const std::string& key) {
    size_t before = m_keys.size();
    std::erase_if(m_keys, [&](const auto& entry) {
        const std::string& k = entry.first;
        return strcasecmp(k.c_str(), key.c_str()) == 0 ||
               (k.size() > key.size() && k[key.size()] == '\\' && strncasecmp(k.c_str(), key.c_str(), key.size()) == 0);
    });
    return m_keys.size() != before;
}

std::vector<std::string> CRegistrationStore::Keys() const {
    std::vector<std::string> keys;
    for (const auto& entry : m_keys) keys.push_back(entry.first);
    return keys;
}

HRESULT CLSIDFromProgID(const CRegistrationStore& store, const std::string& progId, CLSID* clsid) {
    if (!clsid) return E_POINTER;
    std::optional<std::string> text = store.Value(progId + "\\CLSID");
    std::optional<GUID> guid = text ? GuidFromString(*text) : std::nullopt;
    if (progId.empty() || !guid) return CO_E_CLASSSTRING;
    *clsid = *guid;
    return S_OK;
}

HRESULT ProgIDFromCLSID(const CRegistrationStore& store, REFCLSID clsid, std::string* progId) {
    if (!progId) return E_POINTER;
    std::optional<std::string> text = store.Value(ClsidKey(clsid) + "\\ProgID");
    if (!text) return REGDB_E_CLASSNOTREG;
    *progId = *text;
    return S_OK;
}

HRESULT CreateInstanceFromStore(const CRegistrationStore& store, REFCLSID clsid, REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    *ppv = nullptr;
    std::optional<std::string> module = store.Value(ClsidKey(clsid) + "\\InprocServer32");
    if (!module) return REGDB_E_CLASSNOTREG;
    GetClassObjectFn get = nullptr;
    if (SameFile(*module, CurrentModulePath())) {
        get = LinkedModule();
    } else if (void* handle = dlopen(module->c_str(), RTLD_NOW | RTLD_LOCAL)) {
        // Another module: loaded for good, as a host keeps the modules it has used.
        get = reinterpret_cast<GetClassObjectFn>(dlsym(handle, "DllGetClassObject"));
    }
    if (!get) return CO_E_DLLNOTFOUND;
    ComPtr<IClassFactory> factory;
    HRESULT hr = get(clsid, IID_IClassFactory, reinterpret_cast<void**>(factory.Out()));
    if (FAILED(hr)) return hr;
    return factory->CreateInstance(nullptr, riid, ppv);
}

std::string CurrentModulePath() {
    // The program itself has no name of its own in dladdr's answer, only the process does.
    Dl_info info{};
    std::string name = dladdr(reinterpret_cast<void*>(&CurrentModulePath), &info) && info.dli_fname ? info.dli_fname : "";
    std::error_code ec;
    std::filesystem::path path = std::filesystem::canonical(name, ec);
    if (ec || name.empty()) path = std::filesystem::read_symlink("/proc/self/exe", ec);
    return path.string();
}
