#include "platform/testing/testforms.h"

CTestFormItems::CTestFormItems(const DialogTemplate& dialog) : m_dialog(dialog) {}

const DialogItem* CTestFormItems::Find(int id) const {
    for (const DialogItem& item : m_dialog.items)
        if (item.id == id && id != 0) return &item;
    return nullptr;
}

int CTestFormItems::GetCheck(int id) const {
    auto it = m_checks.find(id);
    return it == m_checks.end() ? 0 : it->second;
}

void CTestFormItems::SetCheck(int id, int check) {
    const DialogItem* item = Find(id);
    if (item && item->kind == DialogItemKind::CheckBox) m_checks[id] = check ? 1 : 0;
}

std::string CTestFormItems::GetItemText(int id) const {
    auto it = m_texts.find(id);
    if (it != m_texts.end()) return it->second;
    const DialogItem* item = Find(id);
    return item ? item->text : std::string();
}

void CTestFormItems::SetItemText(int id, const std::string& text) {
    if (Find(id)) m_texts[id] = text;
}

CTestForms::CTestForms() : m_pPrevious(SetFormBackend(this)) {}

CTestForms::~CTestForms() { SetFormBackend(m_pPrevious); }

int CTestForms::RunModal(HWND owner, const DialogTemplate& dialog, IDialogHandler* handler) {
    shown.push_back({owner, dialog});
    if (handler) {
        CTestFormItems items(dialog);
        handler->OnInitDialog(items);
    }
    return answer;
}
