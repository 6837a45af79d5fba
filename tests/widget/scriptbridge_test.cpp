// The script face of the control: the suite's scripts run through the JavaScript bridge over a
// control in an offscreen Qt window, and every automation walk plays through it.
#include <gtest/gtest.h>

#include <QDir>
#include <QJSEngine>

#include "htmldoc/htmldocument.h"
#include "platform/com/automation.h"
#include "platform/qt/qttext.h"
#include "tests/automation/walkfile.h"
#include "tests/platform/casefile.h"
#include "tests/qt/qtviewfixture.h"
#include "widget/scriptrunner.h"
#include "widget/scriptvalues.h"

namespace {

const QString kScripts = QStringLiteral(ZENTREL_SOURCE_DIR "/tests/widget/scripts/");
const QString kWalks = QStringLiteral(ZENTREL_SOURCE_DIR "/tests/automation/walks/");
constexpr std::chrono::seconds kLimit{30};

ULONG References(IUnknown* p) {
    p->AddRef();
    return p->Release();
}

}  // namespace

// What the suite's scripts may ask of their host besides the control: fresh documents, focus,
// and a KeyPress fired as the control fires it, answering what the handlers left in its key.
class CTestScriptHost : public QObject {
    Q_OBJECT
public:
    CTestScriptHost(CScriptBridge& bridge, CZentrelCtrl* ctrl, HWND hwnd) : m_bridge(bridge), m_pCtrl(ctrl), m_hwnd(hwnd) {}
    Q_INVOKABLE QJSValue newDocument(const QString& text) {
        ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
        doc->SetText(CodePageTextFromQt(text));
        return m_bridge.Wrap(static_cast<IDispatch*>(doc.Get()));
    }
    Q_INVOKABLE void focus() { SendMessage(m_hwnd, WM_SETFOCUS, 0, 0); }
    Q_INVOKABLE int fireKeyPress(int code) {
        auto key = static_cast<int16_t>(code);
        m_pCtrl->FireEvent(DISPID_KEYPRESS, {Variant::RefShort(&key)});
        return key;
    }

private:
    CScriptBridge& m_bridge;
    CZentrelCtrl* m_pCtrl;
    HWND m_hwnd;
};

class ScriptBridgeTest : public QtViewFixture {
protected:
    ScriptBridgeTest() {
        OpenView(static_cast<IDispatch*>(doc.Get()), 400, 300);
        MakeRunner();
    }
    ~ScriptBridgeTest() override {
        runner.reset();
        CloseView();
    }

    void MakeRunner() {
        runner.reset();
        runner.emplace([this](const QString& line) { printed << line; });
        host = std::make_unique<CTestScriptHost>(runner->Bridge(), ctrl, hwnd);
        QJSEngine::setObjectOwnership(host.get(), QJSEngine::CppOwnership);
        runner->SetGlobal("host", runner->Engine().newQObject(host.get()));
        runner->SetGlobal("newDocument", runner->Engine().globalObject().property("host").property("newDocument"));
        runner->SetGlobal("control", static_cast<IDispatch*>(ctrl));
        runner->SetGlobal("document", static_cast<IDispatch*>(doc.Get()));
    }

    CScriptRunner::Outcome RunScript(const QString& name, std::chrono::milliseconds limit = kLimit) {
        return runner->RunFile(kScripts + name, limit);
    }

    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    std::unique_ptr<CTestScriptHost> host;
    std::optional<CScriptRunner> runner;
    QStringList printed;
};

TEST_F(ScriptBridgeTest, SurfaceScriptPasses) {
    const CScriptRunner::Outcome outcome = RunScript("surface.js");
    EXPECT_TRUE(outcome.ok) << outcome.message.toStdString();
    EXPECT_EQ(printed.join("\n").toStdString(), "surface: all checks passed");
}

TEST_F(ScriptBridgeTest, LoopingHandlerIsStoppedAndTheControlCarriesOn) {
    const CScriptRunner::Outcome outcome = RunScript("loop.js", std::chrono::milliseconds(300));
    EXPECT_TRUE(outcome.timedOut) << outcome.message.toStdString();
    EXPECT_TRUE(outcome.message.contains("loop.js")) << outcome.message.toStdString();
    EXPECT_TRUE(printed.isEmpty());
    EXPECT_EQ(ctrl->GetSelectionStart(), 2);
    EXPECT_EQ(ctrl->GetSelectionEnd(), 4);
    // The engine runs again, and the control answers it.
    const auto again = runner->Run("control.TabSize = 6; if (control.TabSize !== 6) throw new Error('no');", "again.js", kLimit);
    EXPECT_TRUE(again.ok) << again.message.toStdString();
}

TEST_F(ScriptBridgeTest, FailuresNameTheScriptLine) {
    for (const CaseRow& row : ReadCaseRows("widget/cases/failures.cases")) {
        const CScriptRunner::Outcome outcome = runner->Run(QString::fromStdString(row[0]), "case.js", kLimit);
        EXPECT_FALSE(outcome.ok) << row.where;
        EXPECT_TRUE(outcome.message.startsWith(QString::fromStdString(row[1]))) << row.where << ": " << outcome.message.toStdString();
        MakeRunner();  // handlers of one case stay out of the next
    }
    EXPECT_EQ(doc->GetText(), "z");  // the handler's throw did not stop the change
}

TEST_F(ScriptBridgeTest, ReleasesEverythingItHeld) {
    runner.reset();
    const ULONG ctrlRefs = References(static_cast<IDispatch*>(ctrl));
    const ULONG docRefs = References(static_cast<IDispatch*>(doc.Get()));
    MakeRunner();
    const auto outcome = runner->Run("var keep = [control.Document, control.Selection, newDocument('a')];\n"
                                     "control.on('DocumentChanged', () => {});\n"
                                     "control.Document.on('1', () => {}, 1);",
                                     "hold.js", kLimit);
    EXPECT_FALSE(outcome.ok) << "the document fires no events";
    EXPECT_GT(References(static_cast<IDispatch*>(ctrl)), ctrlRefs);
    runner.reset();
    EXPECT_EQ(References(static_cast<IDispatch*>(ctrl)), ctrlRefs);
    EXPECT_EQ(References(static_cast<IDispatch*>(doc.Get())), docRefs);
}

// An object that describes nothing of itself: the bridge finds out by trying.
class CUndescribed final : public CUnknownImpl<IDispatch, IID_IDispatch> {
public:
    HRESULT GetIDsOfNames(const std::string& name, DISPID* id) override { return Table().GetIDsOfNames(name, id); }
    HRESULT Invoke(DISPID id, WORD flags, std::vector<Variant>& args, Variant* result, ExcepInfo* excep) override {
        return Table().Invoke(*this, id, flags, args, result, excep);
    }

private:
    static const CDispatchTable<CUndescribed>& Table() {
        using Args = std::vector<Variant>;
        static const CDispatchTable<CUndescribed> table = [] {
            CDispatchTable<CUndescribed> t;
            t.Property(1, "long Value", [](CUndescribed& o, const Args&) { return Variant::Long(o.m_nValue); },
                       [](CUndescribed& o, const Args&, const Variant& v) { o.m_nValue = ArgLong({v}, 0); });
            t.Method(2, "long Twice(long n)", [](CUndescribed&, Args& a) { return Variant::Long(2 * ArgLong(a, 0)); });
            t.Property(3, "BSTR Item(long i)", [](CUndescribed&, const Args& i) { return Variant::Str(std::to_string(ArgLong(i, 0))); });
            return t;
        }();
        return table;
    }
    int32_t m_nValue = 1;
};

TEST_F(ScriptBridgeTest, ObjectWithoutDescriptionIsReadByTrying) {
    ComPtr<CUndescribed> object(new CUndescribed);
    runner->SetGlobal("plain", static_cast<IDispatch*>(object.Get()));
    const auto outcome = runner->Run("plain.Value = 5;\n"
                                     "const got = [plain.value, plain.Twice(4), plain.Item(7), String(plain), 'Twice' in plain, 'Nope' in plain];\n"
                                     "if (got.join() !== '5,8,7,[object IDispatch],true,false') throw new Error(got.join());\n"
                                     "plain.on('Changed', () => {});",
                                     "plain.js", kLimit);
    EXPECT_FALSE(outcome.ok);
    EXPECT_TRUE(outcome.message.startsWith("plain.js:4: Error: Changed: Unknown name")) << outcome.message.toStdString();
}

// Every walk of the automation surface, played by walk.js on a fresh control without a document.
class ScriptWalkTest : public ScriptBridgeTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(ScriptWalkTest, PlaysThroughTheBridge) {
    ctrl->SetDocument(nullptr);
    const QString name = QString::fromStdString(GetParam());
    QFile file(kWalks + name + ".walk");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    runner->SetGlobal("walkName", QJSValue(name));
    runner->SetGlobal("walkText", QJSValue(QString::fromUtf8(file.readAll())));
    const CScriptRunner::Outcome outcome = RunScript("walk.js");
    EXPECT_TRUE(outcome.ok) << outcome.message.toStdString();
    std::printf("%s\n", qPrintable(printed.join("\n")));
}

INSTANTIATE_TEST_SUITE_P(Walks, ScriptWalkTest, ::testing::ValuesIn(walk::WalkNames()),
                         [](const auto& info) { return info.param; });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(ScriptWalkTest);

#include "scriptbridge_test.moc"
