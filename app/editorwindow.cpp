#include "app/editorwindow.h"

#include "app/printoptions.h"
#include <QAction>
#include <QCloseEvent>
#include <QFileInfo>
#include <QLabel>
#include <QActionGroup>
#include <QFileDialog>
#include <QFontDialog>
#include <QInputDialog>
#include <QMenuBar>
#include <QMessageBox>
#include <QStatusBar>
#include <QTimer>
#include <cstdio>

#include "app/printoptions.h"
#include "platform/com/dataobject.h"
#include "platform/qt/qtplatform.h"
#include "platform/qt/qttext.h"
#include "src/view/module.h"
#include "widget/zentrelwidget.h"

namespace {

// The file that a drop carries, when the argument is a data object that offers one.
QString DroppedFileName(const Variant& v) {
    ComPtr<IUnknown> unknown(v.UnknownVal());
    ComPtr<IDataObject> data = unknown ? unknown.As<IDataObject>(IID_IDataObject) : ComPtr<IDataObject>();
    std::string bytes;
    if (!data || FAILED(data->GetData(RegisterClipboardFormat("FileName"), &bytes))) return {};
    return QtTextFromCodePage(std::string_view(bytes).substr(0, bytes.find('\0')));
}

QString EventName(DISPID id) {
    const CMemberInfo* event = ZentrelClassInfo().events->Find(id);
    return event ? QString::fromStdString(event->name) : QString("Event %1").arg(id);
}

}  // namespace

// Shows an event with its arguments in the status line; a file dropped on the view is opened,
// and the view inserts nothing.
void CEditorWindow::OnEvent(DISPID id, std::vector<Variant>& args) {
    QStringList values;
    for (const Variant& v : args) {
        int32_t n = 0;
        if (v.ToLong(&n)) values << QString::number(n);
        else if (const QString file = DroppedFileName(v); !file.isEmpty()) values << file;
    }
    if (id == EVENT_ONOLEDROP && args.size() == 4) {
        if (const QString file = DroppedFileName(args[0]); !file.isEmpty() && args[3].SetByRef(Variant::Bool(true)))
            OpenDroppedFile(file);
    }
    OnControlEvent(id, EventName(id) + "(" + values.join(", ") + ")");
}

CEditorWindow::CEditorWindow()
    : m_doc(CreateHtmlDocument()),
      m_sink(CEventSink::Create([this](DISPID id, std::vector<Variant>& args) { OnEvent(id, args); })) {
    m_pPreviousPlatform = SetPlatformBackend(&m_platform);
    m_pWidget = new ZentrelWidget(this);
    m_pCtrl = static_cast<CZentrelCtrl*>(m_pWidget->dispatch());
    m_dwCookie = m_pCtrl->AdviseEvents(m_sink.Get());
    ApplyEditorLook(m_pCtrl, EditorLook::Modern);
    setCentralWidget(m_pWidget);
    m_pWidget->setDocument(static_cast<IDispatch*>(m_doc.Get()));
    m_pEvents = new QLabel(this);
    m_pMode = new QLabel(this);
    m_pConvert = new QLabel(this);
    statusBar()->addWidget(m_pEvents, 1);
    statusBar()->addPermanentWidget(m_pMode);
    statusBar()->addPermanentWidget(m_pConvert);
    BuildMenus();
    m_pEvents->setText("Ready");
    UpdateModes();
    UpdateTitle();
    m_pWidget->setFocus();
}

CEditorWindow::~CEditorWindow() {
    m_pCtrl->UnadviseEvents(m_dwCookie);
    m_sink->Disconnect();
    delete m_pWidget;
    SetPlatformBackend(m_pPreviousPlatform);
}

bool CEditorWindow::OpenFile(const QString& path) {
    KeepViewState();
    std::string error;
    if (FAILED(m_doc->LoadFile(path.toStdString(), &error))) {
        QString text = QString("Cannot open %1: %2").arg(path, QString::fromStdString(error));
        if (isVisible()) QMessageBox::warning(this, "zentrel-edit", text);
        else std::fprintf(stderr, "%s\n", qPrintable(text));
        return false;
    }
    UpdateTitle();
    FitGutter();
    m_viewStates.Restore(*m_pCtrl, path);
    OnControlEvent(0, QString("%1 bytes, %2 lines, %3, %4 undecodable bytes")
                          .arg(m_doc->GetLength())
                          .arg(m_pCtrl->GetLineCount())
                          .arg(QString::fromStdString(m_doc->Encoding()))
                          .arg(m_doc->LastLoad().nUndecodable));
    return true;
}

void CEditorWindow::OnControlEvent(DISPID id, const QString& text) {
    // Mouse moves would drown everything else.
    if (id == DISPID_MOUSEMOVE) return;
    // The newest events first; of a burst of one event only the latest shows, so that typing
    // does not push the other events out.
    if (!m_events.isEmpty() && m_events.front().startsWith(text.section('(', 0, 0) + "(")) m_events.pop_front();
    m_events.push_front(text);
    while (m_events.size() > kShownEvents) m_events.pop_back();
    m_pEvents->setText(QString("%1   |   LineCount %2").arg(m_events.join("   ")).arg(m_pCtrl->GetLineCount()));
    if (id == EVENT_DOCUMENTCHANGED) {
        setWindowModified(m_doc->IsModified());
        FitGutter();
    }
    if (id == EVENT_EDITMODETOGGLED || id == EVENT_AUTOCONVERTTOGGLED) UpdateModes();
}

// The gutter grows to hold the largest line number, and never shrinks below the control's default.
void CEditorWindow::FitGutter() {
    const long digits = static_cast<long>(QString::number(m_pCtrl->GetLineCount()).size());
    const long width = (digits + 2) * m_pCtrl->GetGutterFontWidth() + m_pCtrl->m_nCharWidth;
    if (width > m_pCtrl->GetIndentSize()) m_pCtrl->SetGutterSize(width);
}

void CEditorWindow::UpdateTitle() {
    const std::string& path = m_doc->PathName();
    const QString name = path.empty() ? QString("untitled") : QFileInfo(QString::fromStdString(path)).fileName();
    setWindowTitle(name + "[*] - zentrel-edit");
    setWindowModified(m_doc->IsModified());
}

void CEditorWindow::UpdateModes() {
    m_pMode->setText(m_pCtrl->GetOption(OPT_OVERWRITE) ? "Overwrite" : "Insert");
    m_pConvert->setText(m_pCtrl->GetOption(OPT_AUTOCONVERT) ? "AutoConvert on" : "AutoConvert off");
}

void CEditorWindow::BuildMenus() {
    BuildFileMenu();
    BuildEditMenu();
    BuildViewMenu();
}

void CEditorWindow::BuildFileMenu() {
    QMenu* file = menuBar()->addMenu("&File");
    file->addAction("&Open...", QKeySequence::Open, this, &CEditorWindow::Open);
    file->addAction("&Save", QKeySequence::Save, this, &CEditorWindow::Save);
    file->addAction("Save &As...", QKeySequence::SaveAs, this, &CEditorWindow::SaveAs);
    file->addSeparator();
    // The job names the document by its path, as the document gives it.
    file->addAction("Page Set&up...", this, [this] { m_pCtrl->PageSetup(); });
    file->addAction("&Print...", QKeySequence::Print, this, [this] { m_pCtrl->PrintDocument(""); });
    file->addSeparator();
    file->addAction("&Quit", QKeySequence::Quit, this, &QWidget::close);
}

// The control handles its keys itself; the menu offers the same commands to the mouse and
// shows their keys.
void CEditorWindow::BuildEditMenu() {
    QMenu* edit = menuBar()->addMenu("&Edit");
    const auto command = [&](const char* label, const char* keys, auto run) {
        QAction* action = edit->addAction(QString("%1\t%2").arg(label, keys));
        connect(action, &QAction::triggered, this, [this, run] {
            run(m_pCtrl);
            centralWidget()->setFocus();
        });
    };
    command("&Undo", "Ctrl+Z", [](CZentrelCtrl* c) { c->DoUndo(); });
    command("&Redo", "Ctrl+Y", [](CZentrelCtrl* c) { c->DoRedo(); });
    edit->addSeparator();
    command("Select &All", "Ctrl+A", [](CZentrelCtrl* c) { c->SelectAll(); });
    edit->addSeparator();
    command("&Overwrite", "Insert", [](CZentrelCtrl* c) { c->ToggleOverwrite(); });
    command("Auto&Convert", "Pause", [](CZentrelCtrl* c) { c->ToggleAutoConvert(); });
    struct Option {
        const char* label;
        DWORD mask;
    };
    edit->addSeparator();
    for (Option o : {Option{"Auto &indent", OPT_AUTOINDENT}, Option{"Close &brackets", OPT_AUTOCLOSEBRACKET},
                     Option{"Read-onl&y", OPT_READONLY}}) {
        QAction* action = edit->addAction(o.label);
        action->setCheckable(true);
        action->setChecked(m_pCtrl->GetOption(o.mask));
        connect(action, &QAction::toggled, this, [this, mask = o.mask](bool on) { ToggleOption(mask, on); });
    }
}

void CEditorWindow::BuildViewMenu() {
    QMenu* view = menuBar()->addMenu("&View");
    struct Option {
        const char* label;
        DWORD mask;
    };
    for (Option o : {Option{"&Word wrap", OPT_WORDWRAP}, Option{"Hi&dden characters", OPT_DISPLAYALL},
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
    QAction* classic = view->addAction("&Classic look");
    classic->setCheckable(true);
    connect(classic, &QAction::toggled, this,
            [this](bool on) { ApplyEditorLook(m_pCtrl, on ? EditorLook::Classic : EditorLook::Modern); });
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
    if (!OfferToSave()) return;
    QString path = QFileDialog::getOpenFileName(this, "Open", {}, "HTML files (*.html *.htm);;All files (*)");
    if (!path.isEmpty()) OpenFile(path);
}

// Opens once the drop is over: the view finishes its drop on the document it started with.
void CEditorWindow::OpenDroppedFile(const QString& path) {
    QTimer::singleShot(0, this, [this, path] {
        if (OfferToSave()) OpenFile(path);
    });
}

// Unsaved changes are offered for saving; false if the person cancels or the save fails.
bool CEditorWindow::OfferToSave() {
    if (!m_doc->IsModified()) return true;
    const auto answer = QMessageBox::question(this, "zentrel-edit", "Save the changes?",
                                              QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
    return answer == QMessageBox::Discard || (answer == QMessageBox::Save && Save());
}

bool CEditorWindow::Save() {
    if (m_doc->PathName().empty()) return SaveAs();
    std::string error;
    if (FAILED(m_doc->SaveFile({}, &error))) {
        QMessageBox::warning(this, "zentrel-edit", QString("Cannot save: %1").arg(QString::fromStdString(error)));
        return false;
    }
    UpdateTitle();
    KeepViewState();
    OnControlEvent(0, QString("Saved %1 bytes").arg(m_doc->GetLength()));
    return true;
}

bool CEditorWindow::SaveAs() {
    const QString path = QFileDialog::getSaveFileName(this, "Save as", QString::fromStdString(m_doc->PathName()),
                                                      "HTML files (*.html *.htm);;All files (*)");
    if (path.isEmpty()) return false;
    std::string error;
    if (FAILED(m_doc->SaveFile(path.toStdString(), &error))) {
        QMessageBox::warning(this, "zentrel-edit", QString("Cannot save: %1").arg(QString::fromStdString(error)));
        return false;
    }
    UpdateTitle();
    KeepViewState();
    return true;
}

// Unsaved changes are offered for saving before the window goes.
void CEditorWindow::closeEvent(QCloseEvent* e) {
    if (!OfferToSave()) {
        e->ignore();
        return;
    }
    KeepViewState();
    e->accept();
}

// A document with unsaved changes keeps the state last saved with its file: the view's
// positions belong to text the file does not hold.
void CEditorWindow::KeepViewState() {
    if (m_doc->PathName().empty() || m_doc->IsModified()) return;
    m_viewStates.Save(*m_pCtrl, QString::fromStdString(m_doc->PathName()));
}

void CEditorWindow::ToggleOption(DWORD mask, bool on) { m_pCtrl->SetOption(mask, on ? TRUE : FALSE); }

int CEditorWindow::PrintWithoutDialog(const PrintRequest& request, const QString& docName) {
    // No progress window and no message box: the job runs for a script, which reads stderr.
    m_platform.Print().SetQuiet(true);
    const int result = ::PrintWithoutDialog(m_pCtrl, m_platform.Print(), request, docName);
    m_platform.Print().SetQuiet(false);
    return result;
}
