// The registration store: where a module writes the identifiers of its classes and a host finds
// them again, in a file that the host names. Nothing of the desktop is touched.
//
// The file is text in UTF-8, one item a line:
//
//     zentrel-registration 1            the first line: the format and its version
//     # a comment                       comments and blank lines are kept out of the data
//     [CLSID\{09D5F3E5-...}]            a key, by its path from the root, parts split by '\'
//     =Zentrel Control                  the key's default value (no name before '=')
//     ProgID=Morvane.Zentrel2.1         a named value of the last key above
//     end                               the last line; a file without it was cut short
//
// Key paths and value names are compared without regard to case, as the system registry does.
// In values a backslash is written "\\", a line feed "\n" and a carriage return "\r". A key exists once its line is
// there, with or without values.
//
// Every save goes to a new file beside the store that then replaces it in one rename, so a
// reader sees the old store or the new one, never a part of either.
#pragma once
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/com/export.h"
#include "platform/com/guid.h"
#include "platform/com/types.h"

constexpr HRESULT REGDB_E_CLASSNOTREG = MakeHr(0x80040154u);
constexpr HRESULT CO_E_CLASSSTRING = MakeHr(0x800401F3u);
constexpr HRESULT STG_E_DOCFILECORRUPT = MakeHr(0x80030109u);
constexpr HRESULT STG_E_ACCESSDENIED = MakeHr(0x80030005u);

class ZENTREL_EXPORT CRegistrationStore {
public:
    // The outcome of a load or a save: S_OK, or the failure with a text that names the file.
    struct Result {
        HRESULT hr = S_OK;
        std::string message;
        bool Ok() const { return SUCCEEDED(hr); }
    };

    explicit CRegistrationStore(std::string path) : m_path(std::move(path)) {}
    const std::string& Path() const { return m_path; }

    // Reads the file. STG_E_FILENOTFOUND when there is none, STG_E_ACCESSDENIED or
    // STG_E_READFAULT when it cannot be read, STG_E_DOCFILECORRUPT (naming the line) when it is
    // not a store. On failure the store is left empty.
    Result Load();
    // Like Load, but a missing file is an empty store: what a first registration writes into.
    Result LoadOrEmpty();
    // Writes the whole store atomically; on failure the file stays as it was.
    Result Save() const;

    bool HasKey(const std::string& key) const;
    // The value `name` of `key` ("" is the default value); empty when either is missing.
    std::optional<std::string> Value(const std::string& key, const std::string& name = {}) const;
    // Makes the key (and its parents) if needed and sets the value.
    void SetValue(const std::string& key, const std::string& name, const std::string& value);
    void AddKey(const std::string& key);
    // Removes the key with every key below it; false when there was none.
    bool RemoveTree(const std::string& key);
    // The paths of all keys, in order.
    std::vector<std::string> Keys() const;

private:
    struct LessNoCase {
        bool operator()(const std::string& a, const std::string& b) const;
    };
    using Values = std::map<std::string, std::string, LessNoCase>;
    Result ParseLines(const std::string& text);
    Result Fail(HRESULT hr, const std::string& what) const;

    std::string m_path;
    std::map<std::string, Values, LessNoCase> m_keys;
};

// The class id that the store gives for a programmatic identifier: CO_E_CLASSSTRING when the
// store names no such class, or the store's own failure.
ZENTREL_EXPORT HRESULT CLSIDFromProgID(const CRegistrationStore& store, const std::string& progId, CLSID* clsid);
// The class's programmatic identifier as registered, or REGDB_E_CLASSNOTREG.
ZENTREL_EXPORT HRESULT ProgIDFromCLSID(const CRegistrationStore& store, REFCLSID clsid, std::string* progId);
// Makes an object of a registered class: finds its module in the store, loads it (a module
// already in this process is used as it is) and asks its DllGetClassObject for a factory.
// REGDB_E_CLASSNOTREG for a class the store does not know; CO_E_DLLNOTFOUND when the module
// cannot be loaded or exports no DllGetClassObject.
constexpr HRESULT CO_E_DLLNOTFOUND = MakeHr(0x800401F8u);
ZENTREL_EXPORT HRESULT CreateInstanceFromStore(const CRegistrationStore& store, REFCLSID clsid, REFIID riid, void** ppv);

// The file of the module this code is linked into: the shared library, or the program itself.
ZENTREL_EXPORT std::string CurrentModulePath();
