#include "src/paint/formatstyle.h"

const FormatStyleTable& DefaultFormatStyles() {
    static const FormatStyleTable table = {{
        {0x000000, 0xFFFFFF, 0},                  // None
        {0x000000, 0xFFFFFF, 0},                  // Text
        {0x800000, 0xFFFFFF, 0},                  // Operator
        {0x00FFFF, 0x0000FF, FONT_ITALIC},        // Error
        {0xFF0000, 0xFFFFFF, FONT_BOLD},          // Tag
        {0xFF00FF, 0xFFFFFF, 0},                  // Attribute
        {0xFFFFFF, 0xC0C0C0, FONT_ITALIC},        // Comment
        {0x008000, 0xFFFFFF, 0},                  // String Value
        {0x800000, 0xFFFFFF, 0},                  // Integer Value
        {0x800080, 0xFFFFFF, 0},                  // Enum Value
        {0x808000, 0xFFFFFF, 0},                  // Color Value
        {0x000080, 0xFFFFFF, 0},                  // URL Value
        {0x808080, 0xFFFFFF, FONT_ROLE_SYMBOL},   // Invisible character
        {0xFFFFFF, 0x000000, 0},                  // Selection
        {0x000000, 0xFFFFFF, FONT_ROLE_GUTTER},   // Line number
        {0x000000, 0xFFFFFF, FONT_BOLD},          // Collapsed text block
    }};
    return table;
}

UINT FormatStyleNameId(int index) {
    static const UINT kIds[FORMAT_COUNT] = {153, 154, 157, 159, 155, 156, 158, 161,
                                            162, 164, 163, 160, 165, 166, 181, 178};
    return index >= 0 && index < FORMAT_COUNT ? kIds[index] : 0;
}
