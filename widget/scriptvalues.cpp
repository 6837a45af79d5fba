#include "widget/scriptvalues.h"

#include <QJSEngine>
#include <QStringList>
#include <QUrl>
#include <cmath>

#include "platform/qt/qttext.h"
#include "platform/com/automation.h"

namespace {

constexpr double kTenThousandths = 10000.0;

bool VariantFromNumber(double n, Variant* out) {
    if (!std::isfinite(n)) return false;
    if (n == std::floor(n)) {
        if (n >= INT32_MIN && n <= INT32_MAX) {
            *out = Variant::Long(static_cast<int32_t>(n));
            return true;
        }
        if (n > 0 && n <= UINT32_MAX) {
            *out = Variant::ULong(static_cast<uint32_t>(n));
            return true;
        }
    }
    const double cy = std::round(n * kTenThousandths);
    if (std::fabs(cy) > 9.2e18) return false;
    *out = Variant::Currency(static_cast<int64_t>(cy));
    return true;
}

// The text a host shows for the failures that come without one.
QString StandardText(HRESULT hr, SCODE scode) {
    switch (static_cast<uint32_t>(scode ? scode : hr)) {
        case 0x800A017Cu: return "Invalid property value";
        case 0x800A017Du: return "Invalid property array index";
        case 0x800A017Fu: return "Property is read-only";
        case 0x80020005u: return "Type mismatch";
        case 0x8002000Eu: return "Wrong number of arguments";
        case 0x80020006u: return "Unknown name";
        case 0x80020003u: return "Member not found";
        case 0x80004003u: return "Invalid pointer";
        default: return QString("Automation error 0x%1").arg(static_cast<uint32_t>(scode ? scode : hr), 8, 16, QChar('0'));
    }
}

}  // namespace

bool VariantFromScriptValue(const QJSValue& value, Variant* out) {
    if (value.isUndefined() || value.isNull()) {
        *out = Variant();
        return true;
    }
    if (value.isBool()) {
        *out = Variant::Bool(value.toBool());
        return true;
    }
    if (value.isNumber()) return VariantFromNumber(value.toNumber(), out);
    if (value.isString()) {
        *out = Variant::Str(CodePageTextFromQt(value.toString()));
        return true;
    }
    return false;
}

QJSValue ScriptValueFromVariant(const Variant& v) {
    const Variant value = v.Dereferenced();
    int64_t cy = 0;
    uint32_t u = 0;
    bool b = false;
    switch (value.Type()) {
        case VT_NULL: return QJSValue(QJSValue::NullValue);
        case VT_I2: return QJSValue(value.ShortVal());
        case VT_I4: return QJSValue(value.LongVal());
        case VT_UI4: value.ToULong(&u); return QJSValue(static_cast<double>(u));
        case VT_ERROR: return QJSValue(static_cast<double>(static_cast<uint32_t>(value.ScodeVal())));
        case VT_BOOL: value.ToBool(&b); return QJSValue(b);
        case VT_BSTR: return QJSValue(QtTextFromCodePage(value.StrVal()));
        case VT_CY: value.ToCurrency(&cy); return QJSValue(static_cast<double>(cy) / kTenThousandths);
        default: return QJSValue();
    }
}

QJSValue AutomationErrorObject(QJSEngine& engine, HRESULT hr, const ExcepInfo& excep, const QString& member) {
    const bool raised = hr == DISP_E_EXCEPTION;
    const SCODE scode = raised ? excep.scode : hr;
    QString description = raised ? QtTextFromCodePage(excep.description) : QString();
    if (description.isEmpty()) description = StandardText(hr, scode);
    QJSValue error = engine.newErrorObject(QJSValue::GenericError, QString("%1: %2").arg(member, description));
    error.setProperty("number", static_cast<double>(static_cast<uint32_t>(AutomationErrorNumber(scode))));
    error.setProperty("scode", static_cast<double>(static_cast<uint32_t>(scode)));
    error.setProperty("description", description);
    error.setProperty("source", raised ? QtTextFromCodePage(excep.source) : QString());
    return error;
}

void PlaceErrorAtCaller(QJSValue& error, const QString& hiddenFile) {
    // Each line of the stack reads "function@location:line".
    const QStringList frames = error.property("stack").toString().split('\n', Qt::SkipEmptyParts);
    for (const QString& frame : frames) {
        const qsizetype at = frame.indexOf('@');
        const qsizetype colon = frame.lastIndexOf(':');
        if (at < 0 || colon <= at) continue;
        const QString location = frame.mid(at + 1, colon - at - 1);
        if (location.isEmpty() || location.contains(hiddenFile)) continue;
        const QUrl url(location);
        error.setProperty("fileName", url.isLocalFile() ? url.toLocalFile() : location);
        error.setProperty("lineNumber", frame.mid(colon + 1).toInt());
        return;
    }
}
