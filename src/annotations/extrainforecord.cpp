#include "src/annotations/extrainforecord.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace {

constexpr uint32_t kVersion = 1;
constexpr unsigned kLongString = 0xFF;
constexpr uint32_t kWideLength = 0xFFFF;
constexpr uint32_t kUnicodeMark = 0xFFFE;
// Names are read in pieces of this size, so that a lying length costs no more memory than the
// bytes that are really there.
constexpr size_t kNameChunk = 1 << 16;

class CRecordWriter {
public:
    explicit CRecordWriter(IStream* stream) : m_pStream(stream) {}
    void U8(uint8_t v) { Bytes(&v, 1); }
    void U16(uint16_t v) {
        const uint8_t b[2] = {static_cast<uint8_t>(v), static_cast<uint8_t>(v >> 8)};
        Bytes(b, 2);
    }
    void U32(uint32_t v) {
        const uint8_t b[4] = {static_cast<uint8_t>(v), static_cast<uint8_t>(v >> 8), static_cast<uint8_t>(v >> 16),
                              static_cast<uint8_t>(v >> 24)};
        Bytes(b, 4);
    }
    void I32(long v) { U32(static_cast<uint32_t>(static_cast<int32_t>(v))); }
    // The head of a section of entries: its version and the count.
    void Section(size_t count) {
        U32(kVersion);
        I32(static_cast<long>(count));
    }
    void String(const std::string& s) {
        const size_t n = s.size();
        if (n < kLongString) {
            U8(static_cast<uint8_t>(n));
        } else if (n < kUnicodeMark) {
            U8(kLongString);
            U16(static_cast<uint16_t>(n));
        } else {
            U8(kLongString);
            U16(kWideLength);
            U32(static_cast<uint32_t>(n));
        }
        Bytes(s.data(), n);
    }
    void Bytes(const void* p, size_t n) {
        // A buffer in front of the store, so that small values do not each become a write.
        const auto* bytes = static_cast<const char*>(p);
        m_buffer.append(bytes, n);
        if (m_buffer.size() >= kFlushSize) Flush();
    }
    ExtraInfoError Flush() {
        if (!m_buffer.empty() && m_bOk) {
            ULONG written = 0;
            m_bOk = SUCCEEDED(m_pStream->Write(m_buffer.data(), static_cast<ULONG>(m_buffer.size()), &written)) &&
                    written == m_buffer.size();
        }
        m_buffer.clear();
        return m_bOk ? ExtraInfoError::None : ExtraInfoError::WriteFailed;
    }

private:
    static constexpr size_t kFlushSize = 4096;
    IStream* m_pStream;
    std::string m_buffer;
    bool m_bOk = true;
};

// Reads exactly what the record holds; the first failure sticks, and every later read gives 0.
class CRecordReader {
public:
    explicit CRecordReader(IStream* stream) : m_pStream(stream) {}
    bool Ok() const { return m_error == ExtraInfoError::None; }
    ExtraInfoError Error() const { return m_error; }
    void Fail(ExtraInfoError error) {
        if (Ok()) m_error = error;
    }
    bool Bytes(void* p, size_t n) {
        if (!Ok()) return false;
        ULONG read = 0;
        if (FAILED(m_pStream->Read(p, static_cast<ULONG>(n), &read)) || read != n) Fail(ExtraInfoError::EndOfFile);
        return Ok();
    }
    uint32_t U32() {
        uint8_t b[4] = {};
        if (!Bytes(b, 4)) return 0;
        return b[0] | (b[1] << 8) | (b[2] << 16) | (static_cast<uint32_t>(b[3]) << 24);
    }
    uint16_t U16() {
        uint8_t b[2] = {};
        if (!Bytes(b, 2)) return 0;
        return static_cast<uint16_t>(b[0] | (b[1] << 8));
    }
    uint8_t U8() {
        uint8_t b = 0;
        Bytes(&b, 1);
        return b;
    }
    long I32() { return static_cast<int32_t>(U32()); }
    void Version(ExtraInfoError wrong) {
        if (U32() != kVersion) Fail(wrong);
    }
    // A count, refused below 0.
    long Count() {
        const long count = I32();
        if (count < 0) Fail(ExtraInfoError::BadIndex);
        return Ok() ? count : 0;
    }
    std::string String() {
        uint32_t n = U8();
        if (n == kLongString) {
            n = U16();
            if (n == kUnicodeMark) Fail(ExtraInfoError::BadSchema);
            if (n == kWideLength) n = U32();
        }
        std::string s;
        while (Ok() && s.size() < n) {
            const size_t piece = std::min<size_t>(kNameChunk, n - s.size());
            const size_t at = s.size();
            s.resize(at + piece);
            Bytes(s.data() + at, piece);
        }
        return s;
    }

private:
    IStream* m_pStream;
    ExtraInfoError m_error = ExtraInfoError::None;
};

}  // namespace

const char* ExtraInfoErrorText(ExtraInfoError error) {
    switch (error) {
        case ExtraInfoError::None: return "no error";
        case ExtraInfoError::EndOfFile: return "the record ends early";
        case ExtraInfoError::BadSchema: return "not a record of this version";
        case ExtraInfoError::BadIndex: return "a count or section that is out of range";
        case ExtraInfoError::WriteFailed: return "the store took fewer bytes than it was given";
    }
    return "unknown error";
}

ExtraInfoError WriteExtraInfo(IStream* stream, const ExtraInfoRecord& record) {
    CRecordWriter w(stream);
    w.U32(kVersion);
    w.I32(record.active);
    w.I32(record.anchor);
    w.Section(record.bookmarks.size());
    for (const ExtraInfoBookmark& b : record.bookmarks) {
        w.String(b.name);
        w.I32(b.active);
        w.I32(b.anchor);
    }
    w.Section(record.blocks.size());
    for (const ExtraInfoBlock& b : record.blocks) {
        w.I32(b.start);
        w.I32(b.end);
    }
    return w.Flush();
}

ExtraInfoError ReadExtraInfo(IStream* stream, ExtraInfoRecord* out) {
    CRecordReader r(stream);
    ExtraInfoRecord record;
    r.Version(ExtraInfoError::BadSchema);
    record.active = r.I32();
    record.anchor = r.I32();
    r.Version(ExtraInfoError::BadSchema);
    for (long i = 0, n = r.Count(); i < n && r.Ok(); ++i) {
        ExtraInfoBookmark b;
        b.name = r.String();
        b.active = r.I32();
        b.anchor = r.I32();
        if (r.Ok()) record.bookmarks.push_back(std::move(b));
    }
    r.Version(ExtraInfoError::BadIndex);
    for (long i = 0, n = r.Count(); i < n && r.Ok(); ++i) {
        ExtraInfoBlock b;
        b.start = r.I32();
        b.end = r.I32();
        if (r.Ok()) record.blocks.push_back(b);
    }
    if (r.Ok()) *out = std::move(record);
    return r.Error();
}

ExtraInfoRecord FitExtraInfoToText(ExtraInfoRecord record, long length) {
    const auto clamp = [length](long pos) { return std::clamp(pos, 0L, length); };
    const auto inside = [length](long pos) { return pos >= 0 && pos <= length; };
    record.active = clamp(record.active);
    record.anchor = clamp(record.anchor);
    std::erase_if(record.bookmarks, [&](const ExtraInfoBookmark& b) { return !inside(b.active) || !inside(b.anchor); });
    std::erase_if(record.blocks, [&](const ExtraInfoBlock& b) { return !inside(b.start) || !inside(b.end); });
    return record;
}
