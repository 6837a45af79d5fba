// The extra info record's bytes: the documented example, the string forms at the edges of their
// length classes, random records through a write and a read, and every cut and every lie that a
// broken store can tell, which must be refused whole.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <sstream>

#include "src/annotations/extrainforecord.h"
#include "tests/platform/casefile.h"

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

// Hex bytes, as the case file writes them.
std::string FromHex(const std::string& hex) {
    std::istringstream in(hex);
    std::string bytes;
    for (std::string byte; in >> byte;) bytes += static_cast<char>(std::stoul(byte, nullptr, 16));
    return bytes;
}

// A lying record of the case file: four bytes of a good record replaced, or the good record cut
// and continued with other bytes.
std::string Lie(const std::string& good, const std::string& how) {
    std::istringstream in(how);
    std::string verb, rest;
    size_t at = 0;
    in >> verb >> at;
    if (verb == "cut") {
        std::getline(in, rest);
        return good.substr(0, at) + FromHex(rest);
    }
    in >> rest;
    const auto value = static_cast<uint32_t>(std::stoul(rest, nullptr, 0));
    std::string bytes = good;
    for (size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<char>(value >> (8 * i));
    return bytes;
}

// Names of every length class keep their form; lying fields are refused with their reason.
TEST(ExtraInfoRecord, NameFormsAndLiesOfTheCases) {
    const std::string good = Written({1, 1, {{"ab", 1, 1}}, {{0, 1}}});
    const std::map<std::string, ExtraInfoError> errors{{"EndOfFile", ExtraInfoError::EndOfFile},
                                                       {"BadSchema", ExtraInfoError::BadSchema},
                                                       {"BadIndex", ExtraInfoError::BadIndex}};
    for (const CaseRow& row : ReadCaseRows("annotations/cases/records.cases")) {
        SCOPED_TRACE(row.where);
        if (row[0] == "name") {
            const size_t length = static_cast<size_t>(row.Long(1));
            const std::string header = FromHex(row[2]);
            ExtraInfoRecord record{0, 0, {{std::string(length, 'n'), 1, 2}}, {}};
            const std::string bytes = Written(record);
            EXPECT_EQ(bytes.substr(20, header.size()), header);
            EXPECT_EQ(bytes.size(), 28 + header.size() + length + 8);
            ExtraInfoRecord back;
            ASSERT_EQ(Read(bytes, &back), ExtraInfoError::None);
            EXPECT_EQ(back, record);
        } else {
            ASSERT_EQ(errors.count(row[3]), 1u);
            ExtraInfoRecord target{9, 9, {}, {}};
            EXPECT_EQ(Read(Lie(good, row[2]), &target), errors.at(row[3]));
            EXPECT_EQ(target, (ExtraInfoRecord{9, 9, {}, {}}));
        }
    }
}

TEST(ExtraInfoRecord, FittingToAShorterTextClampsTheSelectionAndDropsWhatFallsOut) {
    const ExtraInfoRecord record{-4, 50, {{"in", 0, 10}, {"end", 10, 10}, {"out", 11, 2}, {"neg", -1, 3}},
                                 {{2, 10}, {5, 11}, {-1, 4}}};
    const ExtraInfoRecord fitted = FitExtraInfoToText(record, 10);
    EXPECT_EQ(fitted, (ExtraInfoRecord{0, 10, {{"in", 0, 10}, {"end", 10, 10}}, {{2, 10}}}));
}

}  // namespace
