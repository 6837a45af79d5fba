#include "src/resources/dialogs.h"

#include "src/resources/strings.h"

const DialogTemplate& AboutDialog() {
    static const DialogTemplate dialog{
        IDD_ABOUTBOX, "About Zentrel Control", "MS Sans Serif", 8, 217, 55,
        {
            {DialogItemKind::Icon, 0, {}, 11, 17, 20, 20},
            {DialogItemKind::Static, 0, "Zentrel Control, Version 2.0", 40, 25, 119, 8},
            {DialogItemKind::PushButton, IDOK, "OK", 178, 7, 32, 14, DIS_DEFAULT},
        }};
    return dialog;
}

const DialogTemplate& PropPageDialog() {
    static const DialogTemplate dialog{
        IDD_PROPPAGE, LoadString(100), "MS Sans Serif", 8, 250, 121,
        {
            {DialogItemKind::GroupBox, 0, "Syntax Highlight Style", 5, 5, 150, 60},
            {DialogItemKind::Static, 0, "&Name:", 20, 17, 22, 8},
            {DialogItemKind::DropDownList, IDC_STYLE_NAME, {}, 45, 15, 105, 70, DIS_SORTED},
            {DialogItemKind::CheckBox, IDC_STYLE_BOLD, "&Bold", 10, 35, 30, 10},
            {DialogItemKind::CheckBox, IDC_STYLE_ITALIC, "&Italic", 10, 50, 31, 10},
            {DialogItemKind::Static, IDC_STYLE_SAMPLE, "Sample", 45, 35, 105, 25, DIS_CENTER | DIS_BORDER},
        }};
    return dialog;
}
