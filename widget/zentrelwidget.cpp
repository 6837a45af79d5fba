#include "widget/zentrelwidget.h"

#include <QEvent>
#include <QMetaMethod>
#include <array>

#include "platform/qt/qtplatform.h"
#include "platform/qt/qttext.h"
#include "platform/qt/qtwindow.h"
#include "src/view/zentrelctrl.h"

namespace {

// The Qt backend while widgets need it: installed by the first widget unless the host has
// installed one, and taken down with the last.
class CSharedQtPlatform {
public:
    void Acquire() {
        if (m_nUsers++ > 0 || dynamic_cast<CQtPlatform*>(GetPlatformBackend())) return;
        m_platform = std::make_unique<CQtPlatform>();
        m_pPrevious = SetPlatformBackend(m_platform.get());
    }
    void Release() {
        if (--m_nUsers > 0 || !m_platform) return;
        SetPlatformBackend(m_pPrevious);
        m_platform.reset();
    }

private:
    int m_nUsers = 0;
    std::unique_ptr<CQtPlatform> m_platform;
    IPlatformBackend* m_pPrevious = nullptr;
};

CSharedQtPlatform& SharedQtPlatform() {
    static CSharedQtPlatform shared;
    return shared;
}

ComPtr<IConnectionPointContainer> ConnectionPoints(IDispatch* object) {
    return QueryAs<IConnectionPointContainer>(object, IID_IConnectionPointContainer);
}

QPair<int, int> PairOf(const QVariantList& outs) { return {outs.value(0).toInt(), outs.value(1).toInt()}; }

}  // namespace

// What a method call gave: its result and its out values, in the order of its parameters.
struct ZentrelWidget::Outcome {
    bool ok = false;
    QVariant result;
    QVariantList outs;
};

ZentrelWidget::ZentrelWidget(QWidget* parent)
    : QWidget(parent), m_sink(CEventSink::Create([this](DISPID id, std::vector<Variant>& args) { EmitEvent(id, args); })) {
    SharedQtPlatform().Acquire();
    m_pCtrl = CreateZentrelCtrl();
    m_pInfo = m_pCtrl->GetTypeInfo();
    m_pEvents = m_pCtrl->GetClassInfo()->events;
    ConnectionPoints(m_pCtrl)->Advise(m_sink.Get(), &m_dwCookie);
    m_pView = QtWidgetFromHwnd(CreateQtChildWindow(m_pCtrl, this, {0, 0, std::max(width(), 1), std::max(height(), 1)}));
    setFocusProxy(m_pView);
}

ZentrelWidget::~ZentrelWidget() {
    ConnectionPoints(m_pCtrl)->Unadvise(m_dwCookie);
    m_sink->Disconnect();
    m_pCtrl->SetDocument(nullptr);
    m_pCtrl->DestroyControlWindow();
    m_pCtrl->Release();
    SharedQtPlatform().Release();
}

IDispatch* ZentrelWidget::dispatch() const { return m_pCtrl; }

void ZentrelWidget::changeEvent(QEvent* event) {
    // The widget's enabled state is the control's Enabled property.
    if (event->type() == QEvent::EnabledChange) Put("Enabled", isEnabled());
    QWidget::changeEvent(event);
}

void ZentrelWidget::resizeEvent(QResizeEvent* event) {
    if (m_pView) m_pView->setGeometry(rect());
    QWidget::resizeEvent(event);
}

const CMemberInfo* ZentrelWidget::Member(const char* name) const {
    const CMemberInfo* member = m_pInfo->FindName(name);
    if (!member) Fail(DISP_E_UNKNOWNNAME, QString::fromLatin1(name));
    return member;
}

void ZentrelWidget::Fail(int number, const QString& text) const {
    m_lastError = {number, text};
    emit const_cast<ZentrelWidget*>(this)->automationError(number, text);
}

bool ZentrelWidget::Invoke(const CMemberInfo* member, WORD flags, std::vector<Variant>& args, Variant* result) const {
    if (!member) return false;  // Member() has reported it
    m_lastError = {};
    ExcepInfo excep;
    const HRESULT hr = m_pCtrl->Invoke(member->id, flags, args, result, &excep);
    if (hr == DISP_E_EXCEPTION) Fail(AutomationErrorNumber(excep.scode), QtTextFromCodePage(excep.description));
    else if (FAILED(hr)) Fail(hr, {});
    return SUCCEEDED(hr);
}

QVariant ZentrelWidget::Get(const char* name, std::vector<Variant> index) const {
    const CMemberInfo* member = Member(name);
    Variant result;
    if (!Invoke(member, DISPATCH_PROPERTYGET, index, &result)) result.Clear();
    return QtValueFromVariant(member ? member->result.type : AutoType::Void, result);
}

void ZentrelWidget::Put(const char* name, const QVariant& value, std::vector<Variant> index) {
    const CMemberInfo* member = Member(name);
    if (!member) return;
    Variant v;
    if (!VariantFromQtValue(member->result.type, value, &v)) return Fail(DISP_E_TYPEMISMATCH, {});
    index.push_back(std::move(v));
    Invoke(member, DISPATCH_PROPERTYPUT, index, nullptr);
}

ZentrelWidget::Outcome ZentrelWidget::Call(const char* name, const QVariantList& in) {
    Outcome outcome;
    const CMemberInfo* member = Member(name);
    if (!member) return outcome;
    std::vector<Variant> values;
    int next = 0;
    for (const CParamInfo& param : member->params) {
        if (param.byRef) continue;
        Variant v;
        if (!VariantFromQtValue(param.type, in.value(next++), &v)) {
            Fail(DISP_E_TYPEMISMATCH, {});
            return outcome;
        }
        values.push_back(std::move(v));
    }
    CDeclaredCall call(*member, std::move(values));
    Variant result;
    outcome.ok = Invoke(member, DISPATCH_METHOD, call.Args(), &result);
    outcome.result = QtValueFromVariant(member->result.type, result);
    const std::vector<Variant> outs = call.OutValues();
    size_t k = 0;
    for (const CParamInfo& param : member->params) {
        if (param.byRef) outcome.outs << QtValueFromVariant(param.type, outs[k++]);
    }
    return outcome;
}

void ZentrelWidget::EmitEvent(DISPID id, std::vector<Variant>& args) {
    const CMemberInfo* event = m_pEvents->Find(id);
    if (!event || event->params.size() != args.size()) return;
    QByteArray signature = QtMemberName(event->name) + '(';
    for (size_t i = 0; i < event->params.size(); ++i) signature += (i ? "," : "") + QtParamTypeName(event->params[i]);
    const int index = metaObject()->indexOfSignal(QMetaObject::normalizedSignature(signature + ')'));
    if (index < 0) return;
    // Each argument as its Qt value; a by-reference one is passed as a pointer to that value.
    constexpr size_t kMaxArgs = 10;
    const size_t count = std::min(args.size(), kMaxArgs);
    std::array<QVariant, kMaxArgs> values;
    std::array<void*, kMaxArgs> pointers{};
    std::array<QByteArray, kMaxArgs> names;
    std::array<QGenericArgument, kMaxArgs> generic;
    for (size_t i = 0; i < count; ++i) {
        const CParamInfo& param = event->params[i];
        values[i] = QtValueFromVariant(param.type, args[i]);
        if (!values[i].isValid()) values[i] = QVariant(QMetaType::fromName(QtTypeName(param.type)));
        names[i] = QtParamTypeName(param);
        pointers[i] = values[i].data();
        const void* data = param.byRef ? static_cast<const void*>(&pointers[i]) : pointers[i];
        generic[i] = QGenericArgument(names[i].constData(), data);
    }
    metaObject()->method(index).invoke(this, Qt::DirectConnection, generic[0], generic[1], generic[2], generic[3],
                                       generic[4], generic[5], generic[6], generic[7], generic[8], generic[9]);
    for (size_t i = 0; i < count; ++i) {
        Variant answer;
        const CParamInfo& param = event->params[i];
        if (param.byRef && VariantFromQtValue(param.type, values[i], &answer)) args[i].SetByRef(answer);
    }
}

QString ZentrelWidget::formatStyleName(int format) const {
    return Get("FormatStyleName", {Variant::Long(format)}).toString();
}
QColor ZentrelWidget::formatBackColor(int format) const {
    return Get("FormatBackColor", {Variant::Long(format)}).value<QColor>();
}
void ZentrelWidget::setFormatBackColor(int format, const QColor& color) {
    Put("FormatBackColor", color, {Variant::Long(format)});
}
QColor ZentrelWidget::formatTextColor(int format) const {
    return Get("FormatTextColor", {Variant::Long(format)}).value<QColor>();
}
void ZentrelWidget::setFormatTextColor(int format, const QColor& color) {
    Put("FormatTextColor", color, {Variant::Long(format)});
}
int ZentrelWidget::formatStyle(int format) const { return Get("FormatStyle", {Variant::Long(format)}).toInt(); }
void ZentrelWidget::setFormatStyle(int format, int style) { Put("FormatStyle", style, {Variant::Long(format)}); }
QColor ZentrelWidget::syntaxPickerColor(int index) const {
    return Get("SyntaxPickerColor", {Variant::Long(index)}).value<QColor>();
}
void ZentrelWidget::setSyntaxPickerColor(int index, const QColor& color) {
    Put("SyntaxPickerColor", color, {Variant::Long(index)});
}
QString ZentrelWidget::bookmarkName(int index) const { return Get("BookmarkName", {Variant::Long(index)}).toString(); }
void ZentrelWidget::setBookmarkName(int index, const QString& name) {
    Put("BookmarkName", name, {Variant::Long(index)});
}

void ZentrelWidget::refresh() { Call("Refresh", {}); }
void ZentrelWidget::aboutBox() { Call("AboutBox", {}); }
void ZentrelWidget::addExceptionTag(const QString& tagName, const QColor& foreground, const QColor& background) {
    Call("AddExceptionTag", {tagName, foreground, background});
}
void ZentrelWidget::removeAllExceptionTags() { Call("RemoveAllExceptionTags", {}); }
bool ZentrelWidget::formatChangeBegin() { return Call("FormatChangeBegin", {}).result.toBool(); }
void ZentrelWidget::formatChangeEnd() { Call("FormatChangeEnd", {}); }
bool ZentrelWidget::saveExtraInfo(const ComPtr<IUnknown>& stream) {
    return Call("SaveExtraInfo", {QVariant::fromValue(stream)}).result.toBool();
}
bool ZentrelWidget::loadExtraInfo(const ComPtr<IUnknown>& stream) {
    return Call("LoadExtraInfo", {QVariant::fromValue(stream)}).result.toBool();
}
bool ZentrelWidget::saveExtraInfoToFile(const QString& fileName) {
    return Call("SaveExtraInfoToFile", {fileName}).result.toBool();
}
bool ZentrelWidget::loadExtraInfoFromFile(const QString& fileName) {
    return Call("LoadExtraInfoFromFile", {fileName}).result.toBool();
}
bool ZentrelWidget::loadExtraInfoFromRegKey(int key) { return Call("LoadExtraInfoFromRegKey", {key}).result.toBool(); }
bool ZentrelWidget::saveExtraInfoToRegKey(int key) { return Call("SaveExtraInfoToRegKey", {key}).result.toBool(); }
QVariant ZentrelWidget::saveExtraInfoToMemory() {
    const Outcome o = Call("SaveExtraInfoToMemory", {});
    return o.result.toBool() ? o.outs.value(0) : QVariant();
}
bool ZentrelWidget::loadExtraInfoFromMemory(int memory, int size) {
    return Call("LoadExtraInfoFromMemory", {memory, size}).result.toBool();
}
void ZentrelWidget::setSelection(int start, int end) { Call("SetSelection", {start, end}); }
QPair<int, int> ZentrelWidget::getSelection() { return PairOf(Call("GetSelection", {}).outs); }
void ZentrelWidget::clearSelection() { Call("ClearSelection", {}); }
bool ZentrelWidget::addBookmark(const QString& name) { return Call("AddBookmark", {name}).result.toBool(); }
bool ZentrelWidget::deleteBookmark(const QString& name) { return Call("DeleteBookmark", {name}).result.toBool(); }
bool ZentrelWidget::pointInGutter(int x, int y) { return Call("PointInGutter", {x, y}).result.toBool(); }
void ZentrelWidget::scrollCaretToView() { Call("ScrollCaretToView", {}); }
int ZentrelWidget::findPositionFromPoint(int x, int y) { return Call("FindPositionFromPoint", {x, y}).result.toInt(); }
int ZentrelWidget::findPositionFromCoordinate(int column, int row) {
    return Call("FindPositionFromCoordinate", {column, row}).result.toInt();
}
QPoint ZentrelWidget::findCoordinateFromPosition(int position) {
    const QPair<int, int> columnRow = PairOf(Call("FindCoordinateFromPosition", {position}).outs);
    return {columnRow.first, columnRow.second};
}
void ZentrelWidget::scrollToTop() { Call("ScrollToTop", {}); }
QVariant ZentrelWidget::findPointFromPosition(int position) {
    const Outcome o = Call("FindPointFromPosition", {position});
    if (!o.result.toBool()) return QVariant();
    const QPair<int, int> xy = PairOf(o.outs);
    return QPoint(xy.first, xy.second);
}
void ZentrelWidget::cut() { Call("Cut", {}); }
void ZentrelWidget::copy() { Call("Copy", {}); }
void ZentrelWidget::paste() { Call("Paste", {}); }
void ZentrelWidget::undo() { Call("Undo", {}); }
void ZentrelWidget::redo() { Call("Redo", {}); }
void ZentrelWidget::selectWordAtPos(int position) { Call("SelectWordAtPos", {position}); }
QPair<int, int> ZentrelWidget::getWordPosAtPos(int position) {
    return PairOf(Call("GetWordPosAtPos", {position}).outs);
}
int ZentrelWidget::getMatchChar(int position) { return Call("GetMatchChar", {position}).result.toInt(); }
void ZentrelWidget::removeAllBookmarks() { Call("RemoveAllBookmarks", {}); }
bool ZentrelWidget::gotoBookmark(const QString& name) { return Call("GotoBookmark", {name}).result.toBool(); }
bool ZentrelWidget::findBookmark(const QString& name) { return Call("FindBookmark", {name}).result.toBool(); }
bool ZentrelWidget::collapse() { return Call("Collapse", {}).result.toBool(); }
bool ZentrelWidget::expand(bool oneLevel) { return Call("Expand", {oneLevel}).result.toBool(); }
bool ZentrelWidget::collapseRange(int start, int end) { return Call("CollapseRange", {start, end}).result.toBool(); }
ComPtr<IDispatch> ZentrelWidget::findCollapseFromPos(int position) {
    return Call("FindCollapseFromPos", {position}).result.value<ComPtr<IDispatch>>();
}
bool ZentrelWidget::expandRange(int start, int end, bool oneLevel) {
    return Call("ExpandRange", {start, end, oneLevel}).result.toBool();
}
bool ZentrelWidget::print(const QString& pathName) { return Call("Print", {pathName}).result.toBool(); }
bool ZentrelWidget::pageSetup() { return Call("PageSetup", {}).result.toBool(); }
bool ZentrelWidget::showSyntaxPicker() { return Call("ShowSyntaxPicker", {}).result.toBool(); }
bool ZentrelWidget::hideSyntaxPicker() { return Call("HideSyntaxPicker", {}).result.toBool(); }
