// IStream: a byte stream with a seek position, over memory or over a file.
#pragma once
#include <cstdint>
#include <string>

#include "platform/com/unknown.h"

extern const IID IID_IStream;

constexpr DWORD STREAM_SEEK_SET = 0;
constexpr DWORD STREAM_SEEK_CUR = 1;
constexpr DWORD STREAM_SEEK_END = 2;

class IStream : public IUnknown {
public:
    // Reads up to cb bytes; *read (if given) is the count. Reading at the end gives 0 bytes and S_OK.
    virtual HRESULT Read(void* pv, ULONG cb, ULONG* read) = 0;
    virtual HRESULT Write(const void* pv, ULONG cb, ULONG* written) = 0;
    virtual HRESULT Seek(int64_t move, DWORD origin, uint64_t* newPosition) = 0;
    virtual HRESULT GetSize(uint64_t* size) = 0;

protected:
    ~IStream() = default;
};

// A stream over a growable memory block that starts with `initial`.
ComPtr<IStream> CreateMemoryStream(std::string initial = {});
// The bytes of a memory stream made above (empty for another stream).
std::string MemoryStreamContents(IStream* stream);

enum class FileMode { Read, Write };
// A stream over a file: Read opens an existing file, Write creates or truncates one.
// Failure: STG_E_FILENOTFOUND or E_ACCESSDENIED, and *out stays empty.
HRESULT CreateFileStream(const std::string& path, FileMode mode, ComPtr<IStream>* out);
