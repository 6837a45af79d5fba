// The desktop's common dialogs and popup menus that the control opens for the user: colour,
// font and file choice, and a menu of options at a point. A backend (Qt's dialogs, or the test
// backend's script) answers them; without one every dialog is cancelled.
#pragma once
#include <string>
#include <vector>

#include "platform/window/window.h"

struct MenuEntry {
    std::string text;  // '&' marks the mnemonic
    bool checked = false;
};

class IDialogBackend {
public:
    virtual ~IDialogBackend() = default;
    // Each gives true for OK, with the choice in the out parameter.
    virtual bool ChooseColor(HWND owner, COLORREF* color) = 0;
    // Screen fonts without a size: starts at `face` and gives the chosen face name.
    virtual bool ChooseFont(HWND owner, std::string* face) = 0;
    // An Open dialog with no filter: the full path of the chosen file.
    virtual bool OpenFile(HWND owner, std::string* path) = 0;
    // Shows the entries at a screen point until one is chosen or the menu is dismissed; gives
    // the chosen entry's index from 1, or 0.
    virtual int TrackPopupMenu(HWND owner, const std::vector<MenuEntry>& entries, POINT screen) = 0;
    // The names of the font families of the screen.
    virtual std::vector<std::string> FontFamilies() = 0;
};

// Installs the dialog backend; returns the previous one. The caller keeps ownership.
IDialogBackend* SetDialogBackend(IDialogBackend* backend);
IDialogBackend* GetDialogBackend();

BOOL ChooseColorDialog(HWND owner, COLORREF* color);
BOOL ChooseFontDialog(HWND owner, std::string* face);
BOOL OpenFileDialog(HWND owner, std::string* path);
int TrackPopupMenu(HWND owner, const std::vector<MenuEntry>& entries, POINT screen);
std::vector<std::string> EnumFontFamilies();
