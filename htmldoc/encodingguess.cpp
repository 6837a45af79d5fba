#include "htmldoc/encodingguess.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <unordered_set>

#include "platform/codepage/iconvcodec.h"
#include "platform/codepage/unicode.h"

namespace {

// How much of the non-ASCII text of a file the guess reads.
constexpr size_t kSampleBytes = 64 << 10;

// Characters that make up much of running text in each language: Chinese in its simplified and
// traditional forms, the commonest Hangul syllables. Japanese is told by its kana.
constexpr std::string_view kCommonChinese =
    "的一是不了在人有我他这个们中来上大为和国地到以说时要就出会可也你对生能而子那得于着下自之年过发后作里用"
    "道行所然家种事成方多经么去法学如都同现当没动面起看定天分还进好小部其些主样理心她本前开但因只从想实日者"
    "意无力它与长把机十民第公此已工使情明性知全三又关点正业外将两高间由问很最重并物手应战向头文体政美相见被"
    "利什二等产或新己制身果加西月话合回特代内信表化老给世位次度门任常先海通教儿原东声提立及比员解水名真论处"
    "這個們來為國說時會對發後裡過麼學經現當動還進點業開關問從話見長門電機東種樣員間實體應與頭"
    "，。、；：？！「」『』（）“”";
constexpr std::string_view kCommonKorean =
    "이다의는에하고을가로한지서기리사자들도게대수시정인있해아어그나라면요보국상일부제주성적과전원만경장것여소"
    "동무화구내우위문회신세민마유미개중연계생방비학관공교실재발저진선안합식물설본분당체통말결명조치법를은며했"
    "습니까니던었음된되지만년월";

std::unordered_set<char32_t> CharsOf(std::string_view utf8) {
    std::unordered_set<char32_t> chars;
    for (const CodePointAt& at : DecodeUtf8(utf8)) chars.insert(at.ch);
    return chars;
}

bool IsKana(char32_t ch) {
    return (ch >= 0x3041 && ch <= 0x3096) || (ch >= 0x30A1 && ch <= 0x30FA) || ch == 0x30FC || ch == 0x3001 ||
           ch == 0x3002 || ch == 0x300C || ch == 0x300D;
}

struct CCandidate {
    const char* label;
    bool (*common)(char32_t);
};

bool CommonJapanese(char32_t ch) { return IsKana(ch); }
bool CommonChinese(char32_t ch) {
    static const std::unordered_set<char32_t> common = CharsOf(kCommonChinese);
    return common.count(ch) > 0;
}
bool CommonKorean(char32_t ch) {
    static const std::unordered_set<char32_t> common = CharsOf(kCommonKorean);
    return common.count(ch) > 0;
}

const CCandidate kCandidates[] = {
    {"Shift_JIS", CommonJapanese}, {"EUC-JP", CommonJapanese}, {"GBK", CommonChinese},
    {"Big5", CommonChinese},       {"EUC-KR", CommonKorean},
};

// The non-ASCII stretches of the file with the byte behind each (a trail byte may be ASCII),
// up to kSampleBytes, separated by spaces.
std::string NonAsciiSample(std::string_view bytes) {
    std::string sample;
    size_t pos = 0;
    while (sample.size() < kSampleBytes) {
        pos = static_cast<size_t>(std::find_if(bytes.begin() + static_cast<long>(pos), bytes.end(),
                                               [](char c) { return (c & 0x80) != 0; }) - bytes.begin());
        if (pos >= bytes.size()) break;
        size_t end = pos;
        while (end < bytes.size() && ((bytes[end] & 0x80) || (end + 1 < bytes.size() && (bytes[end + 1] & 0x80)))) ++end;
        end = std::min(bytes.size(), end + 1);
        sample.append(bytes.substr(pos, end - pos));
        sample += ' ';
        pos = end;
    }
    return sample;
}

// How well the candidate reads the sample: its common characters, less a penalty for each byte
// that it cannot read. Negative when it reads too little of it as text of its language.
long Score(const CCandidate& candidate, const CEncodingInfo& enc, std::string_view sample) {
    std::u32string chars;
    long bad = 0;
    if (!IconvDecode(enc.pszIconv, sample, &chars, [&](size_t, size_t, bool) { ++bad; })) return -1;
    long nonAscii = 0, common = 0;
    for (char32_t ch : chars) {
        if (ch < 0x80) continue;
        ++nonAscii;
        if (candidate.common(ch)) ++common;
    }
    const long score = common - 4 * bad;
    return score >= 2 && common * 4 >= nonAscii ? score : -1;
}

bool HasJisShift(std::string_view bytes) {
    for (std::string_view shift : {"\x1B$B", "\x1B$@", "\x1B(J"})
        if (bytes.find(shift) != std::string_view::npos) return true;
    return false;
}

}  // namespace

bool IsValidUtf8(std::string_view bytes, bool* nonAscii) {
    bool high = false;
    size_t i = 0;
    const size_t n = bytes.size();
    while (i < n) {
        // Eight ASCII bytes at a time.
        uint64_t word;
        if (i + 8 <= n && (std::memcpy(&word, bytes.data() + i, 8), (word & 0x8080808080808080ULL) == 0)) {
            i += 8;
            continue;
        }
        const auto b = static_cast<unsigned char>(bytes[i]);
        if (b < 0x80) {
            ++i;
            continue;
        }
        high = true;
        size_t length;
        char32_t min;
        if (b >= 0xC2 && b <= 0xDF) length = 2, min = 0x80;
        else if (b >= 0xE0 && b <= 0xEF) length = 3, min = 0x800;
        else if (b >= 0xF0 && b <= 0xF4) length = 4, min = 0x10000;
        else return false;
        if (i + length > n) return false;
        char32_t ch = b & (0x7F >> length);
        for (size_t k = 1; k < length; ++k) {
            const auto c = static_cast<unsigned char>(bytes[i + k]);
            if ((c & 0xC0) != 0x80) return false;
            ch = (ch << 6) | (c & 0x3F);
        }
        if (ch < min || ch > 0x10FFFF || (ch >= 0xD800 && ch <= 0xDFFF)) return false;
        i += length;
    }
    if (nonAscii) *nonAscii = high;
    return true;
}

const CEncodingInfo& GuessEncoding(std::string_view bytes, const CEncodingInfo& plain) {
    bool nonAscii = false;
    const bool utf8 = IsValidUtf8(bytes, &nonAscii);
    if (utf8 && !nonAscii) return HasJisShift(bytes) ? *FindEncoding("iso-2022-jp") : plain;
    if (utf8) return Utf8Encoding();
    const std::string sample = NonAsciiSample(bytes);
    const CEncodingInfo* best = FindEncoding("windows-1252");
    long bestScore = 0;
    for (const CCandidate& candidate : kCandidates) {
        const CEncodingInfo* enc = FindEncoding(candidate.label);
        const long score = Score(candidate, *enc, sample);
        // Of two equal readings, the process code page's own wins.
        if (score > bestScore || (score == bestScore && score > 0 && enc == &plain)) {
            best = enc;
            bestScore = score;
        }
    }
    return *best;
}
