// Scripted dialogs made from templates for unit tests: the items of a form as plain values, and
// a backend that records each dialog it is asked to run and closes it at once with a chosen
// button.
#pragma once
#include <map>
#include <vector>

#include "platform/window/dialogtemplate.h"

// The items of a template as values: check boxes start clear, texts as the template has them,
// lists empty.
class CTestFormItems : public IDialogItems {
public:
    explicit CTestFormItems(const DialogTemplate& dialog);
    int GetCheck(int id) const override;
    void SetCheck(int id, int check) override;
    std::string GetItemText(int id) const override;
    void SetItemText(int id, const std::string& text) override;
    int GetListCount(int id) const override { return 0; }

private:
    const DialogItem* Find(int id) const;
    const DialogTemplate& m_dialog;
    std::map<int, int> m_checks;
    std::map<int, std::string> m_texts;
};

class CTestForms : public IFormBackend {
public:
    // Installed for the object's lifetime.
    CTestForms();
    ~CTestForms() override;
    CTestForms(const CTestForms&) = delete;
    CTestForms& operator=(const CTestForms&) = delete;

    int RunModal(HWND owner, const DialogTemplate& dialog, IDialogHandler* handler) override;

    struct Shown {
        HWND owner;
        DialogTemplate dialog;
    };
    std::vector<Shown> shown;
    int answer = IDOK;  // the button that closes the next dialogs

private:
    IFormBackend* m_pPrevious;
};
