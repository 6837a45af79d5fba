// Sets the process code page for the life of a test scope and puts the old one back.
#pragma once
#include <gtest/gtest.h>

#include "platform/codepage/codepage.h"

class CodePageScope {
public:
    explicit CodePageScope(UINT cp) : m_nSaved(GetProcessCodePage()) { EXPECT_TRUE(SetProcessCodePage(cp)); }
    ~CodePageScope() { SetProcessCodePage(m_nSaved); }

private:
    UINT m_nSaved;
};
