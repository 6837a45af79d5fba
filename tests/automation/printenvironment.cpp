// The walks print on the recording printer: its print dialog answers OK and its page setup
// dialog Cancel, so that no dialog of the desktop opens in a test.
#include <gtest/gtest.h>

#include "platform/testing/testprinter.h"

namespace {

class CPrintEnvironment : public ::testing::Environment {
public:
    void SetUp() override { m_pPrevious = SetPrintBackend(&m_backend); }
    void TearDown() override { SetPrintBackend(m_pPrevious); }

private:
    CTestPrintBackend m_backend;
    IPrintBackend* m_pPrevious = nullptr;
};

const auto* const g_environment = ::testing::AddGlobalTestEnvironment(new CPrintEnvironment);

}  // namespace
