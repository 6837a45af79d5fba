#include "platform/window/dialogtemplate.h"

#include <utility>

namespace {

IFormBackend* g_forms = nullptr;

}  // namespace

IFormBackend* SetFormBackend(IFormBackend* backend) { return std::exchange(g_forms, backend); }

IFormBackend* GetFormBackend() { return g_forms; }

int DialogBoxIndirect(HWND owner, const DialogTemplate& dialog, IDialogHandler* handler) {
    return g_forms ? g_forms->RunModal(owner, dialog, handler) : -1;
}
