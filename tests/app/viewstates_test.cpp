// The editor's memory of each file's view: what comes back when the same file is opened again,
// and when nothing does.
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <string>
#include <vector>

#include "app/viewstates.h"
#include "tests/view/viewfixture.h"

namespace {

class ViewStates : public ViewFixture {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        for (int i = 0; i < 200; ++i) text += "<p>line " + std::to_string(i) + "</p>\r\n";
        Write(text);
        Open(text);
    }
    void Write(const std::string& bytes) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes.data(), static_cast<qint64>(bytes.size()));
    }
    // The selection, the bookmarks and the folded blocks in one line. A load puts the bookmarks
    // into the list in reverse, so they are listed by position.
    std::string State() const {
        std::vector<std::string> marks;
        for (long i = 0; i < ctrl->m_Bookmarks.GetCount(); ++i) {
            const CBookmark* b = ctrl->m_Bookmarks.GetAt(i);
            marks.push_back(std::to_string(b->GetRange()->GetActive()) + "," + std::to_string(b->GetRange()->GetAnchor()) +
                            " " + b->GetName());
        }
        std::sort(marks.begin(), marks.end());
        std::string out = std::to_string(ctrl->GetSelectionStart()) + "-" + std::to_string(ctrl->GetSelectionEnd());
        for (const std::string& m : marks) out += " [" + m + "]";
        return out + " " + CollapseTreeText(ctrl->m_CollapseRoot);
    }

    QTemporaryDir dir;
    QString path = dir.filePath("page.html");
    CViewStates states{dir.filePath("states")};
    std::string text;
};

TEST_F(ViewStates, AnUnchangedFileGetsItsViewBackAndAChangedOneDoesNot) {
    ctrl->m_Bookmarks.Add(40, 40, "first");
    ctrl->m_Bookmarks.Add(900, 905, "second");
    ASSERT_TRUE(ctrl->m_CollapseRoot.Collapse(120, 200));
    ASSERT_TRUE(ctrl->m_CollapseRoot.Collapse(100, 400));
    ctrl->SetSelection(1200, 1100);
    const std::string saved = State();
    ASSERT_TRUE(states.Save(*ctrl, path));

    Open(text);
    const std::string fresh = State();
    ASSERT_NE(fresh, saved);
    ASSERT_TRUE(states.Restore(*ctrl, path));
    EXPECT_EQ(State(), saved);

    // Another file, a record cut short, and a file changed since: the view stays as it was.
    Open(text);
    EXPECT_FALSE(states.Restore(*ctrl, dir.filePath("other.html")));
    QFile record(states.RecordFile(path));
    ASSERT_TRUE(record.resize(record.size() - 3));
    EXPECT_FALSE(states.Restore(*ctrl, path));
    EXPECT_EQ(State(), fresh);
    ctrl->SetSelection(5, 5);
    ASSERT_TRUE(states.Save(*ctrl, path));
    Open(text);
    Write(text + "<p>one more line</p>\r\n");
    EXPECT_FALSE(states.Restore(*ctrl, path));
    EXPECT_EQ(State(), fresh);
}

}  // namespace
