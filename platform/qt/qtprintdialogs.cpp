#include "platform/qt/qtprintdialogs.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QElapsedTimer>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPrintDialog>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <QWindow>
#include <map>

#include "platform/qt/qtcontrolwidget.h"
#include "platform/qt/qtprinter.h"
#include "platform/qt/qtwindowbackend.h"
#include "platform/window/window.h"

namespace {

QWidget* WidgetOf(HWND hwnd) {
    auto* backend = dynamic_cast<CQtWindowBackend*>(GetWindowBackend(hwnd));
    return backend ? static_cast<QWidget*>(backend->Widget()) : nullptr;
}

// Paper sizes the page setup offers, in thousandths of an inch.
struct Paper {
    const char* name;
    long width, height;
};
constexpr Paper kPapers[] = {{"Letter", 8500, 11000}, {"Legal", 8500, 14000}, {"A4", 8268, 11693},
                             {"A3", 11693, 16535}, {"A5", 5827, 8268}};
constexpr int kPreviewSize = 220;
// How long a progress window may take to come up before the job goes on without it, and the
// steps in which events are served meanwhile.
constexpr qint64 kShowWaitMs = 1000;
constexpr int kShowWaitStepMs = 10;
constexpr double kThousandths = 1000.0;

// The page picture: the paper at the dialog's scale, the margins' frame left out, and the text
// area drawn by the control's hook into an image.
class CPagePreview final : public QWidget {
public:
    CPagePreview(IPageSetupHook* hook, IPageSetupItems* items) : m_pHook(hook), m_pItems(items) {
        setMinimumSize(kPreviewSize, kPreviewSize);
        setObjectName("pagePreview");
    }
    void SetPage(long width, long height, const RECT& margins) {
        m_nWidth = width;
        m_nHeight = height;
        m_margins = margins;
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), palette().window());
        if (m_nWidth <= 0 || m_nHeight <= 0) return;
        const double scale = std::min((width() - 10.0) / m_nWidth, (height() - 10.0) / m_nHeight);
        const QRect page(int((width() - m_nWidth * scale) / 2), int((height() - m_nHeight * scale) / 2), int(m_nWidth * scale),
                         int(m_nHeight * scale));
        painter.fillRect(page.translated(3, 3), Qt::darkGray);
        painter.fillRect(page, Qt::white);
        painter.setPen(Qt::black);
        painter.drawRect(page.adjusted(0, 0, -1, -1));
        const QRect text(page.left() + int(m_margins.left * scale), page.top() + int(m_margins.top * scale),
                         page.width() - int((m_margins.left + m_margins.right) * scale),
                         page.height() - int((m_margins.top + m_margins.bottom) * scale));
        if (text.width() <= 0 || text.height() <= 0) return;
        QImage image(text.size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        {
            CQtDC dc(&image);
            m_pHook->PaintTextArea(*m_pItems, &dc, RECT{0, 0, text.width(), text.height()}, m_nWidth);
        }
        painter.drawImage(text.topLeft(), image);
    }

private:
    IPageSetupHook* m_pHook;
    IPageSetupItems* m_pItems;
    long m_nWidth = 0, m_nHeight = 0;
    RECT m_margins{};
};

// The page setup form.
class CPageSetupForm final : public QDialog, public IPageSetupItems {
public:
    CPageSetupForm(QWidget* parent, PageSetupRecord* record, IPageSetupHook* hook)
        : QDialog(parent), m_pRecord(record), m_pHook(hook), m_choice(record->device) {
        setWindowTitle("Print Setup");
        setObjectName("pageSetupDialog");
        BuildForm();
        ShowChoice();
        m_pHook->OnInitDialog(*this);
        UpdatePage();
    }

    // --- IPageSetupItems ---
    std::string GetItemText(int id) const override {
        QWidget* w = Item(id);
        if (auto* line = qobject_cast<QLineEdit*>(w)) return line->text().toStdString();
        if (auto* text = qobject_cast<QPlainTextEdit*>(w)) return text->toPlainText().replace("\n", "\r\n").toStdString();
        return {};
    }
    void SetItemText(int id, const std::string& value) override {
        QWidget* w = Item(id);
        const QString text = QString::fromStdString(value);
        if (auto* line = qobject_cast<QLineEdit*>(w)) {
            if (line->text() != text) line->setText(text);
        } else if (auto* edit = qobject_cast<QPlainTextEdit*>(w)) {
            edit->setPlainText(QString(text).replace("\r\n", "\n"));
        }
    }
    bool IsChecked(int id) const override {
        auto* box = qobject_cast<QCheckBox*>(Item(id));
        return box && box->isChecked();
    }
    void CheckItem(int id, bool checked) override {
        if (auto* box = qobject_cast<QCheckBox*>(Item(id))) box->setChecked(checked);
    }
    void EnableItem(int id, bool enable) override {
        if (QWidget* w = Item(id)) w->setEnabled(enable);
    }
    bool IsItemEnabled(int id) const override {
        QWidget* w = Item(id);
        return w && w->isEnabled();
    }
    void InvalidatePreview() override { m_pPreview->update(); }
    void Message(const std::string& text) override { QMessageBox::warning(this, windowTitle(), QString::fromStdString(text)); }

    void accept() override {
        if (!m_pHook->OnOK(*this, Margins())) return;
        m_pRecord->device = m_choice;
        m_pRecord->rtMargin = Margins();
        QDialog::accept();
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        const int id = watched->property("itemId").toInt();
        if (id && event->type() == QEvent::KeyPress) {
            const QString text = static_cast<QKeyEvent*>(event)->text();
            if (!text.isEmpty() && text[0].unicode() >= 0x20 && !m_pHook->OnChar(id, text[0].unicode())) {
                QApplication::beep();
                return true;
            }
        } else if (id && event->type() == QEvent::FocusOut) {
            m_pHook->OnKillFocus(*this, id);
        }
        return QDialog::eventFilter(watched, event);
    }

private:
    QWidget* Item(int id) const {
        auto it = m_items.find(id);
        return it == m_items.end() ? nullptr : it->second;
    }
    template <class W>
    W* Add(int id, W* w) {
        m_items[id] = w;
        w->setProperty("itemId", id);
        w->setObjectName(QString("item%1").arg(id));
        w->installEventFilter(this);
        if constexpr (std::is_same_v<W, QCheckBox>) connect(w, &QCheckBox::clicked, this, [this, id] { m_pHook->OnCommand(*this, id); });
        if constexpr (std::is_same_v<W, QLineEdit>) connect(w, &QLineEdit::textChanged, this, [this, id] { m_pHook->OnCommand(*this, id); });
        return w;
    }
    QDoubleSpinBox* MarginBox(long value) {
        auto* box = new QDoubleSpinBox;
        box->setRange(0, 20);
        box->setDecimals(3);
        box->setSingleStep(0.1);
        box->setSuffix("\"");
        box->setValue(value / kThousandths);
        connect(box, &QDoubleSpinBox::valueChanged, this, [this] { UpdatePage(); });
        return box;
    }
    RECT Margins() const {
        auto t = [](const QDoubleSpinBox* b) { return static_cast<LONG>(std::lround(b->value() * kThousandths)); };
        return RECT{t(m_pMargin[0]), t(m_pMargin[1]), t(m_pMargin[2]), t(m_pMargin[3])};
    }

    void BuildForm() {
        auto* paperBox = new QGroupBox("Paper");
        auto* paperForm = new QFormLayout(paperBox);
        m_pPaper = new QComboBox;
        for (const Paper& p : kPapers) m_pPaper->addItem(p.name);
        connect(m_pPaper, &QComboBox::currentIndexChanged, this, [this] { PaperChosen(); });
        paperForm->addRow("Si&ze:", m_pPaper);
        m_pPortrait = new QRadioButton("Portr&ait");
        m_pLandscape = new QRadioButton("Lan&dscape");
        connect(m_pLandscape, &QRadioButton::toggled, this, [this] { PaperChosen(); });
        auto* orientation = new QHBoxLayout;
        orientation->addWidget(m_pPortrait);
        orientation->addWidget(m_pLandscape);
        paperForm->addRow("Orientation:", orientation);

        auto* marginBox = new QGroupBox("Margins (inches)");
        auto* marginGrid = new QGridLayout(marginBox);
        const RECT& m = m_pRecord->rtMargin;
        const long values[] = {m.left, m.top, m.right, m.bottom};
        const char* labels[] = {"L&eft:", "&Top:", "&Right:", "&Bottom:"};
        for (int i = 0; i < 4; ++i) {
            m_pMargin[i] = MarginBox(values[i]);
            auto* label = new QLabel(labels[i]);
            label->setBuddy(m_pMargin[i]);
            marginGrid->addWidget(label, i / 2, (i % 2) * 2);
            marginGrid->addWidget(m_pMargin[i], i / 2, (i % 2) * 2 + 1);
        }

        auto* optionsBox = new QGroupBox("Print");
        auto* options = new QGridLayout(optionsBox);
        options->addWidget(Add(205, new QCheckBox("&Color Printing")), 0, 0, 1, 2);
        options->addWidget(Add(219, new QCheckBox("Include L&ine Numbers")), 1, 0, 1, 2);
        options->addWidget(Add(221, new QCheckBox("H&idden Characters")), 2, 0, 1, 2);
        auto* lineNo = new QLabel("&Line No.:");
        lineNo->setBuddy(Add(218, new QLineEdit));
        options->addWidget(lineNo, 3, 0);
        options->addWidget(Item(218), 3, 1);

        auto* columnsBox = new QGroupBox("Columns");
        auto* columns = new QFormLayout(columnsBox);
        columns->addRow("#C&ol.:", Add(226, new QLineEdit));
        columns->addRow("&Gutter:", Add(229, new QLineEdit));

        auto* templates = new QGroupBox("Header and footer");
        auto* grid = new QGridLayout(templates);
        auto* header = Add(216, new QPlainTextEdit);
        auto* footer = Add(217, new QPlainTextEdit);
        header->setTabChangesFocus(true);
        footer->setTabChangesFocus(true);
        header->setFixedHeight(60);
        footer->setFixedHeight(60);
        auto* headerLabel = new QLabel("&Header:");
        headerLabel->setBuddy(header);
        auto* footerLabel = new QLabel("&Footer:");
        footerLabel->setBuddy(footer);
        grid->addWidget(headerLabel, 0, 0);
        grid->addWidget(header, 0, 1);
        grid->addWidget(Add(212, new QLineEdit), 0, 2);
        grid->addWidget(footerLabel, 1, 0);
        grid->addWidget(footer, 1, 1);
        grid->addWidget(Add(213, new QLineEdit), 1, 2);

        m_pPreview = new CPagePreview(m_pHook, this);
        m_items[1080] = m_pPreview;
        auto* printerButton = new QPushButton("&Printer...");
        connect(printerButton, &QPushButton::clicked, this, [this] { ChoosePrinter(); });
        auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        buttons->addButton(printerButton, QDialogButtonBox::ActionRole);
        connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

        auto* left = new QVBoxLayout;
        left->addWidget(paperBox);
        left->addWidget(marginBox);
        left->addWidget(optionsBox);
        left->addWidget(columnsBox);
        auto* top = new QHBoxLayout;
        top->addLayout(left);
        top->addWidget(m_pPreview, 1);
        auto* all = new QVBoxLayout(this);
        all->addLayout(top);
        all->addWidget(templates);
        all->addWidget(buttons);
    }

    // The paper and orientation of the choice on the form.
    void ShowChoice() {
        const DEVMODE mode = m_choice.hDevMode ? *m_choice.hDevMode : DEVMODE{};
        const long w = std::min(mode.nPaperWidth, mode.nPaperHeight), h = std::max(mode.nPaperWidth, mode.nPaperHeight);
        int index = 0;
        for (int i = 0; i < int(std::size(kPapers)); ++i)
            if (std::labs(kPapers[i].width - w) < 20 && std::labs(kPapers[i].height - h) < 20) index = i;
        const QSignalBlocker block1(m_pPaper), block2(m_pLandscape);
        m_pPaper->setCurrentIndex(index);
        (mode.bLandscape ? m_pLandscape : m_pPortrait)->setChecked(true);
    }
    void PaperChosen() {
        if (!m_choice.hDevMode) m_choice.hDevMode = std::make_shared<DEVMODE>();
        auto mode = std::make_shared<DEVMODE>(*m_choice.hDevMode);
        const Paper& p = kPapers[std::max(0, m_pPaper->currentIndex())];
        mode->bLandscape = m_pLandscape->isChecked();
        mode->nPaperWidth = mode->bLandscape ? p.height : p.width;
        mode->nPaperHeight = mode->bLandscape ? p.width : p.height;
        m_choice.hDevMode = mode;
        UpdatePage();
    }
    void ChoosePrinter() {
        QPrinter printer(QPrinter::HighResolution);
        ApplyChoiceToPrinter(m_choice, &printer);
        QPrintDialog dialog(&printer, this);
        dialog.setOptions(QAbstractPrintDialog::PrintToFile);
        if (dialog.exec() != QDialog::Accepted) return;
        ReadChoiceFromPrinter(printer, &m_choice);
        ShowChoice();
        UpdatePage();
    }
    void UpdatePage() {
        const DEVMODE mode = m_choice.hDevMode ? *m_choice.hDevMode : DEVMODE{};
        if (m_pPreview) m_pPreview->SetPage(mode.nPaperWidth, mode.nPaperHeight, Margins());
    }

    PageSetupRecord* m_pRecord;
    IPageSetupHook* m_pHook;
    PrinterChoice m_choice;
    std::map<int, QWidget*> m_items;
    QComboBox* m_pPaper = nullptr;
    QRadioButton* m_pPortrait = nullptr;
    QRadioButton* m_pLandscape = nullptr;
    QDoubleSpinBox* m_pMargin[4] = {};
    CPagePreview* m_pPreview = nullptr;
};

// The box of the progress window that shows the control's animation.
class CAnimationBox final : public QWidget {
public:
    void SetAnimation(IPrintAnimation* animation) {
        m_pAnimation = animation;
        const SIZE size = animation ? animation->GetSize() : SIZE{0, 0};
        setFixedSize(size.cx, size.cy);
        setVisible(animation != nullptr);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        if (!m_pAnimation) return;
        QImage image(size(), QImage::Format_RGB32);
        {
            CQtDC dc(&image);
            m_pAnimation->Paint(&dc, RECT{0, 0, width(), height()});
        }
        QPainter(this).drawImage(0, 0, image);
    }

private:
    IPrintAnimation* m_pAnimation = nullptr;
};

// The progress window. It is drawn by repaint at each page, since the job holds the thread and
// no events are served; its Cancel is shown disabled, because a started job runs to its end.
class CQtPrintProgress final : public IPrintProgress {
public:
    CQtPrintProgress(QWidget* parent, const std::string& title) : m_dialog(parent) {
        m_dialog.setWindowTitle(QString::fromStdString(title));
        m_dialog.setObjectName("printProgress");
        auto* layout = new QVBoxLayout(&m_dialog);
        m_animation.setObjectName("printAnimation");
        m_animation.hide();
        layout->addWidget(&m_animation, 0, Qt::AlignHCenter);
        layout->addWidget(&m_name);
        layout->addWidget(&m_page);
        layout->addWidget(&m_bar);
        auto* cancel = new QPushButton("Cancel");
        cancel->setEnabled(false);
        layout->addWidget(cancel, 0, Qt::AlignHCenter);
        m_dialog.setMinimumWidth(320);
        m_dialog.show();
        WaitUntilShown();
    }
    void SetAnimation(IPrintAnimation* animation) override { m_animation.SetAnimation(animation); }
    void SetNameText(const std::string& text) override { m_name.setText(QString::fromLocal8Bit(text.c_str())); }
    void SetPageText(const std::string& text) override { m_page.setText(QString::fromStdString(text)); }
    void SetRange(int low, int high) override { m_bar.setRange(low, high); }
    void SetPos(int pos) override { m_bar.setValue(pos); }
    void Redraw() override { m_dialog.repaint(); }

private:
    // A window draws only once the desktop has shown it, and the job that follows serves no
    // events: so events are served here, all but the user's, until it is shown or a while has
    // passed.
    void WaitUntilShown() {
        QElapsedTimer waited;
        waited.start();
        while (m_dialog.windowHandle() && !m_dialog.windowHandle()->isExposed() && waited.elapsed() < kShowWaitMs)
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, kShowWaitStepMs);
    }

    QDialog m_dialog;
    CAnimationBox m_animation;
    QLabel m_name;
    QLabel m_page;
    QProgressBar m_bar;
};

}  // namespace

std::unique_ptr<CDC> CQtPrintBackend::CreatePrinterDC(const PrinterChoice& choice) { return CQtPrinterDC::Create(choice); }

bool CQtPrintBackend::PrintDialog(HWND parent, PrinterChoice* choice) {
    QPrinter printer(QPrinter::HighResolution);
    ApplyChoiceToPrinter(*choice, &printer);
    QPrintDialog dialog(&printer, WidgetOf(parent));
    // The whole document only: no selection, no page numbers.
    dialog.setOptions(QAbstractPrintDialog::PrintToFile | QAbstractPrintDialog::PrintShowPageSize);
    if (dialog.exec() != QDialog::Accepted) return false;
    ReadChoiceFromPrinter(printer, choice);
    return true;
}

bool CQtPrintBackend::PageSetupDialog(HWND parent, PageSetupRecord* record, IPageSetupHook* hook) {
    CPageSetupForm form(WidgetOf(parent), record, hook);
    return form.exec() == QDialog::Accepted;
}

std::unique_ptr<IPrintProgress> CQtPrintBackend::CreateProgress(HWND parent, const std::string& title) {
    if (m_bQuiet) return nullptr;
    return std::make_unique<CQtPrintProgress>(WidgetOf(parent), title);
}

void CQtPrintBackend::MessageBox(HWND parent, const std::string& text) {
    if (m_sink) {
        m_sink(text);
        return;
    }
    QMessageBox::warning(WidgetOf(parent), QApplication::applicationName(), QString::fromLocal8Bit(text.c_str()));
}
