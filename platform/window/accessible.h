// What a window tells assistive technology about the text it shows. The window answers from its
// own data, by offset (the text's byte positions) and by line, so that no question costs more
// than the stretch of text it asks about; the toolkit's accessibility layer asks through
// GetAccessibleText. The window tells of typing, caret moves and selection through the Notify
// calls, which cost nothing while no assistive technology listens.
#pragma once
#include <string>

#include "platform/window/window.h"

class IAccessibleText {
public:
    virtual long Length() = 0;
    // The bytes from `start` to `end`, both clamped to the text.
    virtual std::string Text(long start, long end) = 0;
    // The bounds of the character, word and line (as shown, with its line break) at `pos`.
    virtual void CharBounds(long pos, long* start, long* end) = 0;
    virtual void WordBounds(long pos, long* start, long* end) = 0;
    virtual void LineBounds(long pos, long* start, long* end) = 0;
    // The caret (the active end) and the anchor of the selection.
    virtual void Selection(long* active, long* anchor) = 0;
    virtual void SetSelection(long active, long anchor) = 0;
    // Replaces the bytes from `start` to `end` as typing would; FALSE where the text takes no edit.
    virtual BOOL Replace(long start, long end, const std::string& text) = 0;
    virtual BOOL ReadOnly() = 0;
    // The character's box in client pixels, and the position under a client point.
    virtual RECT CharRect(long pos) = 0;
    virtual long PositionAt(POINT pt) = 0;
    virtual void ScrollIntoView(long start, long end) = 0;

protected:
    ~IAccessibleText() = default;
};

// What a window tells the toolkit's accessibility layer. A backend without one ignores it.
struct AccessibleTextEvent {
    enum Kind { Inserted, Removed, Caret };
    Kind kind = Caret;
    long pos = 0;        // where the text changed, or the caret
    long count = 0;      // bytes removed
    std::string text;    // bytes inserted
    long anchor = 0;     // the selection's other end, for Caret
};

// Gives a window its accessible text; null takes it away. FALSE for an invalid handle.
BOOL SetAccessibleText(HWND hwnd, IAccessibleText* text);
IAccessibleText* GetAccessibleText(HWND hwnd);
// Whether anything listens to the window's accessible events; a window need not gather what it
// would tell while nothing does.
bool AccessibilityActive(HWND hwnd);
void NotifyAccessible(HWND hwnd, const AccessibleTextEvent& event);
