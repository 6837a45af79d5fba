// Code page data: the lead-byte ranges of the process code page and the one test for the
// first byte of a double-byte character. The process chooses its code page once, before any
// control exists; the default is 1252.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/com/types.h"

struct CPINFO {
    UINT MaxCharSize = 0;
    BYTE DefaultChar[2] = {};
    BYTE LeadByte[12] = {};  // up to six pairs of low and high lead byte; a 0 low byte ends the list
};

constexpr UINT CP_ACP = 0;  // the process code page

// Fills `info` for 1252, 932, 936, 949 or 950 (CP_ACP: the process code page); FALSE for others,
// leaving `info` untouched.
BOOL GetCPInfo(UINT codePage, CPINFO* info);

// Sets the process code page; FALSE and no change for one that GetCPInfo does not know.
BOOL SetProcessCodePage(UINT codePage);
UINT GetProcessCodePage();
