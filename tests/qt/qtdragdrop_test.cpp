// Drags through Qt: a drop from another program reaches the view through its viewport's drag
// events, and file names travel as a uri list of local files both ways.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

#include "platform/qt/qtclipboard.h"
#include "platform/qt/qtcontrolwidget.h"
#include "platform/qt/qtwindowbackend.h"
#include "tests/qt/qtviewfixture.h"

namespace {

using QtDragDrop = QtViewFixture;

TEST_F(QtDragDrop, TextDroppedFromElsewhereIsInsertedAndSelected) {
    UseCodePage(1252);
    OpenText("abcd", 300, 100);
    auto* backend = static_cast<CQtWindowBackend*>(GetWindowBackend(ctrl->GetSafeHwnd()));
    QWidget* viewport = backend->Widget()->viewport();
    QMimeData mime;
    mime.setText(QStringLiteral("XY"));
    POINT at{};
    ctrl->ClientPointFromPosition(2, &at);
    const QPointF pt(at.x + 1, at.y + 1);
    QDragEnterEvent enter(pt.toPoint(), Qt::CopyAction | Qt::MoveAction, &mime, Qt::LeftButton, Qt::ControlModifier);
    QCoreApplication::sendEvent(viewport, &enter);
    EXPECT_TRUE(enter.isAccepted());
    EXPECT_EQ(enter.dropAction(), Qt::CopyAction);
    QDropEvent drop(pt, Qt::CopyAction | Qt::MoveAction, &mime, Qt::LeftButton, Qt::ControlModifier);
    drop.setDropAction(Qt::CopyAction);
    QCoreApplication::sendEvent(viewport, &drop);
    EXPECT_TRUE(drop.isAccepted());
    EXPECT_EQ(document->GetText(), "abXYcd");
    EXPECT_EQ(ctrl->GetSelectionStart(), 2);
    EXPECT_EQ(ctrl->GetSelectionEnd(), 4);
}

TEST_F(QtDragDrop, FileNamesTravelAsLocalUris) {
    UseCodePage(1252);
    QMimeData mime;
    mime.setUrls({QUrl::fromLocalFile(QStringLiteral("/tmp/caf\u00E9.txt")), QUrl(QStringLiteral("https://x.test/"))});
    const CLIPFORMAT fileName = RegisterClipboardFormat("FileName");
    const ClipboardFormats offered = FormatsFromMimeData(mime);
    const auto found = std::find_if(offered.begin(), offered.end(), [&](const auto& f) { return f.first == fileName; });
    ASSERT_NE(found, offered.end());
    EXPECT_EQ(found->second, std::string("/tmp/caf\xE9.txt\0", 14));
    QMimeData* back = MimeDataFromFormats(offered);
    ASSERT_EQ(back->urls().size(), 1);
    EXPECT_EQ(back->urls()[0].toLocalFile(), QStringLiteral("/tmp/caf\u00E9.txt"));
    delete back;
}

}  // namespace
