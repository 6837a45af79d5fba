#include "platform/testing/testdialogs.h"

CTestDialogItems::CTestDialogItems(const DialogTemplate& dialog) : m_dialog(dialog) {}

const DialogItem* CTestDialogItems::Find(int id) const {
    for (const DialogItem& item : m_dialog.items)
        if (item.id == id && id != 0) return &item;
    return nullptr;
}

int CTestDialogItems::GetCheck(int id) const {
    auto it = m_checks.find(id);
    return it == m_checks.end() ? 0 : it->second;
}

void CTestDialogItems::SetCheck(int id, int check) {
    const DialogItem* item = Find(id);
    if (item && item->kind == DialogItemKind::CheckBox) m_checks[id] = check ? 1 : 0;
}

std::string CTestDialogItems::GetItemText(int id) const {
    auto it = m_texts.find(id);
    if (it != m_texts.end()) return it->second;
    const DialogItem* item = Find(id);
    return item ? item->text : std::string();
}

void CTestDialogItems::SetItemText(int id, const std::string& text) {
    if (Find(id)) m_texts[id] = text;
}

CTestDialogs::CTestDialogs() : m_pPrevious(SetDialogBackend(this)) {}

CTestDialogs::~CTestDialogs() { SetDialogBackend(m_pPrevious); }

int CTestDialogs::RunModal(HWND owner, const DialogTemplate& dialog, IDialogHandler* handler) {
    shown.push_back({owner, dialog});
    if (handler) {
        CTestDialogItems items(dialog);
        handler->OnInitDialog(items);
    }
    return answer;
}
