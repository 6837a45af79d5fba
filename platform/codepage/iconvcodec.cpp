#include "platform/codepage/iconvcodec.h"

#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>

namespace {

// Code points travel to and from the converter as UTF-32 in little-endian order, spelled out
// here byte by byte so that the host's order does not matter.
constexpr const char* kUnicodeName = "UTF-32LE";
const iconv_t kNoConverter = reinterpret_cast<iconv_t>(-1);

class CConverter {
public:
    CConverter(const char* to, const char* from) : m_cd(iconv_open(to, from)) {}
    ~CConverter() {
        if (m_cd != kNoConverter) iconv_close(m_cd);
    }
    CConverter(const CConverter&) = delete;
    CConverter& operator=(const CConverter&) = delete;

    bool Valid() const { return m_cd != kNoConverter; }
    // The descriptor in its initial shift state.
    iconv_t Reset() {
        iconv(m_cd, nullptr, nullptr, nullptr, nullptr);
        return m_cd;
    }

private:
    iconv_t m_cd;
};

// One converter per name and direction and thread: a descriptor must not be shared between
// threads, and opening one for every call would cost more than most conversions.
CConverter* Converter(const char* name, bool toUnicode) {
    thread_local std::map<std::pair<std::string, bool>, std::unique_ptr<CConverter>> cache;
    if (!name) return nullptr;
    auto& slot = cache[{name, toUnicode}];
    if (!slot)
        slot = toUnicode ? std::make_unique<CConverter>(kUnicodeName, name)
                         : std::make_unique<CConverter>(name, kUnicodeName);
    return slot->Valid() ? slot.get() : nullptr;
}

void AppendUtf32Le(std::u32string& out, const char* bytes, size_t count) {
    for (size_t i = 0; i + 4 <= count; i += 4) {
        const auto* b = reinterpret_cast<const unsigned char*>(bytes + i);
        out += static_cast<char32_t>(b[0] | (b[1] << 8) | (b[2] << 16) | (uint32_t(b[3]) << 24));
    }
}

std::string ToUtf32Le(std::u32string_view in) {
    std::string bytes;
    bytes.reserve(in.size() * 4);
    for (char32_t ch : in)
        for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>((ch >> shift) & 0xFF);
    return bytes;
}

// Brings the converter back to its initial shift state, handing any bytes that this takes (the
// escape back to ASCII of a shifting encoding) to `emit`.
template <class Emit>
void Unshift(iconv_t cd, Emit emit) {
    char chunk[64];
    char* outp = chunk;
    size_t outLeft = sizeof chunk;
    iconv(cd, nullptr, nullptr, &outp, &outLeft);
    emit(chunk, static_cast<size_t>(outp - chunk));
}

// Runs the converter over `in`, handing each piece of output to `emit`. At an input position that
// the converter refuses, the shift state is closed, `refused(offset, length, incomplete)` is
// called and `length` bytes (`skip`, or what is left) are stepped over. The output ends in the initial shift state. False on any other
// error.
template <class Emit, class Refused>
bool Run(iconv_t cd, std::string_view in, size_t skip, Emit emit, Refused refused) {
    char chunk[4096];
    char* inp = const_cast<char*>(in.data());
    size_t inLeft = in.size();
    while (inLeft > 0) {
        char* outp = chunk;
        size_t outLeft = sizeof chunk;
        const size_t r = iconv(cd, &inp, &inLeft, &outp, &outLeft);
        const int err = errno;
        emit(chunk, static_cast<size_t>(outp - chunk));
        if (r != static_cast<size_t>(-1) || err == E2BIG) continue;
        if (err != EILSEQ && err != EINVAL) return false;
        Unshift(cd, emit);
        const size_t step = std::min(skip, inLeft);
        refused(static_cast<size_t>(inp - in.data()), step, err == EINVAL);
        inp += step;
        inLeft -= step;
    }
    Unshift(cd, emit);
    return true;
}

}  // namespace

const char* IconvNameOfCodePage(UINT codePage) {
    switch (codePage) {
    case 932: return "CP932";
    case 936: return "CP936";
    case 949: return "CP949";
    case 950: return "CP950";
    default: return nullptr;
    }
}

bool IconvAvailable(const char* name) {
    return Converter(name, true) && Converter(name, false);
}

bool IconvDecode(const char* name, std::string_view in, std::u32string* out, const IconvBadInput& bad, size_t unit) {
    CConverter* conv = Converter(name, true);
    if (!conv || !out) return false;
    const size_t before = out->size();
    const bool ok = Run(
        conv->Reset(), in, unit, [&](const char* bytes, size_t n) { AppendUtf32Le(*out, bytes, n); },
        [&](size_t offset, size_t length, bool incomplete) {
            *out += U'\uFFFD';
            if (bad) bad(offset, length, incomplete);
        });
    if (!ok) out->resize(before);
    return ok;
}

bool IconvEncode(const char* name, std::u32string_view in, std::string* out,
                 const std::function<void(size_t index)>& unmappable) {
    CConverter* conv = Converter(name, false);
    if (!conv || !out) return false;
    const size_t before = out->size();
    const std::string bytes = ToUtf32Le(in);
    const bool ok = Run(
        conv->Reset(), bytes, 4, [&](const char* chunk, size_t n) { out->append(chunk, n); },
        [&](size_t offset, size_t, bool) {
            if (unmappable) unmappable(offset / 4);
        });
    if (!ok) out->resize(before);
    return ok;
}
