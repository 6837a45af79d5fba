// Automation values as Qt values: the Qt type that stands for each automation type, and the
// conversions both ways. The widget's properties, slots and signals are typed by these rules.
#pragma once
#include <QByteArray>
#include <QColor>
#include <QFont>
#include <QMetaType>
#include <QString>
#include <QVariant>

#include "platform/com/typeinfo.h"

Q_DECLARE_METATYPE(ComPtr<IDispatch>)
Q_DECLARE_METATYPE(ComPtr<IUnknown>)

// The Qt name of an automation member: its first letter in lower case (TabSize is tabSize).
QByteArray QtMemberName(const std::string& name);

// The Qt type of a value of `type`, as the meta-object system writes it ("int", "QColor",
// "ComPtr<IDispatch>"); "void" for no value.
QByteArray QtTypeName(AutoType type);
// The Qt type of a parameter: a by-reference one is a pointer through which a slot answers.
QByteArray QtParamTypeName(const CParamInfo& param);

// OLE_COLOR is 0x00BBGGRR, or a system colour when the high bit is set; the Qt colour is the
// colour it draws with.
QColor QtColorFromOle(OLE_COLOR color);
OLE_COLOR OleColorFromQt(const QColor& color);

// A font through its dispatch interface; a default QFont for none.
QFont QtFontFromDispatch(IDispatch* font);
// A new font object with the face, size and style of `font`.
ComPtr<IDispatch> FontDispatchFromQt(const QFont& font);

// An automation value as the Qt value of `type`.
QVariant QtValueFromVariant(AutoType type, const Variant& value);
// A Qt value as an automation value of `type`; false when it cannot stand for one.
bool VariantFromQtValue(AutoType type, const QVariant& value, Variant* out);
