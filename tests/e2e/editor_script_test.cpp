// zentrel-edit --script without a display: a script's print reaches stdout and the exit code
// says whether it ran through; a throw names its line, and a loop ends at the time limit.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <string>

#include "tests/e2e/childprocess.h"
#include "tests/e2e/xdisplay.h"

namespace {

using e2e::ReadLog;

std::string InE2eDir(const std::string& name) { return std::string(ZENTREL_E2E_DIR) + "/" + name; }

TEST(EditorScript, RunsHeadlessAndReportsHowTheScriptEnded) {
    const struct {
        const char* name;
        const char* script;
        int code;
        const char* output;  // a part of what the editor writes
    } cases[] = {
        {"prints", "control.SetSelection(3, 1);\nprint(control.GetSelection().pnStart, document.Length > 0);", 0, "3 true"},
        {"throws", "print('before');\ncontrol.HighlightStyle = 4;", 1, "throws.js:2: Error: HighlightStyle: Invalid property value"},
        {"loops", "for (;;) {}", 1, "loops.js: stopped: the script ran longer than its time limit of 0.5 s"},
    };
    ASSERT_TRUE(QDir().mkpath(ZENTREL_E2E_DIR));
    for (const auto& c : cases) {
        const std::string script = InE2eDir(std::string(c.name) + ".js");
        QFile file(QString::fromStdString(script));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(c.script);
        file.close();
        CChild editor;
        const std::string log = InE2eDir(std::string(c.name) + ".log");
        ASSERT_TRUE(editor.Start({ZENTREL_EDIT, "--script", script, "--script-timeout", "0.5"},
                                 EnvironmentWith({"QT_QPA_PLATFORM=offscreen"}), log));
        const CChild::Ending ending = editor.Wait(20000);
        ASSERT_TRUE(ending.finished) << c.name;
        EXPECT_EQ(ending.code, c.code) << c.name << ":\n" << ReadLog(log);
        EXPECT_NE(ReadLog(log).find(c.output), std::string::npos) << c.name << ":\n" << ReadLog(log);
    }
}

}  // namespace
