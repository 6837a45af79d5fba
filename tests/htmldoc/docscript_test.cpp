// Edits, undo history, automation and files of a document with a view's sink and selection
// attached, played from case files (cases/undo.cases, dispatch.cases, files.cases,
// contract.cases). A row is a step; a step that gives a result compares it with the row's last
// field when the row has one more field than the step's arguments. The verbs are listed at the
// top of undo.cases, dispatch.cases and contract.cases, and above AddFileVerbs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <functional>
#include <map>
#include <sstream>

#include <sys/stat.h>

#include "platform/com/textdataobject.h"
#include "tests/codepagescope.h"
#include "tests/htmldoc/recordingsink.h"
#include "tests/htmldoc/tempfolder.h"
#include "tests/platform/casefile.h"

namespace {

std::string HrName(HRESULT hr) {
    static const std::map<HRESULT, const char*> kNames{
        {S_OK, "ok"}, {E_FAIL, "E_FAIL"}, {E_UNEXPECTED, "E_UNEXPECTED"}, {E_INVALIDARG, "E_INVALIDARG"},
        {DISP_E_EXCEPTION, "DISP_E_EXCEPTION"}, {DISP_E_BADPARAMCOUNT, "DISP_E_BADPARAMCOUNT"},
        {DISP_E_TYPEMISMATCH, "DISP_E_TYPEMISMATCH"}, {DISP_E_MEMBERNOTFOUND, "DISP_E_MEMBERNOTFOUND"},
        {STG_E_FILENOTFOUND, "STG_E_FILENOTFOUND"}, {HR_E_UNDECODABLE, "HR_E_UNDECODABLE"}, {STG_E_READFAULT, "STG_E_READFAULT"},
        {E_OUTOFMEMORY, "E_OUTOFMEMORY"}};
    auto found = kNames.find(hr);
    if (found != kNames.end()) return found->second;
    std::ostringstream hex;
    hex << "0x" << std::hex << std::uppercase << static_cast<uint32_t>(hr);
    return hex.str();
}

std::string Shown(const Variant& value) {
    bool flag = false;
    if (value.Type() == VT_BSTR) return value.StrVal();
    if (value.Type() == VT_BOOL && value.ToBool(&flag)) return flag ? "true" : "false";
    if (value.Type() == VT_I2 || value.Type() == VT_I4) return std::to_string(value.LongVal());
    return "";
}

// Arguments written as "string", a number, nulldisp, or - for none.
std::vector<Variant> ArgumentsOf(const std::string& field) {
    std::vector<Variant> args;
    std::istringstream in(field);
    for (std::string word; in >> word;) {
        if (word == "-") continue;
        if (word == "nulldisp") args.push_back(Variant::Dispatch(nullptr));
        else if (word.front() == '"') args.push_back(Variant::Str(word.substr(1, word.size() - 2)));
        else args.push_back(Variant::Long(std::stoi(word)));
    }
    return args;
}

class CDocScript : protected CTempFolder {
public:
    CDocScript() : CTempFolder("docscript_test") {
        AddVerbs();
        AddFileVerbs();
    }

    void Play(const CaseRow& row) {
        if (row[0] == "case") {
            m_doc.reset();
            m_codePage.reset();  // each case begins in code page 1252, with an empty folder
            std::vector<std::filesystem::path> left;
            for (const auto& entry : std::filesystem::directory_iterator(dir)) left.push_back(entry.path());
            for (const auto& path : left) std::filesystem::remove_all(path);
            m_doc = std::make_unique<CAttachedDoc>();
            return;
        }
        auto verb = m_verbs.find(row[0]);
        ASSERT_NE(verb, m_verbs.end()) << "unknown verb " << row[0];
        ASSERT_TRUE(m_doc) << "a step before the first case";
        const std::string result = verb->second.run(row);
        if (row.fields.size() > verb->second.args + 1) {
            EXPECT_EQ(result, row.fields.back());
        }
    }

private:
    struct Verb {
        size_t args;
        std::function<std::string(const CaseRow&)> run;
    };

    CHtmlDocument& Doc() { return *m_doc->doc.Get(); }
    ISourceRange& Sel() { return *m_doc->sel.Get(); }
    std::string Undone(bool undo) {
        long caret = 0;
        const HRESULT hr = undo ? Doc().Undo(&m_doc->sink, &caret) : Doc().Redo(&m_doc->sink, &caret);
        return HrName(hr) + " " + std::to_string(caret);
    }
    ComPtr<ISourceUndo> UndoManager() {
        ComPtr<ISourceUndo> undo;
        EXPECT_EQ(Doc().GetUndoManager(undo.Out()), S_OK);
        return undo;
    }
    // `invoke | doc|sel | MEMBER | get|put|method | ARGUMENTS`: the outcome, a value got, and an
    // exception's code and description.
    std::string Invoke(const CaseRow& row) {
        ComPtr<IDispatch> target = row[1] == "sel" ? QueryAs<IDispatch>(&Sel(), IID_IDispatch) : ComPtr<IDispatch>(&Doc());
        DISPID id = DISPID_UNKNOWN;
        if (!row[2].empty() && std::isdigit(static_cast<unsigned char>(row[2].front()))) id = std::stoi(row[2]);
        else if (FAILED(target->GetIDsOfNames(row[2], &id))) return "unknown name";
        const WORD how = row[3] == "get" ? DISPATCH_PROPERTYGET : row[3] == "put" ? DISPATCH_PROPERTYPUT : DISPATCH_METHOD;
        std::vector<Variant> args = ArgumentsOf(row[4]);
        Variant result;
        ExcepInfo excep;
        const HRESULT hr = target->Invoke(id, how, args, &result, &excep);
        if (hr == DISP_E_EXCEPTION)
            return HrName(hr) + " " + HrName(excep.scode) + (excep.description.empty() ? "" : " " + excep.description);
        return HrName(hr) + (Shown(result).empty() ? "" : " " + Shown(result));
    }

    // A range that is not the selection, set while the sink listens to it.
    std::string OtherRange(long active, long anchor) {
        ComPtr<ISourceRange> other;
        Doc().CreateRange(other.Out());
        DWORD cookie = 0;
        other->AdviseRangeSink(&m_doc->sink, &cookie);
        const HRESULT hr = other->SetRange(active, anchor);
        other->UnadviseRangeSink(cookie);
        Doc().DestroyRange(other.Get());
        return HrName(hr);
    }
    // `insertdata | POS | COUNT | text:TEXT or file:NAME | RESULT`: clipboard data put in place of
    // COUNT bytes; the outcome and the bytes inserted.
    std::string InsertData(const CaseRow& r) {
        ComPtr<CDataObject> data;
        if (r[3].starts_with("text:")) {
            data = CreateTextDataObject(r[3].substr(5));
        } else {
            data = ComPtr<CDataObject>(new CDataObject);
            data->SetData(RegisterClipboardFormat("FileName"), r[3].substr(5) + std::string(1, '\0'));
        }
        long inserted = 0;
        const HRESULT hr = Doc().InsertData(r.Long(1), r.Long(2), &inserted, data.Get(), &m_doc->sink);
        return (FAILED(hr) ? std::string("failed") : HrName(hr)) + " " + std::to_string(inserted);
    }

    void AddVerbs() {
        auto bit = [](bool value) { return std::string(value ? "1" : "0"); };
        m_verbs = {
            {"text", {1, [this](const CaseRow& r) { return Doc().SetText(r[1]), ""; }}},
            {"get", {0, [this](const CaseRow&) { return Doc().GetText(); }}},
            {"sel", {2, [this](const CaseRow& r) { return HrName(Sel().SetRange(r.Long(1), r.Long(2))); }}},
            {"type", {1, [this](const CaseRow& r) {
                 for (char c : r[1]) Sel().ReplaceText(&c, 1, nullptr);
                 return "";
             }}},
            {"seldelete", {0, [this](const CaseRow&) { return HrName(Sel().DeleteText(&m_doc->sink)); }}},
            {"insert", {2, [this](const CaseRow& r) {
                 return HrName(Doc().InsertText(r.Long(1), r[2].data(), static_cast<long>(r[2].size()), &m_doc->sink));
             }}},
            {"delete", {2, [this](const CaseRow& r) { return HrName(Doc().DeleteText(r.Long(1), r.Long(2), &m_doc->sink)); }}},
            {"replace", {3, [this](const CaseRow& r) {
                 return HrName(Doc().ReplaceText(r.Long(1), r.Long(2), r[3].data(), static_cast<long>(r[3].size()), &m_doc->sink));
             }}},
            {"undo", {0, [this](const CaseRow&) { return Undone(true); }}},
            {"redo", {0, [this](const CaseRow&) { return Undone(false); }}},
            {"begin", {1, [this](const CaseRow& r) { return HrName(UndoManager()->BeginGroup(r[1].c_str())); }}},
            {"end", {0, [this](const CaseRow&) { return HrName(UndoManager()->EndGroup()); }}},
            {"undotitle", {0, [this](const CaseRow&) { return Doc().UndoTitle(); }}},
            {"redotitle", {0, [this](const CaseRow&) { return Doc().RedoTitle(); }}},
            {"undoempty", {0, [this, bit](const CaseRow&) { return bit(Doc().IsUndoEmpty()); }}},
            {"redoempty", {0, [this, bit](const CaseRow&) { return bit(Doc().IsRedoEmpty()); }}},
            {"modified", {0, [this, bit](const CaseRow&) { return bit(Doc().IsModified()); }}},
            {"setmodified", {1, [this](const CaseRow& r) { return Doc().SetModified(r[1] == "1"), ""; }}},
            {"events", {0, [this](const CaseRow&) {
                 const std::string log = m_doc->sink.Log();
                 m_doc->sink.events.clear();
                 return log;
             }}},
            {"invoke", {4, [this](const CaseRow& r) { return Invoke(r); }}},
            {"selreplace", {1, [this](const CaseRow& r) {
                 return HrName(Sel().ReplaceText(r[1].data(), static_cast<long>(r[1].size()), &m_doc->sink));
             }}},
            {"otherrange", {2, [this](const CaseRow& r) { return OtherRange(r.Long(1), r.Long(2)); }}},
            {"insertdata", {3, [this](const CaseRow& r) { return InsertData(r); }}},
            {"copytext", {2, [this](const CaseRow& r) {
                 char buffer[16] = {};
                 return HrName(Doc().CopyText(buffer, r.Long(1), r.Long(2)));
             }}},
            {"linestart", {1, [this](const CaseRow& r) {
                 long start = -1;
                 return HrName(Doc().GetTextLineStart(r.Long(1), &start)) + " " + std::to_string(start);
             }}},
            {"charat", {1, [this](const CaseRow& r) { return std::to_string(Doc().GetCharAt(r.Long(1))); }}},
        };
    }

    // A file of the folder by its name; - for none (the document's own path).
    std::string File(const std::string& name) const { return name == "-" ? "" : PathOf(name); }
    std::string Relative(const std::string& path) const {
        return path.starts_with(dir.string() + "/") ? path.substr(dir.string().size() + 1) : path;
    }

    // Files, encodings and the code page:
    //   codepage | N                       the process code page until the case ends
    //   write | NAME | BYTES, read | NAME | BYTES    a file of the test's folder
    //   load | NAME | LABEL or - | RESULT, save | NAME or - | RESULT
    //   error | TEXT                       TEXT, when the last load or save said it
    //   encoding | NAME, setencoding | LABEL | RESULT, bom | 0 or 1, setbom | 0 or 1
    //   default | NAME, setdefault | LABEL | RESULT    the host's default for undeclared files
    //   hugefile | NAME                    a file too large to load
    //   path | NAME, getpathname | NAME or the outcome, lines | N, files | NAMES (in the folder)
    //   chmod | NAME | MODE, mode | NAME | MODE (octal), link | TARGET | NAME, readlink | NAME | TARGET
    void AddFileVerbs() {
        auto bit = [](bool value) { return std::string(value ? "1" : "0"); };
        m_verbs.insert({
            {"codepage", {1, [this](const CaseRow& r) {
                 m_codePage.reset();
                 return m_codePage = std::make_unique<CodePageScope>(static_cast<UINT>(r.Long(1))), "";
             }}},
            {"write", {2, [this](const CaseRow& r) { return Write(r[1], r[2]), ""; }}},
            {"read", {1, [this](const CaseRow& r) { return ReadAll(PathOf(r[1])); }}},
            {"load", {2, [this](const CaseRow& r) {
                 return HrName(Doc().LoadFile(File(r[1]), &m_error, r[2] == "-" ? "" : r[2]));
             }}},
            {"save", {1, [this](const CaseRow& r) { return HrName(Doc().SaveFile(File(r[1]), &m_error)); }}},
            {"error", {0, [this](const CaseRow& r) {
                 return m_error.find(r.fields.back()) != std::string::npos ? r.fields.back() : m_error;
             }}},
            {"encoding", {0, [this](const CaseRow&) { return Doc().Encoding(); }}},
            {"setdefault", {1, [this](const CaseRow& r) { return HrName(Doc().SetDefaultEncoding(r[1])); }}},
            {"default", {0, [this](const CaseRow&) { return Doc().DefaultEncoding(); }}},
            // A sparse file one byte over the limit of a document: refused by its size, for reading it
            // would take minutes.
            {"hugefile", {1, [this](const CaseRow& r) {
                 std::filesystem::resize_file(Write(r[1], ""), static_cast<uintmax_t>(CHtmlDocument::kMaxLength) + 1);
                 return "";
             }}},
            {"setencoding", {1, [this](const CaseRow& r) { return HrName(Doc().SetEncoding(r[1])); }}},
            {"bom", {0, [this, bit](const CaseRow&) { return bit(Doc().ByteOrderMark()); }}},
            {"setbom", {1, [this](const CaseRow& r) { return Doc().SetByteOrderMark(r[1] == "1"), ""; }}},
            {"path", {0, [this](const CaseRow&) { return Relative(Doc().PathName()); }}},
            {"getpathname", {0, [this](const CaseRow&) {
                 char name[260] = "unchanged";
                 const HRESULT hr = Doc().GetPathName(name);
                 return FAILED(hr) ? HrName(hr) + (name[0] ? " " + std::string(name) : "") : Relative(name);
             }}},
            {"lines", {0, [this](const CaseRow&) { return std::to_string(Doc().LineCount()); }}},
            {"chmod", {2, [this](const CaseRow& r) {
                 return std::to_string(::chmod(PathOf(r[1]).c_str(), static_cast<mode_t>(std::stoul(r[2], nullptr, 8))));
             }}},
            {"mode", {1, [this](const CaseRow& r) {
                 struct stat st {};
                 std::ostringstream mode;
                 mode << std::oct << (::stat(PathOf(r[1]).c_str(), &st) == 0 ? st.st_mode & 07777 : 0);
                 return mode.str();
             }}},
            {"link", {2, [this](const CaseRow& r) {
                 std::filesystem::create_directories(std::filesystem::path(PathOf(r[2])).parent_path());
                 return std::filesystem::create_symlink(r[1], PathOf(r[2])), "";
             }}},
            {"readlink", {1, [this](const CaseRow& r) {
                 std::error_code error;
                 const std::filesystem::path target = std::filesystem::read_symlink(PathOf(r[1]), error);
                 return error ? "not a link" : target.string();
             }}},
            {"files", {0, [this](const CaseRow&) {
                 std::vector<std::string> names;
                 for (const auto& entry : std::filesystem::directory_iterator(dir))
                     names.push_back(entry.path().filename().string());
                 std::sort(names.begin(), names.end());
                 std::string out;
                 for (const std::string& name : names) out += (out.empty() ? "" : " ") + name;
                 return out;
             }}},
        });
    }

    std::unique_ptr<CodePageScope> m_codePage;
    std::unique_ptr<CAttachedDoc> m_doc;
    std::map<std::string, Verb> m_verbs;
    std::string m_error;  // what the last load or save said
};

class DocumentScripts : public ::testing::TestWithParam<const char*> {};

TEST_P(DocumentScripts, StepsGiveTheirResults) {
    CDocScript script;
    for (const CaseRow& row : ReadCaseRows(std::string("htmldoc/cases/") + GetParam())) {
        SCOPED_TRACE(row.where);
        ASSERT_NO_FATAL_FAILURE(script.Play(row));
    }
}

INSTANTIATE_TEST_SUITE_P(Cases, DocumentScripts, ::testing::Values("undo.cases", "dispatch.cases", "files.cases", "contract.cases"),
                         [](const auto& info) {
                             const std::string name = info.param;
                             return name.substr(0, name.find('.'));
                         });

}  // namespace
