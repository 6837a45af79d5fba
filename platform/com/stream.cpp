#include "platform/com/stream.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

const IID IID_IStream = MakeGuid("{0000000C-0000-0000-C000-000000000046}");

namespace {

// Common reference counting and QueryInterface of both stream kinds.
class CStreamBase : public CUnknownImpl<IStream, IID_IStream> {
protected:
    // New position for a seek from `base`; false if it would fall before 0.
    static bool SeekTarget(uint64_t base, int64_t move, uint64_t* target) {
        if (move < 0 && static_cast<uint64_t>(-move) > base) return false;
        *target = base + move;
        return true;
    }
};

class CMemoryStream final : public CStreamBase {
public:
    explicit CMemoryStream(std::string data) : m_data(std::move(data)) {}

    HRESULT Read(void* pv, ULONG cb, ULONG* read) override {
        uint64_t avail = m_pos < m_data.size() ? m_data.size() - m_pos : 0;
        ULONG n = static_cast<ULONG>(std::min<uint64_t>(cb, avail));
        if (n) std::memcpy(pv, m_data.data() + m_pos, n);
        m_pos += n;
        if (read) *read = n;
        return S_OK;
    }
    HRESULT Write(const void* pv, ULONG cb, ULONG* written) override {
        if (m_pos + cb > m_data.size()) m_data.resize(m_pos + cb);
        if (cb) std::memcpy(m_data.data() + m_pos, pv, cb);
        m_pos += cb;
        if (written) *written = cb;
        return S_OK;
    }
    HRESULT Seek(int64_t move, DWORD origin, uint64_t* newPosition) override {
        uint64_t base = origin == STREAM_SEEK_SET ? 0 : origin == STREAM_SEEK_CUR ? m_pos : m_data.size();
        if (origin > STREAM_SEEK_END) return STG_E_INVALIDFUNCTION;
        uint64_t target;
        if (!SeekTarget(base, move, &target)) return STG_E_INVALIDFUNCTION;
        m_pos = target;
        if (newPosition) *newPosition = m_pos;
        return S_OK;
    }
    HRESULT GetSize(uint64_t* size) override {
        *size = m_data.size();
        return S_OK;
    }
    const std::string& Data() const { return m_data; }

private:
    std::string m_data;
    uint64_t m_pos = 0;
};

class CFileStream final : public CStreamBase {
public:
    explicit CFileStream(FILE* f) : m_file(f) {}
    ~CFileStream() override { std::fclose(m_file); }

    HRESULT Read(void* pv, ULONG cb, ULONG* read) override {
        size_t n = std::fread(pv, 1, cb, m_file);
        if (read) *read = static_cast<ULONG>(n);
        return std::ferror(m_file) ? STG_E_READFAULT : S_OK;
    }
    HRESULT Write(const void* pv, ULONG cb, ULONG* written) override {
        size_t n = std::fwrite(pv, 1, cb, m_file);
        if (written) *written = static_cast<ULONG>(n);
        return n == cb ? S_OK : STG_E_WRITEFAULT;
    }
    HRESULT Seek(int64_t move, DWORD origin, uint64_t* newPosition) override {
        static const int kWhence[] = {SEEK_SET, SEEK_CUR, SEEK_END};
        if (origin > STREAM_SEEK_END) return STG_E_INVALIDFUNCTION;
        long here = std::ftell(m_file);
        if (std::fseek(m_file, static_cast<long>(move), kWhence[origin]) != 0) {
            std::fseek(m_file, here, SEEK_SET);
            return STG_E_INVALIDFUNCTION;
        }
        if (newPosition) *newPosition = static_cast<uint64_t>(std::ftell(m_file));
        return S_OK;
    }
    HRESULT GetSize(uint64_t* size) override {
        long here = std::ftell(m_file);
        std::fseek(m_file, 0, SEEK_END);
        *size = static_cast<uint64_t>(std::ftell(m_file));
        std::fseek(m_file, here, SEEK_SET);
        return S_OK;
    }

private:
    FILE* m_file;
};

}  // namespace

ComPtr<IStream> CreateMemoryStream(std::string initial) {
    return ComPtr<IStream>(new CMemoryStream(std::move(initial)));
}

std::string MemoryStreamContents(IStream* stream) {
    auto* mem = dynamic_cast<CMemoryStream*>(stream);
    return mem ? mem->Data() : std::string();
}

HRESULT CreateFileStream(const std::string& path, FileMode mode, ComPtr<IStream>* out) {
    FILE* f = std::fopen(path.c_str(), mode == FileMode::Read ? "rb" : "wb");
    if (!f) return errno == ENOENT ? STG_E_FILENOTFOUND : E_ACCESSDENIED;
    *out = ComPtr<IStream>(new CFileStream(f));
    return S_OK;
}
