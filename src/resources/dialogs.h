// The dialog resources: the About box and the form of the property page, by number.
#pragma once
#include "platform/window/dialogtemplate.h"

constexpr UINT IDD_ABOUTBOX = 1;
constexpr UINT IDD_PROPPAGE = 100;

// Items of the property page's form.
constexpr int IDC_STYLE_NAME = 204;
constexpr int IDC_STYLE_SAMPLE = 205;
constexpr int IDC_STYLE_BOLD = 206;
constexpr int IDC_STYLE_ITALIC = 207;

// The About box: the module's icon, its name and version, and OK.
const DialogTemplate& AboutDialog();
// The property page's form; its caption is string 100.
const DialogTemplate& PropPageDialog();
