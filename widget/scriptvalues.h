// Automation values and failures on the JavaScript side: the value conversions of the script
// bridge that need no wrapped objects, and automation failures as JavaScript errors.
#pragma once
#include <QJSValue>
#include <QString>

#include "platform/com/dispatch.h"

class QJSEngine;

// A JavaScript value as an automation argument: undefined and null travel as an empty variant,
// booleans as VT_BOOL, whole numbers as VT_I4 (from 0x80000000 to 0xFFFFFFFF as VT_UI4, the way
// colours travel), other numbers as currency rounded to ten-thousandths, strings as text of the
// process code page. False for anything else (objects are the bridge's business).
bool VariantFromScriptValue(const QJSValue& value, Variant* out);
// An automation value in JavaScript, read through a by-reference variant: numbers, booleans,
// strings, currency as a number of whole units, an error value as its code. Interfaces are the
// bridge's business; here they give undefined.
QJSValue ScriptValueFromVariant(const Variant& value);

// A JavaScript Error for a failed call of `member`: `number` (AutomationErrorNumber, as an unsigned number), `scode` (the
// automation code as an unsigned number: the exception's code, or the failure's HRESULT when
// the call did not get as far as raising one), `description` (the object's text, or a standard
// text when the object gave none), `source`, and `message` (the description, with the member).
QJSValue AutomationErrorObject(QJSEngine& engine, HRESULT hr, const ExcepInfo& excep, const QString& member);
// Points the error's fileName and lineNumber at the innermost frame of its stack that lies
// outside `hiddenFile` (the bridge's own JavaScript), so that an error raised by the bridge
// names the script line that made the call.
void PlaceErrorAtCaller(QJSValue& error, const QString& hiddenFile);
