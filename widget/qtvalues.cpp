#include "widget/qtvalues.h"

#include <algorithm>
#include <cctype>

#include "platform/qt/qttext.h"
#include "platform/gdi/fontdispatch.h"
#include "platform/window/olecontrol.h"

QByteArray QtMemberName(const std::string& name) {
    QByteArray qt = QByteArray::fromStdString(name);
    if (!qt.isEmpty()) qt[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(qt[0])));
    return qt;
}

QByteArray QtTypeName(AutoType type) {
    switch (type) {
        case AutoType::Void: return "void";
        case AutoType::Bool: return "bool";
        case AutoType::Str: return "QString";
        case AutoType::Color: return "QColor";
        case AutoType::Font: return "QFont";
        case AutoType::Dispatch: return "ComPtr<IDispatch>";
        case AutoType::Unknown: return "ComPtr<IUnknown>";
        case AutoType::Variant: return "QVariant";
        case AutoType::Currency: return "double";
        case AutoType::Short:
        case AutoType::Long:
        case AutoType::Handle:
        case AutoType::XPos:
        case AutoType::YPos:
        case AutoType::Scode:
        case AutoType::Enum: return "int";
    }
    return "void";
}

QByteArray QtParamTypeName(const CParamInfo& param) {
    return param.byRef ? QtTypeName(param.type) + '*' : QtTypeName(param.type);
}

QColor QtColorFromOle(OLE_COLOR color) {
    const COLORREF rgb = COleControl::TranslateColor(color);
    return QColor(rgb & 0xFF, (rgb >> 8) & 0xFF, (rgb >> 16) & 0xFF);
}

OLE_COLOR OleColorFromQt(const QColor& color) {
    const QColor c = color.toRgb();
    return static_cast<OLE_COLOR>(c.red()) | static_cast<OLE_COLOR>(c.green()) << 8 |
           static_cast<OLE_COLOR>(c.blue()) << 16;
}

QFont QtFontFromDispatch(IDispatch* font) {
    FontDesc desc;
    if (!font || !FontDescFromDispatch(font, &desc)) return QFont();
    QFont f(QtTextFromCodePage(desc.name));
    f.setPointSizeF(static_cast<double>(desc.height) / 10000.0);
    f.setWeight(QFont::Weight(std::clamp<int>(desc.weight, 1, 1000)));
    f.setItalic(desc.italic);
    f.setUnderline(desc.underline);
    f.setStrikeOut(desc.strikethrough);
    return f;
}

ComPtr<IDispatch> FontDispatchFromQt(const QFont& font) {
    FontDesc desc;
    desc.name = CodePageTextFromQt(font.family());
    // A font sized in pixels counts 96 of them to the inch.
    const double points = font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize() * 0.75;
    desc.height = static_cast<int64_t>(points * 10000.0 + 0.5);
    desc.weight = static_cast<int16_t>(font.weight());
    desc.italic = font.italic();
    desc.underline = font.underline();
    desc.strikethrough = font.strikeOut();
    return ComPtr<IDispatch>::Adopt(CFontDispatch::Create(desc));
}

namespace {

// The type that a variant of any type carries, as far as a Qt value can stand for it.
AutoType CarriedType(const Variant& value) {
    switch (value.Type() & ~VT_BYREF) {
        case VT_BOOL: return AutoType::Bool;
        case VT_BSTR: return AutoType::Str;
        case VT_DISPATCH: return AutoType::Dispatch;
        case VT_UNKNOWN: return AutoType::Unknown;
        case VT_CY: return AutoType::Currency;
        case VT_EMPTY:
        case VT_NULL: return AutoType::Void;
        default: return AutoType::Long;
    }
}

}  // namespace

QVariant QtValueFromVariant(AutoType type, const Variant& value) {
    switch (type) {
        case AutoType::Void: return QVariant();
        case AutoType::Bool: {
            bool b = false;
            return value.ToBool(&b) ? QVariant(b) : QVariant();
        }
        case AutoType::Str: {
            std::string s;
            return value.ToStr(&s) ? QVariant(QtTextFromCodePage(s)) : QVariant();
        }
        case AutoType::Color: {
            uint32_t c = 0;
            return value.ToULong(&c) ? QVariant(QtColorFromOle(c)) : QVariant();
        }
        case AutoType::Font: {
            IDispatch* font = nullptr;
            value.ToDispatch(&font);
            return QVariant::fromValue(QtFontFromDispatch(font));
        }
        case AutoType::Dispatch: {
            IDispatch* p = nullptr;
            value.ToDispatch(&p);
            return QVariant::fromValue(ComPtr<IDispatch>(p));
        }
        case AutoType::Unknown: {
            IUnknown* p = nullptr;
            value.ToUnknown(&p);
            return QVariant::fromValue(ComPtr<IUnknown>(p));
        }
        case AutoType::Currency: {
            int64_t cy = 0;
            return value.ToCurrency(&cy) ? QVariant(static_cast<double>(cy) / 10000.0) : QVariant();
        }
        case AutoType::Variant: return QtValueFromVariant(CarriedType(value), value);
        default: {
            int32_t n = 0;
            return value.ToLong(&n) ? QVariant(n) : QVariant();
        }
    }
}

bool VariantFromQtValue(AutoType type, const QVariant& value, Variant* out) {
    switch (type) {
        case AutoType::Void: *out = Variant(); return true;
        case AutoType::Bool: *out = Variant::Bool(value.toBool()); return value.canConvert<bool>();
        case AutoType::Str: *out = Variant::Str(CodePageTextFromQt(value.toString())); return value.canConvert<QString>();
        case AutoType::Color: {
            const QColor c = value.value<QColor>();
            *out = Variant::Color(OleColorFromQt(c));
            return c.isValid();
        }
        case AutoType::Font:
            *out = Variant::Dispatch(FontDispatchFromQt(value.value<QFont>()).Get());
            return value.canConvert<QFont>();
        case AutoType::Dispatch: *out = Variant::Dispatch(value.value<ComPtr<IDispatch>>().Get()); return true;
        case AutoType::Unknown: *out = Variant::Unknown(value.value<ComPtr<IUnknown>>().Get()); return true;
        case AutoType::Currency:
            *out = Variant::Currency(static_cast<int64_t>(value.toDouble() * 10000.0));
            return value.canConvert<double>();
        default: {
            bool ok = false;
            *out = Variant::Long(value.toInt(&ok));
            return ok;
        }
    }
}
