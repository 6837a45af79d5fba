#include "app/editorwindow.h"

#include <QAction>
#include <QActionGroup>
#include <QFileDialog>
#include <QFontDialog>
#include <QInputDialog>
#include <QMenuBar>
#include <QMessageBox>
#include <QStatusBar>
#include <cstdio>

#include "platform/qt/qtplatform.h"
#include "platform/qt/qtwindow.h"
#include "src/view/module.h"

// Hears the control's events and shows them in the status line.
class CStatusSink final : public IDispatch {
public:
    explicit CStatusSink(CEditorWindow* window) : m_pWindow(window) {}
    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (riid == IID_IUnknown || riid == IID_IDispatch) return HandOut(static_cast<IDispatch*>(this), ppv);
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return 1; }   // owned by the window
    ULONG Release() override { return 1; }
    HRESULT GetIDsOfNames(const std::string&, DISPID*) override { return DISP_E_UNKNOWNNAME; }
    HRESULT Invoke(DISPID id, WORD, std::vector<Variant>& args, Variant*, ExcepInfo*) override {
        QString text = id == EVENT_DOCUMENTCHANGED ? "DocumentChanged" : id == EVENT_SELECTIONCHANGED ? "SelectionChanged"
                                                                                                     : QString("Event %1").arg(id);
        QStringList values;
        for (const Variant& v : args) {
            int32_t n = 0;
            if (v.ToLong(&n)) values << QString::number(n);
        }
        m_pWindow->ShowEvent(text + "(" + values.join(", ") + ")");
        return S_OK;
    }

private:
    CEditorWindow* m_pWindow;
};

CEditorWindow::CEditorWindow() : m_doc(CreateHtmlDocument()), m_sink(std::make_unique<CStatusSink>(this)) {
    m_pPreviousPlatform = SetPlatformBackend(&m_platform);
    m_pCtrl = CreateZentrelCtrl();
    m_dwCookie = m_pCtrl->AdviseEvents(m_sink.get());
    HWND hwnd = CreateQtChildWindow(m_pCtrl, nullptr);
    setCentralWidget(QtWidgetFromHwnd(hwnd));
    m_pCtrl->SetDocument(static_cast<IDispatch*>(m_doc.Get()));
    BuildMenus();
    statusBar()->showMessage("Ready");
}

CEditorWindow::~CEditorWindow() {
    m_pCtrl->UnadviseEvents(m_dwCookie);
    m_pCtrl->DestroyControlWindow();
    m_pCtrl->Release();
    SetPlatformBackend(m_pPreviousPlatform);
}

bool CEditorWindow::OpenFile(const QString& path) {
    std::string error;
    if (FAILED(m_doc->LoadFile(path.toStdString(), &error))) {
        QString text = QString("Cannot open %1: %2").arg(path, QString::fromStdString(error));
        if (isVisible()) QMessageBox::warning(this, "zentrel-edit", text);
        else std::fprintf(stderr, "%s\n", qPrintable(text));
        return false;
    }
    setWindowTitle(path + " - zentrel-edit");
    ShowEvent(QString("%1 bytes, %2 lines, %3, %4 undecodable bytes")
                  .arg(m_doc->GetLength())
                  .arg(m_pCtrl->GetLineCount())
                  .arg(QString::fromStdString(m_doc->Encoding()))
                  .arg(m_doc->LastLoad().nUndecodable));
    return true;
}

void CEditorWindow::ShowEvent(const QString& text) {
    // The newest events first; of a burst of one event only the latest shows, so that typing
    // does not push the other events out.
    if (!m_events.isEmpty() && m_events.front().startsWith(text.section('(', 0, 0) + "(")) m_events.pop_front();
    m_events.push_front(text);
    while (m_events.size() > kShownEvents) m_events.pop_back();
    statusBar()->showMessage(QString("%1   |   LineCount %2").arg(m_events.join("   ")).arg(m_pCtrl->GetLineCount()));
}

void CEditorWindow::BuildMenus() {
    QMenu* file = menuBar()->addMenu("&File");
    file->addAction("&Open...", QKeySequence::Open, this, &CEditorWindow::Open);
    file->addAction("&Save", QKeySequence::Save, this, &CEditorWindow::Save);
    file->addSeparator();
    file->addAction("&Quit", QKeySequence::Quit, this, &QWidget::close);
    QMenu* view = menuBar()->addMenu("&View");
    struct Option {
        const char* label;
        DWORD mask;
    };
    for (Option o : {Option{"&Word wrap", OPT_WORDWRAP}, Option{"&Hidden characters", OPT_DISPLAYALL},
                     Option{"&Right margin", OPT_RIGHTMARGINVISIBLE}, Option{"&Left margin line", OPT_LEFTMARGINVISIBLE},
                     Option{"Line &numbers", OPT_SHOWLINENUMBER}, Option{"&Smooth paging", OPT_SMOOTHREFRESH},
                     Option{"&Monochrome", OPT_MONODRAW}}) {
        QAction* action = view->addAction(o.label);
        action->setCheckable(true);
        action->setChecked(m_pCtrl->GetOption(o.mask));
        connect(action, &QAction::toggled, this, [this, mask = o.mask](bool on) { ToggleOption(mask, on); });
    }
    view->addSeparator();
    QMenu* highlight = view->addMenu("&Highlighting");
    auto* styles = new QActionGroup(this);
    const char* names[] = {"&None", "&Syntax classes", "&Tags"};
    for (SHORT style = 0; style < 3; ++style) {
        QAction* action = highlight->addAction(names[style]);
        action->setCheckable(true);
        action->setChecked(m_pCtrl->GetHighlightStyle() == style);
        styles->addAction(action);
        connect(action, &QAction::triggered, this, [this, style] { m_pCtrl->SetHighlightStyle(style); });
    }
    view->addAction("&Font...", this, &CEditorWindow::ChooseFont);
    view->addAction("Right margin &column...", this, &CEditorWindow::ChooseRightMargin);
}

void CEditorWindow::ChooseFont() {
    const FontDesc& now = m_pCtrl->GetEditFont();
    QFont initial(QString::fromStdString(now.name));
    initial.setPointSizeF(static_cast<double>(now.height) / 10000.0);
    initial.setBold(now.weight >= 600);
    initial.setItalic(now.italic);
    bool ok = false;
    const QFont font = QFontDialog::getFont(&ok, initial, this, "Edit font");
    if (!ok) return;
    FontDesc desc = now;
    desc.name = font.family().toStdString();
    desc.height = static_cast<int64_t>(font.pointSizeF() * 10000.0 + 0.5);
    desc.weight = static_cast<int16_t>(font.bold() ? 700 : 400);
    desc.italic = font.italic();
    m_pCtrl->SetEditFont(desc);
}

void CEditorWindow::ChooseRightMargin() {
    bool ok = false;
    const int column = QInputDialog::getInt(this, "Right margin", "Column of the right margin line:",
                                            static_cast<int>(m_pCtrl->GetRightMargin()), 0, 2048, 1, &ok);
    if (ok) m_pCtrl->SetRightMargin(column);
}

void CEditorWindow::Open() {
    QString path = QFileDialog::getOpenFileName(this, "Open", {}, "HTML files (*.html *.htm);;All files (*)");
    if (!path.isEmpty()) OpenFile(path);
}

void CEditorWindow::Save() {
    std::string error;
    if (FAILED(m_doc->SaveFile({}, &error)))
        QMessageBox::warning(this, "zentrel-edit", QString("Cannot save: %1").arg(QString::fromStdString(error)));
}

void CEditorWindow::ToggleOption(DWORD mask, bool on) { m_pCtrl->SetOption(mask, on ? TRUE : FALSE); }
