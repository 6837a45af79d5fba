// The extra info record: the state of a view that is not in its text (the selection, the
// bookmarks, the collapsed blocks), as bytes that a host keeps beside its file. Little-endian
// values without padding, in three sections, each opened by its version word 1:
//
//   head        u32 version, i32 active, i32 anchor
//   bookmarks   u32 version, i32 count, count x (string name, i32 active, i32 anchor)
//   blocks      u32 version, i32 count, count x (i32 start, i32 end)
//
// A string is a length and that many bytes: below 255 one byte; up to 65533 0xFF and a u16;
// longer 0xFF, u16 0xFFFF and a u32. Blocks stand children first, then their parent, siblings
// in ascending order, so that collapsing them in that order rebuilds the nesting.
#pragma once
#include <string>
#include <vector>

#include "platform/com/stream.h"

struct ExtraInfoBookmark {
    std::string name;
    long active = 0;
    long anchor = 0;
    friend bool operator==(const ExtraInfoBookmark&, const ExtraInfoBookmark&) = default;
};

struct ExtraInfoBlock {
    long start = 0;
    long end = 0;
    friend bool operator==(const ExtraInfoBlock&, const ExtraInfoBlock&) = default;
};

struct ExtraInfoRecord {
    long active = 0;
    long anchor = 0;
    std::vector<ExtraInfoBookmark> bookmarks;  // in list order, the first first
    std::vector<ExtraInfoBlock> blocks;        // children before their parent
    friend bool operator==(const ExtraInfoRecord&, const ExtraInfoRecord&) = default;
};

// Why a record was refused.
enum class ExtraInfoError {
    None,
    EndOfFile,   // the store ended inside the record
    BadSchema,   // a head or bookmark version other than 1, or a string form that is not ours
    BadIndex,    // a block version other than 1, or a count below 0
    WriteFailed  // the store took fewer bytes than it was given
};
const char* ExtraInfoErrorText(ExtraInfoError error);

// Writes the record at the stream's position.
ExtraInfoError WriteExtraInfo(IStream* stream, const ExtraInfoRecord& record);
// Reads one record from the stream's position, leaving the position just behind it. Refuses the
// record whole: *out is only written when the whole record was read.
ExtraInfoError ReadExtraInfo(IStream* stream, ExtraInfoRecord* out);

// The record as a text of `length` bytes takes it: the selection clamped into the text,
// bookmarks and blocks with an end outside it dropped.
ExtraInfoRecord FitExtraInfoToText(ExtraInfoRecord record, long length);
