// The scan that code completion runs over the raw bytes around a position: where the tag
// around it begins and ends, and which part of the tag the position is on. It reads bytes only,
// never the document's syntax colouring, so that half-typed tags are read as well as whole ones.
#pragma once
#include <string>

#include "platform/com/types.h"

// Context words: the kind of place in the low group, the part of a tag in the high group.
constexpr long CTX_NONE = 0;
constexpr long CTX_TEXT = 0x10;
constexpr long CTX_TAG = 0x20;
constexpr long CTX_COMMENT = 0x40;
constexpr long CTX_TAGNAME = 0x1020;
constexpr long CTX_ATTRIBUTE = 0x2020;
constexpr long CTX_VALUE = 0x4020;

struct TagContext {
    long context = CTX_NONE;
    long rangeStart = 0;  // what a pick replaces
    long rangeEnd = 0;
    std::string tag;        // upper case; a closing tag keeps its '/'
    std::string attribute;  // upper case
    std::string value;      // as it stands, quotes included
};

// The stretch the scans look at: back to the nearest '<' or '>' before pos (across lines), and
// forward to the first bracket, taken in, or to the end of the line. isLead tells the first
// byte of a double-byte character; null for a code page without them.
void FindTagBoundsIn(const char* text, long length, long pos, BOOL (*isLead)(BYTE), long* pStart, long* pEnd);

// Reads the place at pos; the result's context is never CTX_NONE.
TagContext AnalyzeTagIn(const char* text, long length, long pos, BOOL (*isLead)(BYTE));
