#include <atomic>

#include "platform/codepage/codepage.h"
#include "platform/codepage/leadbyte.h"

namespace {

struct CCodePageData {
    UINT nCodePage;
    UINT nMaxCharSize;
    BYTE leadBytes[12];
};

// Lead-byte ranges as low and high pairs; a 0 low byte ends the list.
constexpr CCodePageData kCodePages[] = {
    {1252, 1, {}},
    {932, 2, {0x81, 0x9F, 0xE0, 0xFC}},  // Japanese
    {936, 2, {0x81, 0xFE}},              // Simplified Chinese
    {949, 2, {0x81, 0xFE}},              // Korean
    {950, 2, {0x81, 0xFE}},              // Traditional Chinese
};

constexpr UINT kDefaultCodePage = 1252;
std::atomic<UINT> g_nProcessCodePage{kDefaultCodePage};

const CCodePageData* FindCodePage(UINT codePage) {
    if (codePage == CP_ACP) codePage = g_nProcessCodePage.load();
    for (const CCodePageData& data : kCodePages)
        if (data.nCodePage == codePage) return &data;
    return nullptr;
}

}  // namespace

BOOL GetCPInfo(UINT codePage, CPINFO* info) {
    const CCodePageData* data = FindCodePage(codePage);
    if (!data || !info) return FALSE;
    CPINFO filled;
    filled.MaxCharSize = data->nMaxCharSize;
    filled.DefaultChar[0] = '?';
    for (int i = 0; i < 12; ++i) filled.LeadByte[i] = data->leadBytes[i];
    *info = filled;
    return TRUE;
}

BOOL SetProcessCodePage(UINT codePage) {
    const CCodePageData* data = FindCodePage(codePage);
    if (!data) return FALSE;
    g_nProcessCodePage.store(data->nCodePage);
    return TRUE;
}

UINT GetProcessCodePage() {
    return g_nProcessCodePage.load();
}

BOOL IsDBCSLeadByteEx(UINT codePage, BYTE b) {
    const CCodePageData* data = FindCodePage(codePage);
    if (!data || data->nMaxCharSize < 2) return FALSE;
    for (int i = 0; i < 12 && data->leadBytes[i] != 0; i += 2)
        if (b >= data->leadBytes[i] && b <= data->leadBytes[i + 1]) return TRUE;
    return FALSE;
}
