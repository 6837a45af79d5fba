#include "platform/window/dialogtemplate.h"

#include <utility>

namespace {

IDialogBackend* g_dialogs = nullptr;

}  // namespace

IDialogBackend* SetDialogBackend(IDialogBackend* backend) { return std::exchange(g_dialogs, backend); }

IDialogBackend* GetDialogBackend() { return g_dialogs; }

int DialogBoxIndirect(HWND owner, const DialogTemplate& dialog, IDialogHandler* handler) {
    return g_dialogs ? g_dialogs->RunModal(owner, dialog, handler) : -1;
}
