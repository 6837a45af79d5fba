#include "platform/qt/qtdialogs.h"

#include <QColorDialog>
#include <QFileDialog>
#include <QFontDatabase>
#include <QFontDialog>
#include <QMenu>

#include "platform/qt/qttext.h"
#include "platform/qt/qtwindowbackend.h"
#include "platform/qt/qtcontrolwidget.h"

namespace {

QWidget* OwnerWidget(HWND owner) {
    auto* backend = dynamic_cast<CQtWindowBackend*>(GetWindowBackend(owner));
    return backend ? backend->Widget() : nullptr;
}

}  // namespace

bool CQtDialogs::ChooseColor(HWND owner, COLORREF* color) {
    const QColor chosen = QColorDialog::getColor(Qt::black, OwnerWidget(owner));
    if (!chosen.isValid()) return false;
    *color = static_cast<COLORREF>(chosen.red() | chosen.green() << 8 | chosen.blue() << 16);
    return true;
}

bool CQtDialogs::ChooseFont(HWND owner, std::string* face) {
    bool ok = false;
    const QFont font = QFontDialog::getFont(&ok, QFont(QtTextFromCodePage(*face)), OwnerWidget(owner));
    if (ok) *face = CodePageTextFromQt(font.family());
    return ok;
}

bool CQtDialogs::OpenFile(HWND owner, std::string* path) {
    const QString chosen = QFileDialog::getOpenFileName(OwnerWidget(owner));
    if (chosen.isEmpty()) return false;
    *path = CodePageTextFromQt(chosen);
    return true;
}

int CQtDialogs::TrackPopupMenu(HWND owner, const std::vector<MenuEntry>& entries, POINT screen) {
    QMenu menu(OwnerWidget(owner));
    for (size_t i = 0; i < entries.size(); ++i) {
        QAction* action = menu.addAction(QtTextFromCodePage(entries[i].text));
        action->setCheckable(true);
        action->setChecked(entries[i].checked);
        action->setData(static_cast<int>(i + 1));
    }
    const QAction* chosen = menu.exec(QPoint(static_cast<int>(screen.x), static_cast<int>(screen.y)));
    return chosen ? chosen->data().toInt() : 0;
}

std::vector<std::string> CQtDialogs::FontFamilies() {
    std::vector<std::string> names;
    for (const QString& family : QFontDatabase::families()) names.push_back(CodePageTextFromQt(family));
    return names;
}
