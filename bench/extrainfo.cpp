// The view state record with 100,000 bookmarks and 100,000 blocks: writing it to a memory store
// and reading it back, the byte work of a save and a load. (The view's own save and load add
// walking and rebuilding its bookmark list and collapse tree.)
#include <algorithm>
#include <vector>

#include "bench/benchtools.h"
#include "src/annotations/extrainforecord.h"

namespace {

ExtraInfoRecord LargeRecord(long entries) {
    ExtraInfoRecord record{10, 20, {}, {}};
    record.bookmarks.reserve(static_cast<size_t>(entries));
    record.blocks.reserve(static_cast<size_t>(entries));
    for (long i = 0; i < entries; ++i) {
        record.bookmarks.push_back({"Bookmark " + std::to_string(i), i * 40, i * 40 + 3});
        record.blocks.push_back({i * 40 + 5, i * 40 + 30});
    }
    return record;
}

}  // namespace

using namespace bench;

int main() {
    constexpr long kEntries = 100000;
    constexpr int kRounds = 5;
    const ExtraInfoRecord record = LargeRecord(kEntries);
    std::vector<double> writes, reads;
    size_t bytes = 0;
    for (int round = 0; round < kRounds; ++round) {
        ComPtr<IStream> stream = CreateMemoryStream();
        auto t0 = Clock::now();
        if (WriteExtraInfo(stream.Get(), record) != ExtraInfoError::None) return 1;
        writes.push_back(1000 * SecondsSince(t0));
        stream->Seek(0, STREAM_SEEK_SET, nullptr);
        ExtraInfoRecord back;
        t0 = Clock::now();
        if (ReadExtraInfo(stream.Get(), &back) != ExtraInfoError::None || back.blocks.size() != record.blocks.size())
            return 1;
        reads.push_back(1000 * SecondsSince(t0));
        bytes = MemoryStreamContents(stream.Get()).size();
    }
    Print("extrainfo_record_bytes_100k_bookmarks_100k_blocks", static_cast<double>(bytes), "bytes");
    Print("extrainfo_record_write_100k_bookmarks_100k_blocks", Percentile(writes, 0.5), "ms");
    Print("extrainfo_record_read_100k_bookmarks_100k_blocks", Percentile(reads, 0.5), "ms");
    return 0;
}
