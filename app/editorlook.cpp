#include "app/editorlook.h"

#include "src/paint/formatstyle.h"
#include "src/view/module.h"
#include "src/view/zentrelctrl.h"

namespace {

// Colours as 0x00BBGGRR.
constexpr COLORREF Rgb(unsigned r, unsigned g, unsigned b) { return r | (g << 8) | (b << 16); }

constexpr COLORREF kInk = Rgb(0x1F, 0x23, 0x28);
constexpr COLORREF kPaper = Rgb(0xFF, 0xFF, 0xFF);
constexpr COLORREF kMuted = Rgb(0x6E, 0x77, 0x81);

// Dark text on white, one hue per kind of markup, comments in a muted grey rather than on a
// coloured band, errors marked by a pale red band, and a light blue selection.
constexpr FormatStyle kModernStyles[FORMAT_COUNT] = {
    {kInk, kPaper, 0},                                       // None
    {kInk, kPaper, 0},                                       // Text
    {kMuted, kPaper, 0},                                     // Operator
    {Rgb(0xCF, 0x22, 0x2E), Rgb(0xFF, 0xEB, 0xE9), 0},       // Error
    {Rgb(0x11, 0x63, 0x29), kPaper, 0},                      // Tag
    {Rgb(0x95, 0x38, 0x00), kPaper, 0},                      // Attribute
    {kMuted, kPaper, FONT_ITALIC},                           // Comment
    {Rgb(0x0A, 0x30, 0x69), kPaper, 0},                      // String value
    {Rgb(0x05, 0x50, 0xAE), kPaper, 0},                      // Integer value
    {Rgb(0x82, 0x50, 0xDF), kPaper, 0},                      // Enumerated value
    {Rgb(0xBF, 0x39, 0x89), kPaper, 0},                      // Colour value
    {Rgb(0x05, 0x50, 0xAE), kPaper, FONT_UNDERLINE},         // URL value
    {Rgb(0xAF, 0xB8, 0xC1), kPaper, FONT_ROLE_SYMBOL},       // Invisible character
    {kInk, Rgb(0xB6, 0xD7, 0xFF), 0},                        // Selection
    {kMuted, Rgb(0xF6, 0xF8, 0xFA), FONT_ROLE_GUTTER},     // Line number
    {kInk, Rgb(0xEA, 0xEE, 0xF2), FONT_BOLD},                // Collapsed text block
};

// A face the set-up installs, at a size that reads well at common resolutions.
const FontDesc kModernFont{"DejaVu Sans Mono", 100000, 400, 1};
constexpr SHORT kModernTabSize = 4;
constexpr SHORT kClassicTabSize = 5;

void ApplyStyles(CZentrelCtrl* ctrl, const FormatStyle* styles) {
    for (SHORT i = 0; i < FORMAT_COUNT; ++i) {
        ctrl->SetFormatTextColor(i, styles[i].crText);
        ctrl->SetFormatBackColor(i, styles[i].crBack);
        ctrl->SetFormatStyleWord(i, static_cast<long>(styles[i].dwFont));
    }
}

}  // namespace

void ApplyEditorLook(CZentrelCtrl* ctrl, EditorLook look) {
    const bool modern = look == EditorLook::Modern;
    ApplyStyles(ctrl, modern ? kModernStyles : DefaultFormatStyles().data());
    ctrl->SetBackColor(modern ? kPaper : DefaultFormatStyles()[STYLE_NONE].crBack);
    ctrl->SetTabSize(modern ? kModernTabSize : kClassicTabSize);
    // A plain gutter in the modern look; the classic one has its watermark tile.
    ctrl->SetOption(OPT_GUTTERBITMAPVISIBLE, modern ? FALSE : TRUE);
    // The font goes last: it measures again and lays the text out once, with the new tab size.
    ctrl->SetEditFont(modern ? kModernFont : DefaultEditFont());
    ctrl->Refresh();
}
