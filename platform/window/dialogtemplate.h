// Dialogs described as data: a template of items placed in dialog units, as the control's
// About box and property page are, and the services that run one modally or host one as a
// form. A backend (Qt's, or a scripted one in tests) builds the real dialog; without one no
// dialog shows and a modal run answers -1.
#pragma once
#include <string>
#include <vector>

#include "platform/window/window.h"

constexpr int IDOK = 1;
constexpr int IDCANCEL = 2;

enum class DialogItemKind { GroupBox, Static, DropDownList, CheckBox, PushButton, Icon };

// Styles of an item.
constexpr DWORD DIS_CENTER = 0x1;   // text centred
constexpr DWORD DIS_BORDER = 0x2;   // a sunken frame around the item
constexpr DWORD DIS_SORTED = 0x4;   // a list kept in order
constexpr DWORD DIS_DEFAULT = 0x8;  // the button that Enter presses

struct DialogItem {
    DialogItemKind kind;
    int id;  // 0 for an item no code addresses
    std::string text;
    int x, y, cx, cy;  // dialog units: a quarter of the font's mean character width, an eighth of its height
    DWORD style = 0;
};

struct DialogTemplate {
    UINT id;
    std::string caption;
    std::string fontName;
    int pointSize;
    int cx, cy;  // dialog units
    std::vector<DialogItem> items;
};

// The items of a dialog as code reads and writes them, by id.
class IDialogItems {
public:
    virtual ~IDialogItems() = default;
    virtual int GetCheck(int id) const = 0;  // 0 or 1; 0 for an item that is no check box
    virtual void SetCheck(int id, int check) = 0;
    virtual std::string GetItemText(int id) const = 0;
    virtual void SetItemText(int id, const std::string& text) = 0;
    virtual int GetListCount(int id) const = 0;  // the entries of a list; 0 for other items
};

// What a dialog is told as it opens (WM_INITDIALOG), with the items made.
class IDialogHandler {
public:
    virtual ~IDialogHandler() = default;
    virtual void OnInitDialog(IDialogItems& items) = 0;
};

// Shows dialogs made from templates (the desktop's colour, font and file dialogs have their
// own service: dialogs.h).
class IFormBackend {
public:
    virtual ~IFormBackend() = default;
    // Shows the dialog modally over `owner` (may be null) until a button closes it; gives the
    // button's id (IDCANCEL for the window's close box).
    virtual int RunModal(HWND owner, const DialogTemplate& dialog, IDialogHandler* handler) = 0;
};

// Installs the backend of dialogs made from templates; returns the previous one. The caller keeps ownership.
IFormBackend* SetFormBackend(IFormBackend* backend);
IFormBackend* GetFormBackend();

// Runs a modal dialog made from the template; -1 when there is no backend to show it.
int DialogBoxIndirect(HWND owner, const DialogTemplate& dialog, IDialogHandler* handler = nullptr);
