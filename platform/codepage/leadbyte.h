// The lead-byte test for a named code page, for code that is not the control (the document,
// conversion). The control keeps its own test over the process code page's data.
#pragma once
#include "platform/codepage/codepage.h"

// TRUE if `b` is the first byte of a double-byte character of `codePage` (CP_ACP: the process
// code page). FALSE for single-byte and unknown code pages.
BOOL IsDBCSLeadByteEx(UINT codePage, BYTE b);
