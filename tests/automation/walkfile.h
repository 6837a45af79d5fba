// Walks of an automation surface: steps written as data, played through each face of the
// control (Invoke, the Qt widget, a script), each player checking the same expectations.
//
// One step a line; blank lines and lines starting with '#' are skipped.
//   document "<text>"           attaches a fresh document holding the text (C escapes: \n \t \" \\)
//   nodocument                  detaches the document
//   get  <Member> [index...]                      => <expectation>
//   put  <Member> [index...] <value>              => <expectation>
//   call <Member> [in-argument...]                => <expectation>
// Values: integers (decimal, or 0x hex), "strings" (C escapes), true, false, null; in
// expectations also `any`, which any value meets.
// A call lists only the in-arguments of a method; its by-reference parameters are supplied by
// the player, and their values after the call are expected after `out`.
// Expectations:
//   ok                 succeeded; no result is looked at
//   any                succeeded with a result of any value (for values that depend on fonts)
//   <value>            succeeded with this result
//   [<value>] out v... succeeded; the result (when the method has one) and the out values in order
//   error N ["text"]   an automation error: N is the error number (380, 381, 383; 0 for a raised
//                      text), and the text when given
//   mismatch | badcount | unknown | notfound
//                      DISP_E_TYPEMISMATCH, DISP_E_BADPARAMCOUNT, DISP_E_UNKNOWNNAME,
//                      DISP_E_MEMBERNOTFOUND; faces that cannot express a call of that kind
//                      skip the step
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace walk {

struct Value {
    enum class Kind { Integer, String, Bool, Null, Any } kind = Kind::Null;  // Any: expected values only
    int64_t integer = 0;
    std::string text;
    bool flag = false;
};

struct Expectation {
    enum class Kind { Ok, Any, Value, Out, Error, Mismatch, BadCount, Unknown, NotFound } kind = Kind::Ok;
    std::optional<Value> result;  // Value, and Out when the method has a result
    std::vector<Value> out;       // Out
    int errorNumber = 0;          // Error
    std::optional<std::string> errorText;
};

struct Step {
    enum class Verb { Document, NoDocument, Get, Put, Call } verb = Verb::Get;
    std::string member;         // Get, Put, Call
    std::vector<Value> args;    // indices (and the value last, for Put), in-arguments; the text for Document
    Expectation expect;
    int line = 0;               // in the walk file, for messages
    std::string source;         // the line as written
};

// Parses a walk; on a malformed line gives nothing and says why in *error ("line N: ...").
std::optional<std::vector<Step>> Parse(const std::string& text, std::string* error);
// The walk files of the test suite, by name ("properties" is walks/properties.walk).
std::string ReadWalk(const std::string& name);
// The names of all walk files, in order.
std::vector<std::string> WalkNames();
// Writes a value as a walk file would.
std::string Format(const Value& v);

}  // namespace walk
