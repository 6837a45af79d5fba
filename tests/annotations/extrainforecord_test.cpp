// The extra info record's bytes: the documented example, the string forms at the edges of their
// length classes, random records through a write and a read, and every cut and every lie that a
// broken store can tell, which must be refused whole.
#include <gtest/gtest.h>

#include <random>

#include "src/annotations/extrainforecord.h"

namespace {

std::string Bytes(std::initializer_list<int> values) {
    std::string s;
    for (int v : values) s.push_back(static_cast<char>(v));
    return s;
}

std::string Written(const ExtraInfoRecord& record) {
    ComPtr<IStream> stream = CreateMemoryStream();
    EXPECT_EQ(WriteExtraInfo(stream.Get(), record), ExtraInfoError::None);
    return MemoryStreamContents(stream.Get());
}

ExtraInfoError Read(const std::string& bytes, ExtraInfoRecord* out) {
    ComPtr<IStream> stream = CreateMemoryStream(bytes);
    return ReadExtraInfo(stream.Get(), out);
}

TEST(ExtraInfoRecord, TheExampleRecordHasExactlyItsBytes) {
    ExtraInfoRecord record{7, 7, {{"Bookmark 1", 5, 5}}, {{10, 20}}};
    const std::string expected = Bytes({1, 0, 0, 0, 7, 0, 0, 0, 7, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0x0A}) +
                                 "Bookmark 1" +
                                 Bytes({5, 0, 0, 0, 5, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0x0A, 0, 0, 0, 0x14, 0, 0, 0});
    EXPECT_EQ(Written(record), expected);
    ExtraInfoRecord back;
    ASSERT_EQ(Read(expected, &back), ExtraInfoError::None);
    EXPECT_EQ(back, record);
}

TEST(ExtraInfoRecord, AnEmptyStateIsTwentyEightBytes) {
    EXPECT_EQ(Written({}).size(), 28u);
}

// Each length class of the string form, at both of its edges, and its header bytes.
TEST(ExtraInfoRecord, NamesOfEveryLengthClassKeepTheirForm) {
    struct Case {
        size_t length;
        std::string header;
    } cases[] = {
        {0, Bytes({0})},
        {254, Bytes({0xFE})},
        {255, Bytes({0xFF, 0xFF, 0x00})},
        {65533, Bytes({0xFF, 0xFD, 0xFF})},
        {65534, Bytes({0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0, 0})},
        {70000, Bytes({0xFF, 0xFF, 0xFF, 0x70, 0x11, 1, 0})},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.length);
        ExtraInfoRecord record{0, 0, {{std::string(c.length, 'n'), 1, 2}}, {}};
        const std::string bytes = Written(record);
        EXPECT_EQ(bytes.substr(20, c.header.size()), c.header);
        EXPECT_EQ(bytes.size(), 28 + c.header.size() + c.length + 8);
        ExtraInfoRecord back;
        ASSERT_EQ(Read(bytes, &back), ExtraInfoError::None);
        EXPECT_EQ(back, record);
    }
}

ExtraInfoRecord RandomRecord(std::mt19937& rng, size_t bookmarks, size_t blocks) {
    std::uniform_int_distribution<long> pos(-5, 1 << 20);
    std::uniform_int_distribution<int> byte(0, 255);
    const size_t lengths[] = {0, 1, 254, 255, 256, 65533, 65534, 65535};
    ExtraInfoRecord r{pos(rng), pos(rng), {}, {}};
    for (size_t i = 0; i < bookmarks; ++i) {
        std::string name(i % 97 == 0 ? lengths[(i / 97) % 8] : i % 13, '\0');
        for (char& ch : name) ch = static_cast<char>(byte(rng));
        r.bookmarks.push_back({std::move(name), pos(rng), pos(rng)});
    }
    for (size_t i = 0; i < blocks; ++i) r.blocks.push_back({pos(rng), pos(rng)});
    return r;
}

TEST(ExtraInfoRecord, RandomRecordsComeBackAsTheyWent) {
    std::mt19937 rng(14);
    for (int round = 0; round < 20; ++round) {
        const ExtraInfoRecord record = RandomRecord(rng, round * 150, round * 200);
        ExtraInfoRecord back;
        ASSERT_EQ(Read(Written(record), &back), ExtraInfoError::None);
        ASSERT_EQ(back, record) << "round " << round;
    }
}

// A stream goes on behind the record: the read stops just behind it.
TEST(ExtraInfoRecord, AReadLeavesTheStreamBehindTheRecord) {
    const ExtraInfoRecord record{3, 4, {{"a", 1, 1}}, {{0, 2}}};
    const std::string bytes = Written(record);
    ComPtr<IStream> stream = CreateMemoryStream(bytes + "tail");
    ExtraInfoRecord back;
    ASSERT_EQ(ReadExtraInfo(stream.Get(), &back), ExtraInfoError::None);
    char rest[8] = {};
    ULONG read = 0;
    stream->Read(rest, sizeof rest, &read);
    EXPECT_EQ(std::string(rest, read), "tail");
}

TEST(ExtraInfoRecord, EveryCutIsRefusedWithoutTouchingTheTarget) {
    std::mt19937 rng(5);
    const std::string bytes = Written(RandomRecord(rng, 6, 5));
    const ExtraInfoRecord untouched{-1, -2, {{"keep", 1, 1}}, {{3, 4}}};
    for (size_t cut = 0; cut < bytes.size(); ++cut) {
        ExtraInfoRecord target = untouched;
        ASSERT_EQ(Read(bytes.substr(0, cut), &target), ExtraInfoError::EndOfFile) << "cut at " << cut;
        ASSERT_EQ(target, untouched);
    }
}

// Overwrites four bytes of a record at an offset with a little-endian value.
std::string Patched(std::string bytes, size_t at, uint32_t value) {
    for (int i = 0; i < 4; ++i) bytes[at + i] = static_cast<char>(value >> (8 * i));
    return bytes;
}

TEST(ExtraInfoRecord, LyingFieldsAreRefusedWithTheirReason) {
    const std::string good = Written({1, 1, {{"ab", 1, 1}}, {{0, 1}}});
    const size_t blocks = 12 + 8 + 3 + 8;
    struct Case {
        const char* what;
        std::string bytes;
        ExtraInfoError error;
    } cases[] = {
        {"head version 0", Patched(good, 0, 0), ExtraInfoError::BadSchema},
        {"head version 2", Patched(good, 0, 2), ExtraInfoError::BadSchema},
        {"bookmark version", Patched(good, 12, 0x100), ExtraInfoError::BadSchema},
        {"negative bookmark count", Patched(good, 16, 0xFFFFFFFF), ExtraInfoError::BadIndex},
        {"bookmark count past the end", Patched(good, 16, 0x7FFFFFFF), ExtraInfoError::EndOfFile},
        {"block version", Patched(good, blocks, 7), ExtraInfoError::BadIndex},
        {"negative block count", Patched(good, blocks + 4, 0x80000000), ExtraInfoError::BadIndex},
        {"block count past the end", Patched(good, blocks + 4, 2), ExtraInfoError::EndOfFile},
        {"a name length running off the end", good.substr(0, 20) + Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F}),
         ExtraInfoError::EndOfFile},
        {"a name in the wide-character form", good.substr(0, 20) + Bytes({0xFF, 0xFE, 0xFF, 2}) + "ab",
         ExtraInfoError::BadSchema},
    };
    for (const Case& c : cases) {
        ExtraInfoRecord target{9, 9, {}, {}};
        EXPECT_EQ(Read(c.bytes, &target), c.error) << c.what;
        EXPECT_EQ(target, (ExtraInfoRecord{9, 9, {}, {}})) << c.what;
    }
}

TEST(ExtraInfoRecord, FittingToAShorterTextClampsTheSelectionAndDropsWhatFallsOut) {
    const ExtraInfoRecord record{-4, 50, {{"in", 0, 10}, {"end", 10, 10}, {"out", 11, 2}, {"neg", -1, 3}},
                                 {{2, 10}, {5, 11}, {-1, 4}}};
    const ExtraInfoRecord fitted = FitExtraInfoToText(record, 10);
    EXPECT_EQ(fitted, (ExtraInfoRecord{0, 10, {{"in", 0, 10}, {"end", 10, 10}}, {{2, 10}}}));
}

}  // namespace
