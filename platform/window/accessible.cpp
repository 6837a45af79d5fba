#include "platform/window/accessible.h"

#include "platform/window/registry.h"

BOOL SetAccessibleText(HWND hwnd, IAccessibleText* text) {
    RecordPtr rec = FindLiveRecord(hwnd);
    if (!rec) return FALSE;
    rec->pAccessible = text;
    return TRUE;
}

IAccessibleText* GetAccessibleText(HWND hwnd) {
    RecordPtr rec = FindLiveRecord(hwnd);
    return rec ? rec->pAccessible : nullptr;
}

bool AccessibilityActive(HWND hwnd) {
    RecordPtr rec = FindLiveRecord(hwnd);
    return rec && rec->pAccessible && rec->pBackend->AccessibilityActive();
}

void NotifyAccessible(HWND hwnd, const AccessibleTextEvent& event) {
    if (RecordPtr rec = FindLiveRecord(hwnd)) rec->pBackend->AccessibleEvent(event);
}
