#include "tests/automation/walkfile.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace walk {
namespace {

// Reads the words of a line: bare words, and "strings" with C escapes.
class Reader {
public:
    explicit Reader(std::string_view text) : m_text(text) {}

    bool AtEnd() {
        SkipSpace();
        return m_pos >= m_text.size();
    }
    bool PeekIs(std::string_view word) {
        SkipSpace();
        return m_text.substr(m_pos, word.size()) == word &&
               (m_pos + word.size() == m_text.size() || m_text[m_pos + word.size()] == ' ');
    }
    std::string Word() {
        SkipSpace();
        const size_t start = m_pos;
        while (m_pos < m_text.size() && m_text[m_pos] != ' ') ++m_pos;
        return std::string(m_text.substr(start, m_pos - start));
    }
    bool ReadValue(Value* v, std::string* error) {
        SkipSpace();
        if (m_pos < m_text.size() && m_text[m_pos] == '"') return ReadString(v, error);
        const std::string w = Word();
        if (w == "true" || w == "false") {
            v->kind = Value::Kind::Bool;
            v->flag = w == "true";
        } else if (w == "null" || w == "any") {
            v->kind = w == "null" ? Value::Kind::Null : Value::Kind::Any;
        } else {
            char* end = nullptr;
            v->kind = Value::Kind::Integer;
            v->integer = std::strtoll(w.c_str(), &end, 0);
            if (w.empty() || *end != '\0') {
                *error = "not a value: " + w;
                return false;
            }
        }
        return true;
    }

private:
    void SkipSpace() {
        while (m_pos < m_text.size() && m_text[m_pos] == ' ') ++m_pos;
    }
    bool ReadString(Value* v, std::string* error) {
        v->kind = Value::Kind::String;
        for (++m_pos; m_pos < m_text.size(); ++m_pos) {
            char c = m_text[m_pos];
            if (c == '"') {
                ++m_pos;
                return true;
            }
            if (c == '\\' && m_pos + 1 < m_text.size()) {
                c = m_text[++m_pos];
                c = c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c;
            }
            v->text += c;
        }
        *error = "unterminated string";
        return false;
    }

    std::string_view m_text;
    size_t m_pos = 0;
};

const std::pair<const char*, Expectation::Kind> kFailureWords[] = {
    {"mismatch", Expectation::Kind::Mismatch},
    {"badcount", Expectation::Kind::BadCount},
    {"unknown", Expectation::Kind::Unknown},
    {"notfound", Expectation::Kind::NotFound},
};

bool ParseExpectation(std::string_view text, Expectation* e, std::string* error) {
    Reader r(text);
    for (const auto& [word, kind] : kFailureWords) {
        if (r.PeekIs(word)) {
            e->kind = kind;
            r.Word();
            return r.AtEnd() || (*error = "text after the expectation", false);
        }
    }
    if (r.PeekIs("ok") || r.PeekIs("any")) {
        e->kind = r.Word() == "ok" ? Expectation::Kind::Ok : Expectation::Kind::Any;
        return r.AtEnd() || (*error = "text after the expectation", false);
    }
    if (r.PeekIs("error")) {
        r.Word();
        e->kind = Expectation::Kind::Error;
        Value n;
        if (!r.ReadValue(&n, error) || n.kind != Value::Kind::Integer) return *error = "error needs a number", false;
        e->errorNumber = static_cast<int>(n.integer);
        if (r.AtEnd()) return true;
        Value text;
        if (!r.ReadValue(&text, error) || text.kind != Value::Kind::String) return *error = "error text must be a string", false;
        e->errorText = text.text;
        return r.AtEnd() || (*error = "text after the expectation", false);
    }
    e->kind = Expectation::Kind::Value;
    if (!r.PeekIs("out")) {
        Value v;
        if (!r.ReadValue(&v, error)) return false;
        e->result = v;
    }
    if (r.AtEnd()) return e->result.has_value() || (*error = "empty expectation", false);
    if (!r.PeekIs("out")) return *error = "expected out", false;
    r.Word();
    e->kind = Expectation::Kind::Out;
    while (!r.AtEnd()) {
        Value v;
        if (!r.ReadValue(&v, error)) return false;
        e->out.push_back(v);
    }
    return true;
}

bool ParseVerb(const std::string& word, Step::Verb* verb) {
    static const std::pair<const char*, Step::Verb> kVerbs[] = {
        {"document", Step::Verb::Document}, {"nodocument", Step::Verb::NoDocument}, {"get", Step::Verb::Get},
        {"put", Step::Verb::Put},           {"call", Step::Verb::Call},
    };
    for (const auto& [name, v] : kVerbs) {
        if (word == name) {
            *verb = v;
            return true;
        }
    }
    return false;
}

bool ParseStep(const std::string& line, Step* step, std::string* error) {
    const size_t arrow = line.find(" => ");
    const bool member = line.rfind("get ", 0) == 0 || line.rfind("put ", 0) == 0 || line.rfind("call ", 0) == 0;
    if (member != (arrow != std::string::npos)) return *error = member ? "missing =>" : "unexpected =>", false;
    Reader r(std::string_view(line).substr(0, arrow));
    if (!ParseVerb(r.Word(), &step->verb)) return *error = "unknown verb", false;
    if (member) step->member = r.Word();
    while (!r.AtEnd()) {
        Value v;
        if (!r.ReadValue(&v, error)) return false;
        step->args.push_back(v);
    }
    if (step->verb == Step::Verb::Put && step->args.empty()) return *error = "put needs a value", false;
    if (step->verb == Step::Verb::Document && (step->args.size() != 1 || step->args[0].kind != Value::Kind::String))
        return *error = "document needs one string", false;
    return !member || ParseExpectation(std::string_view(line).substr(arrow + 4), &step->expect, error);
}

}  // namespace

std::optional<std::vector<Step>> Parse(const std::string& text, std::string* error) {
    std::vector<Step> steps;
    std::istringstream in(text);
    std::string line;
    for (int n = 1; std::getline(in, line); ++n) {
        if (line.empty() || line[0] == '#' || line.find_first_not_of(' ') == std::string::npos) continue;
        Step step;
        step.line = n;
        step.source = line;
        std::string why;
        if (!ParseStep(line, &step, &why)) {
            *error = "line " + std::to_string(n) + ": " + why;
            return std::nullopt;
        }
        steps.push_back(std::move(step));
    }
    return steps;
}

std::string ReadWalk(const std::string& name) {
    std::ifstream in(std::string(ZENTREL_SOURCE_DIR) + "/tests/automation/walks/" + name + ".walk");
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

std::vector<std::string> WalkNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(std::string(ZENTREL_SOURCE_DIR) + "/tests/automation/walks"))
        if (entry.path().extension() == ".walk") names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string Format(const Value& v) {
    switch (v.kind) {
        case Value::Kind::Integer: return std::to_string(v.integer);
        case Value::Kind::Bool: return v.flag ? "true" : "false";
        case Value::Kind::Null: return "null";
        case Value::Kind::Any: return "any";
        case Value::Kind::String: break;
    }
    std::string out = "\"";
    for (char c : v.text) {
        if (c == '\n') out += "\\n";
        else if (c == '\t') out += "\\t";
        else if (c == '"' || c == '\\') out += std::string("\\") + c;
        else out += c;
    }
    return out + "\"";
}

}  // namespace walk
