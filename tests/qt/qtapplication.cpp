// One QApplication for the whole test program, made before the first test and without a display.
#include <gtest/gtest.h>

#include <QApplication>
#include <memory>

namespace {

class CQtEnvironment : public ::testing::Environment {
public:
    void SetUp() override {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
        static int argc = 1;
        static char name[] = "test_qt";
        static char* argv[] = {name, nullptr};
        m_app = std::make_unique<QApplication>(argc, argv);
    }
    void TearDown() override { m_app.reset(); }

private:
    std::unique_ptr<QApplication> m_app;
};

const auto* const g_environment = ::testing::AddGlobalTestEnvironment(new CQtEnvironment);

}  // namespace
