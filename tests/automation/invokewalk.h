// Plays automation walks through IDispatch::Invoke alone, by name, as a late-bound host does.
#pragma once
#include <string>
#include <vector>

#include "platform/com/typeinfo.h"
#include "tests/automation/walkfile.h"

namespace walk {

Variant ToVariant(const Value& v);
// Whether a result or out value matches the expected value; *why says what was found.
bool Matches(const Value& expected, const Variant& actual, std::string* why);

// Plays one step against `object`; empty when it met its expectation, else what went wrong.
std::string PlayInvokeStep(IDispatch* object, const Step& step);

}  // namespace walk
