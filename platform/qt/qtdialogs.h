// The desktop's dialogs and popup menus through Qt: QColorDialog, QFontDialog, QFileDialog and
// QMenu, each modal over the owner's widget.
#pragma once
#include "platform/window/dialogs.h"

class CQtDialogs : public IDialogBackend {
public:
    bool ChooseColor(HWND owner, COLORREF* color) override;
    bool ChooseFont(HWND owner, std::string* face) override;
    bool OpenFile(HWND owner, std::string* path) override;
    int TrackPopupMenu(HWND owner, const std::vector<MenuEntry>& entries, POINT screen) override;
    std::vector<std::string> FontFamilies() override;
};
