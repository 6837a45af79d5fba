// The caret of the thread: who owns it, where it is, and its hide count. The owner's backend is
// told of every change it can see; drawing and blinking are the backend's.
#include "platform/window/caret.h"

#include <algorithm>

#include "platform/window/registry.h"

namespace {

struct CCaret {
    HWND owner = nullptr;  // null: there is no caret
    POINT pos{};
    SIZE size{};
    int nHideCount = 0;
};

CCaret& Caret() {
    static CCaret caret;
    return caret;
}

RECT CaretRect(const CCaret& caret) {
    return {caret.pos.x, caret.pos.y, caret.pos.x + caret.size.cx, caret.pos.y + caret.size.cy};
}

void Notify(HWND owner, bool shown, const RECT& rc) {
    if (RecordPtr rec = FindRecord(owner); rec && rec->pBackend) rec->pBackend->CaretChanged(shown, rc);
}

void NotifyOwner() {
    const CCaret& caret = Caret();
    Notify(caret.owner, caret.nHideCount == 0, CaretRect(caret));
}

// The caret's owner if `hwnd` names it (null names the owner), else null.
HWND OwnerNamed(HWND hwnd) {
    const HWND owner = Caret().owner;
    return owner && (!hwnd || hwnd == owner) ? owner : nullptr;
}

}  // namespace

BOOL CreateCaret(HWND hwnd, const void* bitmap, int width, int height) {
    if (bitmap || !FindLiveRecord(hwnd)) return FALSE;
    DestroyCaret();
    CCaret& caret = Caret();
    caret.owner = hwnd;
    caret.pos = {};
    // A size of 0 stands for the thinnest line, one pixel.
    caret.size = {std::max(width, 1), std::max(height, 1)};
    caret.nHideCount = 1;
    NotifyOwner();
    return TRUE;
}

BOOL DestroyCaret() {
    CCaret& caret = Caret();
    if (!caret.owner) return FALSE;
    const HWND owner = caret.owner;
    const RECT rc = CaretRect(caret);
    caret = CCaret{};
    Notify(owner, false, rc);
    return TRUE;
}

void CaretOwnerGone(HWND hwnd) {
    if (Caret().owner == hwnd) Caret() = CCaret{};
}

BOOL SetCaretPos(int x, int y) {
    CCaret& caret = Caret();
    if (!caret.owner) return FALSE;
    if (caret.pos == POINT{x, y}) return TRUE;
    caret.pos = {x, y};
    NotifyOwner();
    return TRUE;
}

BOOL GetCaretPos(POINT* pt) {
    if (!pt) return FALSE;
    *pt = Caret().pos;
    return Caret().owner ? TRUE : FALSE;
}

BOOL HideCaret(HWND hwnd) {
    if (!OwnerNamed(hwnd)) return FALSE;
    if (Caret().nHideCount++ == 0) NotifyOwner();
    return TRUE;
}

BOOL ShowCaret(HWND hwnd) {
    if (!OwnerNamed(hwnd)) return FALSE;
    CCaret& caret = Caret();
    // A caret that shows already stays shown: the count does not go below 0.
    if (caret.nHideCount > 0 && --caret.nHideCount == 0) NotifyOwner();
    return TRUE;
}

HWND GetCaretOwner() { return Caret().owner; }
bool IsCaretShown() { return Caret().owner && Caret().nHideCount == 0; }
RECT GetCaretRect() { return Caret().owner ? CaretRect(Caret()) : RECT{}; }
