// Plays automation walks through IDispatch::Invoke alone, by name, as a late-bound host does.
#pragma once
#include <string>
#include <vector>

#include "platform/com/typeinfo.h"
#include "tests/automation/walkfile.h"

namespace walk {

// What a host holds for one call: the arguments in declaration order, with storage behind the
// by-reference ones.
class CallArgs {
public:
    // The in-arguments of `given` fill the by-value parameters in order; by-reference ones get
    // fresh storage. Extra or missing in-arguments are passed as they are, so a wrong count
    // reaches the callee.
    CallArgs(const CMemberInfo* member, const std::vector<Value>& given);
    std::vector<Variant>& Args() { return m_args; }
    // The values behind the by-reference arguments, after the call.
    std::vector<Variant> OutValues() const;

private:
    std::vector<Variant> m_args;
    std::vector<size_t> m_outPlaces;
    // Storage of the by-reference arguments; deque-like stability through reserve.
    std::vector<int32_t> m_longs;
    std::vector<int16_t> m_shorts;
    std::vector<VARIANT_BOOL> m_bools;
    std::vector<uint32_t> m_colors;
    std::vector<std::string> m_texts;
};

Variant ToVariant(const Value& v);
// Whether a result or out value matches the expected value; *why says what was found.
bool Matches(const Value& expected, const Variant& actual, std::string* why);

// Plays one step against `object`; empty when it met its expectation, else what went wrong.
std::string PlayInvokeStep(IDispatch* object, const Step& step);

}  // namespace walk
