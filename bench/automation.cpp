// The cost of reaching the control through automation, in nanoseconds per call: a property get
// by dispid (Invoke alone) and by name (GetIDsOfNames, then Invoke), a method with two out
// arguments (GetSelection), an event fired to three advised sinks, and a property get from a
// script through the JavaScript bridge (the proxy, the name look-up, Invoke and the conversion).
// Each figure is the median of five rounds.
#include "bench/viewwindow.h"
#include "platform/com/unknown.h"
#include "widget/scriptrunner.h"

namespace {

constexpr int kCalls = 200000;
constexpr int kScriptCalls = 100000;  // script calls are slower; fewer keep the run short
constexpr int kRounds = 5;

// A sink that only counts what it hears, so that the figure is the firing's own cost.
class CCountingSink final : public CUnknownImpl<IDispatch, IID_IDispatch> {
public:
    HRESULT GetIDsOfNames(const std::string&, DISPID*) override { return DISP_E_UNKNOWNNAME; }
    HRESULT Invoke(DISPID, WORD, std::vector<Variant>&, Variant*, ExcepInfo*) override {
        ++m_nHeard;
        return S_OK;
    }
    long m_nHeard = 0;
};

// The median over the rounds of the nanoseconds per call; `calls` runs one round and says
// whether every call did what it should.
template <class F>
double NanosPerCall(int count, F calls) {
    std::vector<double> rounds;
    for (int r = 0; r < kRounds; ++r) {
        const auto t0 = bench::Clock::now();
        if (!calls(count)) {
            std::fprintf(stderr, "automation: a call failed\n");
            std::exit(1);
        }
        rounds.push_back(1e9 * bench::SecondsSince(t0) / count);
    }
    return bench::Percentile(rounds, 0.5);
}

DISPID IdOf(IDispatch* object, const char* name) {
    DISPID id = DISPID_UNKNOWN;
    object->GetIDsOfNames(name, &id);
    return id;
}

bool GetsByDispid(IDispatch* object, DISPID id, int n) {
    std::vector<Variant> none;
    Variant result;
    for (int i = 0; i < n; ++i) {
        if (FAILED(object->Invoke(id, DISPATCH_PROPERTYGET, none, &result, nullptr))) return false;
    }
    return true;
}

bool GetsByName(IDispatch* object, const std::string& name, int n) {
    std::vector<Variant> none;
    Variant result;
    for (int i = 0; i < n; ++i) {
        DISPID id;
        if (FAILED(object->GetIDsOfNames(name, &id)) || FAILED(object->Invoke(id, DISPATCH_PROPERTYGET, none, &result, nullptr)))
            return false;
    }
    return true;
}

bool OutArgumentCalls(IDispatch* object, DISPID id, int n) {
    int32_t start = -1, end = -1;
    Variant result;
    for (int i = 0; i < n; ++i) {
        std::vector<Variant> args{Variant::RefLong(&start), Variant::RefLong(&end)};
        if (FAILED(object->Invoke(id, DISPATCH_METHOD, args, &result, nullptr))) return false;
    }
    return start == 10 && end == 5;
}

}  // namespace

int main(int argc, char** argv) {
    if (!std::getenv("DISPLAY") && !std::getenv("QT_QPA_PLATFORM")) setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QApplication app(argc, argv);
    CQtPlatform platform;
    IPlatformBackend* previous = SetPlatformBackend(&platform);
    {
        ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
        doc->SetText("<html>\n<body>\n<p>The automation benchmark's page.</p>\n</body>\n</html>\n");
        bench::CView view(doc.Get(), false);
        CZentrelCtrl* ctrl = view.operator->();
        IDispatch* control = ctrl;
        ctrl->SetSelection(10, 5);

        const DISPID tabSize = IdOf(control, "TabSize");
        bench::Print("automation_property_get_by_dispid", NanosPerCall(kCalls, [&](int n) { return GetsByDispid(control, tabSize, n); }), "ns");
        bench::Print("automation_property_get_by_name", NanosPerCall(kCalls, [&](int n) { return GetsByName(control, "TabSize", n); }), "ns");
        const DISPID getSelection = IdOf(control, "GetSelection");
        bench::Print("automation_method_two_out_arguments", NanosPerCall(kCalls, [&](int n) { return OutArgumentCalls(control, getSelection, n); }), "ns");

        CCountingSink sinks[3];
        DWORD cookies[3];
        for (int i = 0; i < 3; ++i) sinks[i].AddRef(), cookies[i] = ctrl->AdviseEvents(&sinks[i]);
        bench::Print("automation_event_to_three_sinks", NanosPerCall(kCalls, [&](int n) {
            const long before = sinks[2].m_nHeard;
            for (int i = 0; i < n; ++i) ctrl->FireEvent(EVENT_SELECTIONCHANGED, {Variant::Long(10), Variant::Long(5)});
            return sinks[2].m_nHeard - before == n;
        }), "ns");
        for (DWORD cookie : cookies) ctrl->UnadviseEvents(cookie);

        CScriptRunner runner;
        runner.SetGlobal("control", control);
        const QString loop = QString("let sum = 0; for (let i = 0; i < %1; i++) sum += control.TabSize;\n"
                                     "if (sum !== %1 * control.TabSize) throw new Error('wrong sum');").arg(kScriptCalls);
        bench::Print("automation_script_property_get", NanosPerCall(kScriptCalls, [&](int) {
            return runner.Run(loop, "bench.js", std::chrono::minutes(1)).ok;
        }), "ns");
    }
    SetPlatformBackend(previous);
    return 0;
}
