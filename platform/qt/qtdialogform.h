// Dialog templates as Qt widgets: a form of the template's items placed in dialog units (a
// quarter of the font's mean character width across, an eighth of its height down), which a
// property sheet hosts as a page, and the modal dialogs of the Qt backend.
#pragma once
#include <QDialog>
#include <QWidget>
#include <map>

#include "platform/window/dialogtemplate.h"

class CQtDialogForm : public QWidget, public IDialogItems {
    Q_OBJECT
public:
    CQtDialogForm(const DialogTemplate& dialog, QWidget* parent = nullptr);

    int GetCheck(int id) const override;
    void SetCheck(int id, int check) override;
    std::string GetItemText(int id) const override;
    void SetItemText(int id, const std::string& text) override;
    int GetListCount(int id) const override;

    // The widget of an item, null for an id the form does not have.
    QWidget* Item(int id) const;
    // The form's size in pixels for its font.
    QSize sizeHint() const override { return m_size; }

signals:
    // A push button of the form was pressed.
    void buttonPressed(int id);
    // The user changed an item.
    void itemChanged(int id);

private:
    QRect Pixels(int x, int y, int cx, int cy) const;

    QSizeF m_unit;
    QSize m_size;
    std::map<int, QWidget*> m_items;
};

// The dialogs of the Qt backend: a QDialog holding the form, closed by its push buttons.
class CQtForms : public IFormBackend {
public:
    int RunModal(HWND owner, const DialogTemplate& dialog, IDialogHandler* handler) override;
};
