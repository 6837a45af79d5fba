// The walks call every method through the widget, AboutBox among them, which opens a modal Qt
// dialog: while a test runs, a dialog that comes up is closed at once, as a user pressing
// Escape would.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QTimer>
#include <memory>

namespace {

class CDialogCloser : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo&) override {
        if (m_timer || !qApp) return;
        m_timer = std::make_unique<QTimer>();
        QObject::connect(m_timer.get(), &QTimer::timeout, [] {
            if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) dialog->reject();
        });
        m_timer->start(10);
    }
    void OnEnvironmentsTearDownStart(const ::testing::UnitTest&) override { m_timer.reset(); }

    std::unique_ptr<QTimer> m_timer;
};

const bool g_bInstalled = (::testing::UnitTest::GetInstance()->listeners().Append(new CDialogCloser), true);

}  // namespace
