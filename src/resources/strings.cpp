#include "src/resources/strings.h"

#include <map>

namespace {

const std::map<UINT, const char*>& StringTable() {
    static const std::map<UINT, const char*> table = {
        {1, "Zentrel Control"},
        {2, "Zentrel Property Page"},
        {100, "General"},
        {101, "Index is out of range."},
        {102, "Invalid Morvane HTML document object."},
        {153, "None"},
        {154, "Text"},
        {155, "Tag"},
        {156, "Attribute"},
        {157, "Operator"},
        {158, "Comment"},
        {159, "Error"},
        {160, "URL Value"},
        {161, "String Value"},
        {162, "Integer Value"},
        {163, "Color Value"},
        {164, "Enum Value"},
        {165, "Invisible character"},
        {166, "Selection"},
        {167, "Maximum column must be greater than or equal to %1 and small than or equal to %2"},
        {168, "Position is out of range"},
        {169, "No HTML document attached"},
        {170, "Defined in %1"},
        {171, "No description"},
        {172, "No source description"},
        {173, "Bookmark index is out of range"},
        {174, "Bookmark %d"},
        {175, "Error occured at printing document."},
        {176, "Tolvik Professional\r\n<DOCPATHNAME>\r\n<DATETIME>"},
        {177, "Page <PAGE>"},
        {178, "Collapsed text block"},
        {179, "Inserting converted character"},
        {180, "Replacing with converted character"},
        {181, "Line number"},
        {182, "The quick brown fox jumps over the lazy dog while the printer hums along. Lines of markup follow one "
              "another down the page, each in its own colour, and the columns fill from the left to the right."},
        {183, "Please enter an integer between %1 and %2."},
        {184, "Printing"},
                {185, "String"},
        {186, "Integer"},
        {187, "The margins leave no room for text on the page."},
        {189, "Proportional Integer"},
        {190, "Integer Set"},
        {193, "GUID"},
        {194, "Style Name"},
        {195, "Style Class"},
        {196, "Script Function"},
        {197, "A String is usually plain text and made from an ordered sequence (i.e. string) of aplha-numeric characters."},
        {198, "An Integer is a whole number that can include zero and negative numbers. An Integer can never include a decimal point."},
        {199, "A Proportional Integer is similar to an ordinary Integer but can also define relative sizes (%)."},
        {200, "A Multiple Integer defines the vertices of a shape in the format: x1,y1,x2,y2,x3,y3,x4,y4 etc. For example: 1,1,1,-1,-1,-1,-1,1 defines a square centered on the origin."},
        {201, "A GUID is a 128 bit Integer that identifies a class uniquely."},
        {202, "A Style Name is a string that uniquely defines a Style Name. (i.e., it's the name of a Style Sheet definition.)"},
        {203, "The Style Class is a string that defines a style class. (i.e., it's the name of a Style Class.)"},
        {204, "This is script string."},
        {205, "&Uppercase"},
        {206, "&Lowercase"},
        {207, "Hex in &Uppercase"},
        {208, "Hex in &Lowercase"},
        {209, "&Name in Uppercase"},
        {210, "N&ame in Lowercase"},
        {211, "&User-defined Color"},
        {212, "U&nchanged"},
    };
    return table;
}

}  // namespace

std::string LoadString(UINT id) {
    auto it = StringTable().find(id);
    return it == StringTable().end() ? std::string() : std::string(it->second);
}

std::string FormatMessage(const std::string& format, std::initializer_list<std::string> args) {
    std::string out;
    for (size_t i = 0; i < format.size(); ++i) {
        char next = i + 1 < format.size() ? format[i + 1] : '\0';
        size_t n = static_cast<size_t>(next - '1');
        if (format[i] == '%' && next >= '1' && next <= '9' && n < args.size()) {
            out += *(args.begin() + n);
            ++i;
            // A printf form behind the number ("%1!d!") says how the argument was formatted.
            if (i + 1 < format.size() && format[i + 1] == '!') {
                if (size_t close = format.find('!', i + 2); close != std::string::npos) i = close;
            }
        } else {
            out += format[i];
        }
    }
    return out;
}
