#include "platform/window/dialogs.h"

#include <utility>

namespace {

IDialogBackend* g_pDialogs = nullptr;

}  // namespace

IDialogBackend* SetDialogBackend(IDialogBackend* backend) { return std::exchange(g_pDialogs, backend); }

IDialogBackend* GetDialogBackend() { return g_pDialogs; }

BOOL ChooseColorDialog(HWND owner, COLORREF* color) {
    return (g_pDialogs && color && g_pDialogs->ChooseColor(owner, color)) ? TRUE : FALSE;
}

BOOL ChooseFontDialog(HWND owner, std::string* face) {
    return (g_pDialogs && face && g_pDialogs->ChooseFont(owner, face)) ? TRUE : FALSE;
}

BOOL OpenFileDialog(HWND owner, std::string* path) {
    return (g_pDialogs && path && g_pDialogs->OpenFile(owner, path)) ? TRUE : FALSE;
}

int TrackPopupMenu(HWND owner, const std::vector<MenuEntry>& entries, POINT screen) {
    return (g_pDialogs && !entries.empty()) ? g_pDialogs->TrackPopupMenu(owner, entries, screen) : 0;
}

std::vector<std::string> EnumFontFamilies() { return g_pDialogs ? g_pDialogs->FontFamilies() : std::vector<std::string>{}; }
