// The automation surface through Invoke alone: the walks of walks/*.walk, every member walked,
// results of the declared types, events with the declared arguments, and bad calls.
#include <gtest/gtest.h>

#include <set>

#include "platform/com/automation.h"
#include "tests/automation/invokewalk.h"
#include "tests/view/viewfixture.h"

namespace {

std::vector<walk::Step> LoadWalk(const std::string& name) {
    std::string error;
    auto steps = walk::Parse(walk::ReadWalk(name), &error);
    EXPECT_TRUE(steps) << name << ": " << error;
    return steps.value_or(std::vector<walk::Step>{});
}

class Conformance : public ViewFixture {
protected:
    void SetUp() override { NewControl(400, 300); }
    // Plays a walk; the failures, one a line.
    std::string Play(const std::vector<walk::Step>& steps) {
        std::string failures;
        for (const walk::Step& step : steps) {
            if (step.verb == walk::Step::Verb::Document) Attach(step.args[0].text);
            else if (step.verb == walk::Step::Verb::NoDocument) ctrl->SetDocument(nullptr);
            else if (std::string why = walk::PlayInvokeStep(control.Get(), step); !why.empty())
                failures += "line " + std::to_string(step.line) + ": " + step.source + "\n    " + why + "\n";
        }
        return failures;
    }
};

TEST_F(Conformance, EveryWalkMeetsItsExpectations) {
    for (const std::string& name : walk::WalkNames()) {
        SCOPED_TRACE(name);
        NewControl(400, 300);
        EXPECT_EQ(Play(LoadWalk(name)), "");
    }
}

TEST_F(Conformance, EveryMemberIsWalked) {
    std::set<std::string> walked;
    for (const std::string& name : walk::WalkNames())
        for (const walk::Step& step : LoadWalk(name)) walked.insert(step.member);
    for (const CMemberInfo& m : ctrl->GetTypeInfo()->Members()) EXPECT_TRUE(walked.count(m.name)) << m.name;
}

// Every property reads in its declared type, with and without a document; indexed ones at index 0.
TEST_F(Conformance, PropertiesReadInTheirDeclaredTypes) {
    for (bool attached : {false, true}) {
        if (attached) Attach("<p>text</p>");
        for (const CMemberInfo& m : ctrl->GetTypeInfo()->Members()) {
            if (m.kind != MemberKind::Property) continue;
            std::vector<Variant> args(m.params.size(), Variant::Long(0));
            Variant result;
            const HRESULT hr = control->Invoke(m.id, DISPATCH_PROPERTYGET, args, &result, nullptr);
            if (hr == DISP_E_EXCEPTION && !m.params.empty()) continue;  // an index that is out of range here
            ASSERT_EQ(hr, S_OK) << m.name;
            const VARTYPE declared = VarTypeOf(m.result.type);
            EXPECT_TRUE(result.Type() == declared || (declared == VT_DISPATCH && result.IsEmpty())) << m.name;
        }
    }
}

// Checks every event against the event interface's declaration as it arrives.
class CTypedSink final : public IDispatch {
public:
    explicit CTypedSink(const CInterfaceInfo& events) : m_events(events) {}
    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (riid == IID_IUnknown || riid == IID_IDispatch) return HandOut(static_cast<IDispatch*>(this), ppv);
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return 2; }
    ULONG Release() override { return 1; }
    HRESULT GetIDsOfNames(const std::string&, DISPID*) override { return DISP_E_UNKNOWNNAME; }
    HRESULT Invoke(DISPID id, WORD flags, std::vector<Variant>& args, Variant*, ExcepInfo*) override {
        const CMemberInfo* e = m_events.Find(id);
        if (!e) return ADD_FAILURE() << "undeclared event " << id, S_OK;
        fired.push_back(e->name);
        EXPECT_EQ(flags, DISPATCH_METHOD) << e->name;
        EXPECT_EQ(args.size(), e->params.size()) << e->name;
        for (size_t i = 0; i < std::min(args.size(), e->params.size()); ++i) {
            const CParamInfo& p = e->params[i];
            const VARTYPE want = VarTypeOf(p.type) | (p.byRef ? VT_BYREF : 0);
            if (p.type != AutoType::Variant) {
                EXPECT_EQ(args[i].Type(), want) << e->name << " " << p.name;
            }
            if (p.byRef) {
                EXPECT_NE(args[i].RefVal(), nullptr) << e->name << " " << p.name;
            }
        }
        if (onEvent) onEvent(e->name, args);
        return S_OK;
    }

    std::vector<std::string> fired;
    std::function<void(const std::string&, std::vector<Variant>&)> onEvent;

private:
    const CInterfaceInfo& m_events;
};

struct EventFixture : Conformance {
    void SetUp() override {
        Conformance::SetUp();
        auto classInfo = QueryAs<IProvideClassInfo>(control.Get(), IID_IProvideClassInfo);
        ASSERT_TRUE(classInfo);
        sink = std::make_unique<CTypedSink>(*classInfo->GetClassInfo()->events);
        auto points = QueryAs<IConnectionPointContainer>(control.Get(), IID_IConnectionPointContainer);
        ASSERT_EQ(points->Advise(sink.get(), &cookie), S_OK);
        Attach("<p>one</p>\n<p>two</p>\n");
        platform->MoveFocus(ctrl->GetSafeHwnd());
        sink->fired.clear();
    }
    void Send(UINT message, WPARAM w, LPARAM l = 0) { SendMessage(ctrl->GetSafeHwnd(), message, w, l); }

    std::unique_ptr<CTypedSink> sink;
    DWORD cookie = 0;
};

// A key that the control takes raises no KeyDown, and characters raise no KeyPress; the mouse
// events come before the view reacts.
TEST_F(EventFixture, InputFiresTheStockEventsInOrder) {
    Send(WM_KEYDOWN, 'X');
    Send(WM_CHAR, 'x');
    Send(WM_KEYDOWN, VK_LEFT);
    Send(WM_KEYUP, 'X');
    const LPARAM at = MAKELPARAM(200, 5);
    Send(WM_LBUTTONDOWN, MK_LBUTTON, at);
    Send(WM_LBUTTONUP, 0, at);
    const std::vector<std::string> expected = {"KeyDown",   "DocumentChanged",  "SelectionChanged", "SelectionChanged",
                                               "KeyUp",     "MouseDown",        "SelectionChanged", "MouseUp",
                                               "Click"};
    EXPECT_EQ(sink->fired, expected);
}

TEST_F(EventFixture, EveryCustomEventCanBeHeard) {
    ctrl->SetOption(OPT_OVERWRITE, TRUE);
    ctrl->SetOption(OPT_AUTOCONVERT, TRUE);
    ctrl->SetSelection(0, 5);
    ctrl->Cut();
    ctrl->ToggleNumberedBookmark(1);
    std::set<std::string> heard(sink->fired.begin(), sink->fired.end());
    for (const char* name : {"EditModeToggled", "AutoConvertToggled", "SelectionChanged", "DocumentChanged", "BookmarkChanged"})
        EXPECT_TRUE(heard.count(name)) << name;
}

TEST_F(Conformance, BadCallsGiveTheHostsErrorAndChangeNothing) {
    Attach("<p>x</p>");
    DISPID id = 0;
    ASSERT_EQ(control->GetIDsOfNames("GetSelection", &id), S_OK);
    std::vector<Variant> nullOut{Variant::FromRef(VT_I4 | VT_BYREF, nullptr), Variant::FromRef(VT_I4 | VT_BYREF, nullptr)};
    EXPECT_EQ(control->Invoke(id, DISPATCH_METHOD, nullOut, nullptr, nullptr), E_POINTER);
    int32_t a = 0, b = 0;
    std::vector<Variant> byValue{Variant::Long(a), Variant::RefLong(&b)};
    EXPECT_EQ(control->Invoke(id, DISPATCH_METHOD, byValue, nullptr, nullptr), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(control->GetIDsOfNames("TabSize", nullptr), E_POINTER);
    std::vector<Variant> none;
    EXPECT_EQ(control->Invoke(4242, DISPATCH_PROPERTYGET, none, nullptr, nullptr), DISP_E_MEMBERNOTFOUND);
}

TEST_F(Conformance, NamedArgumentsArePlacedByTheirParameterNames) {
    Attach("<p>one two</p>");
    DISPID id = 0;
    ASSERT_EQ(control->GetIDsOfNames("SetSelection", &id), S_OK);
    EXPECT_EQ(InvokeWithNames(control.Get(), id, DISPATCH_METHOD, {}, {{"NEND", Variant::Long(5)}, {"nStart", Variant::Long(10)}},
                              nullptr, nullptr),
              S_OK);
    EXPECT_EQ(ctrl->GetSelectionStart(), 10);
    EXPECT_EQ(ctrl->GetSelectionEnd(), 5);
    EXPECT_EQ(InvokeWithNames(control.Get(), id, DISPATCH_METHOD, {Variant::Long(1)}, {{"nStart", Variant::Long(2)}}, nullptr,
                              nullptr),
              DISP_E_PARAMNOTFOUND);
    EXPECT_EQ(InvokeWithNames(control.Get(), id, DISPATCH_METHOD, {}, {{"nEnd", Variant::Long(2)}}, nullptr, nullptr),
              DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(ctrl->GetSelectionStart(), 10);
}

TEST(TypeLibrary, TheListingNamesEveryMemberWithItsIdentifiers) {
    CTestPlatformScope platform;
    ComPtr<IDispatch> control = MakeControlThroughFactory();
    const CClassInfo* info = QueryAs<IProvideClassInfo>(control.Get(), IID_IProvideClassInfo)->GetClassInfo();
    const std::string idl = WriteIdlListing(*info);
    EXPECT_NE(idl.find("uuid(09D5F3E2-B21C-11D1-9B66-0000C0E4E6E4), version(1.0)"), std::string::npos);
    EXPECT_NE(idl.find("[default, source] dispinterface _DZentrelEvents;"), std::string::npos);
    EXPECT_NE(idl.find("[id(95), propget] BSTR FormatStyleName(short nFormat);"), std::string::npos);
    EXPECT_NE(idl.find("[id(1), readonly] short FormatCount;"), std::string::npos);
    EXPECT_NE(idl.find("[helpstring(\"3D Appearance\")] ThreeD = 1,"), std::string::npos);
    for (const CInterfaceInfo* i : {info->dispatch, info->events})
        for (const CMemberInfo& m : i->Members()) EXPECT_NE(idl.find(" " + m.name + (m.params.empty() && m.kind == MemberKind::Property ? ";" : "(")), std::string::npos) << m.name;
    EXPECT_EQ(info->events->Members().size(), 27u);
}

}  // namespace
