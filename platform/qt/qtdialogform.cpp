#include "platform/qt/qtdialogform.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFontMetricsF>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QStyle>

#include "platform/qt/qttext.h"
#include "platform/qt/qtwindow.h"

namespace {

// The dialog font: the template's face where the system has it, else the application's, at
// the template's size.
QFont DialogFont(const DialogTemplate& dialog) {
    QFont font = QApplication::font();
    font.setPointSize(dialog.pointSize);
    return font;
}

QWidget* MakeItem(const DialogItem& item, QWidget* parent) {
    const QString text = QtTextFromCodePage(item.text);
    switch (item.kind) {
        case DialogItemKind::GroupBox: return new QGroupBox(text, parent);
        case DialogItemKind::CheckBox: return new QCheckBox(text, parent);
        case DialogItemKind::DropDownList: {
            auto* combo = new QComboBox(parent);
            combo->setEditable(false);
            return combo;
        }
        case DialogItemKind::PushButton: {
            auto* button = new QPushButton(text, parent);
            button->setDefault(item.style & DIS_DEFAULT);
            return button;
        }
        case DialogItemKind::Icon: {
            auto* label = new QLabel(parent);
            label->setPixmap(QApplication::style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(32, 32));
            return label;
        }
        case DialogItemKind::Static: break;
    }
    auto* label = new QLabel(text, parent);
    if (item.style & DIS_CENTER) label->setAlignment(Qt::AlignCenter);
    if (item.style & DIS_BORDER) label->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    return label;
}

}  // namespace

CQtDialogForm::CQtDialogForm(const DialogTemplate& dialog, QWidget* parent) : QWidget(parent) {
    setFont(DialogFont(dialog));
    QFontMetricsF metrics(font());
    const QString alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    m_unit = {metrics.horizontalAdvance(alphabet) / alphabet.size() / 4.0, metrics.height() / 8.0};
    m_size = Pixels(0, 0, dialog.cx, dialog.cy).size();
    setMinimumSize(m_size);
    // Labels that name a control (an "&" in their text) take their buddy from the next item.
    QLabel* pendingBuddy = nullptr;
    for (const DialogItem& item : dialog.items) {
        QWidget* widget = MakeItem(item, this);
        // A drop-down list's height is that of its open list; closed it is one row.
        QRect rc = Pixels(item.x, item.y, item.cx, item.cy);
        if (item.kind == DialogItemKind::DropDownList) rc.setHeight(widget->sizeHint().height());
        widget->setGeometry(rc);
        if (pendingBuddy) pendingBuddy->setBuddy(widget);
        pendingBuddy = nullptr;
        if (auto* label = qobject_cast<QLabel*>(widget); label && item.text.find('&') != std::string::npos) pendingBuddy = label;
        if (item.kind == DialogItemKind::GroupBox) widget->lower();
        if (item.id == 0) continue;
        m_items[item.id] = widget;
        const int id = item.id;
        if (auto* button = qobject_cast<QPushButton*>(widget))
            connect(button, &QPushButton::clicked, this, [this, id] { emit buttonPressed(id); });
        else if (auto* check = qobject_cast<QCheckBox*>(widget))
            connect(check, &QCheckBox::toggled, this, [this, id] { emit itemChanged(id); });
        else if (auto* combo = qobject_cast<QComboBox*>(widget))
            connect(combo, &QComboBox::currentIndexChanged, this, [this, id] { emit itemChanged(id); });
    }
}

QRect CQtDialogForm::Pixels(int x, int y, int cx, int cy) const {
    return QRect(qRound(x * m_unit.width()), qRound(y * m_unit.height()), qRound(cx * m_unit.width()),
                 qRound(cy * m_unit.height()));
}

QWidget* CQtDialogForm::Item(int id) const {
    auto it = m_items.find(id);
    return it == m_items.end() ? nullptr : it->second;
}

int CQtDialogForm::GetCheck(int id) const {
    auto* check = qobject_cast<QCheckBox*>(Item(id));
    return check && check->isChecked() ? 1 : 0;
}

void CQtDialogForm::SetCheck(int id, int check) {
    if (auto* box = qobject_cast<QCheckBox*>(Item(id))) box->setChecked(check != 0);
}

std::string CQtDialogForm::GetItemText(int id) const {
    QWidget* item = Item(id);
    if (auto* label = qobject_cast<QLabel*>(item)) return CodePageTextFromQt(label->text());
    if (auto* combo = qobject_cast<QComboBox*>(item)) return CodePageTextFromQt(combo->currentText());
    if (auto* button = qobject_cast<QAbstractButton*>(item)) return CodePageTextFromQt(button->text());
    return {};
}

void CQtDialogForm::SetItemText(int id, const std::string& text) {
    QWidget* item = Item(id);
    if (auto* label = qobject_cast<QLabel*>(item)) label->setText(QtTextFromCodePage(text));
    else if (auto* button = qobject_cast<QAbstractButton*>(item)) button->setText(QtTextFromCodePage(text));
}

int CQtDialogForm::GetListCount(int id) const {
    auto* combo = qobject_cast<QComboBox*>(Item(id));
    return combo ? combo->count() : 0;
}

int CQtForms::RunModal(HWND owner, const DialogTemplate& dialog, IDialogHandler* handler) {
    QDialog box(QtWidgetFromHwnd(owner));
    box.setWindowTitle(QtTextFromCodePage(dialog.caption));
    auto* form = new CQtDialogForm(dialog, &box);
    box.setFixedSize(form->sizeHint());
    QObject::connect(form, &CQtDialogForm::buttonPressed, &box, &QDialog::done);
    if (handler) handler->OnInitDialog(*form);
    const int result = box.exec();
    return result == QDialog::Rejected ? IDCANCEL : result;
}
