#include "platform/window/cursor.h"

#include <map>
#include <utility>

namespace {

std::map<UINT, CursorPicture>& Pictures() {
    static auto* pictures = new std::map<UINT, CursorPicture>;
    return *pictures;
}

HCURSOR& Current() {
    static HCURSOR cursor = nullptr;
    return cursor;
}

bool IsSystemCursor(UINT id) { return id == IDC_ARROW || id == IDC_IBEAM; }

}  // namespace

void RegisterCursorPicture(UINT id, CursorPicture picture) { Pictures()[id] = std::move(picture); }

const CursorPicture* FindCursorPicture(UINT id) {
    auto it = Pictures().find(id);
    return it == Pictures().end() ? nullptr : &it->second;
}

// A cursor handle is its id: both kinds of cursor live as long as the process.
HCURSOR LoadCursor(UINT id) {
    if (!IsSystemCursor(id) && !FindCursorPicture(id)) return nullptr;
    return reinterpret_cast<HCURSOR>(static_cast<uintptr_t>(id));
}

UINT CursorId(HCURSOR cursor) { return static_cast<UINT>(reinterpret_cast<uintptr_t>(cursor)); }

HCURSOR SetCursor(HCURSOR cursor) {
    const HCURSOR previous = std::exchange(Current(), cursor);
    if (IPlatformBackend* platform = GetPlatformBackend()) platform->SetCursor(CursorId(cursor));
    return previous;
}

HCURSOR GetCursor() { return Current(); }
