// The pages of the picker: tags, attributes, enumerated values, colours, pixel widths, fonts,
// font sizes, scripts, files of seven kinds, and the help page of types with nothing to choose.
#pragma once
#include <array>

#include "src/picker/pickpage.h"

// Pages whose one option is the case of their values.
class CHTMLSyntaxCasePage : public CHTMLSyntaxPickPage {
public:
    BOOL SetOption(int index) override;
    int GetOptionCount() const override { return 2; }
    std::string GetOptionName(int index) const override;
};

class CHTMLSyntaxTagPage : public CHTMLSyntaxCasePage {
public:
    void DrawIcon(const PickDraw& draw, int row, const RECT& rc) override;
};

class CHTMLSyntaxAttrPage : public CHTMLSyntaxCasePage {
public:
    ComPtr<CHTMLSyntaxPickItem> CreateItem(ISourceSchema* pSchema) override;
    void DrawIcon(const PickDraw& draw, int row, const RECT& rc) override;
};

class CHTMLSyntaxEnumPage : public CHTMLSyntaxCasePage {
public:
    void DrawIcon(const PickDraw& draw, int row, const RECT& rc) override;
};

// Colour forms, the page's options.
constexpr int COLORFORM_USER = 0, COLORFORM_HEXUPPER = 1, COLORFORM_NAMEUPPER = 2, COLORFORM_HEXLOWER = 3,
              COLORFORM_NAMELOWER = 4;

class CHTMLSyntaxColorPage : public CHTMLSyntaxPickPage {
public:
    ComPtr<CHTMLSyntaxPickItem> CreateItem(ISourceSchema* pSchema) override;
    BOOL SetOption(int index) override;
    int GetOptionCount() const override { return 5; }
    std::string GetOptionName(int index) const override;
    BOOL HasMore() const override { return TRUE; }
    BOOL HasRecent() const override { return TRUE; }
    BOOL RunMore(std::string& value, const std::string& current) override;
    void AddSchemaRows() override;
    void AddSpecialRows() override;
    void DrawIcon(const PickDraw& draw, int row, const RECT& rc) override;
};

class CHTMLSyntaxPixelPage : public CHTMLSyntaxPickPage {
public:
    CHTMLSyntaxPixelPage() { m_bSorted = false; }
    void AddSpecialRows() override;
    BOOL GetDescription(std::string& text) override;
    void DrawItem(const PickDraw& draw, int row, const RECT& rc, bool selected) override;
    // The row height that sets how many widths are offered.
    void SetRowHeight(int height) { m_nRowHeight = height; }

private:
    int m_nRowHeight = 15;
};

class CHTMLSyntaxFontPage : public CHTMLSyntaxPickPage {
public:
    CHTMLSyntaxFontPage() { m_nCase = CASE_UNCHANGED; }
    BOOL SetOption(int index) override;
    int GetOptionCount() const override { return 3; }
    std::string GetOptionName(int index) const override;
    BOOL HasMore() const override { return TRUE; }
    BOOL HasRecent() const override { return TRUE; }
    BOOL RunMore(std::string& value, const std::string& current) override;
    void AddSpecialRows() override;
    void DrawItem(const PickDraw& draw, int row, const RECT& rc, bool selected) override;
};

class CHTMLSyntaxSizePage : public CHTMLSyntaxPickPage {
public:
    CHTMLSyntaxSizePage() { m_bSorted = false; }
    void AddSpecialRows() override;
};

class CHTMLSyntaxScriptPage : public CHTMLSyntaxPickPage {};

// File kinds, in the order of the Request events.
constexpr int FILEKIND_URL = 0, FILEKIND_HTML = 1, FILEKIND_PICTURE = 2, FILEKIND_SOUND = 3,
              FILEKIND_DIRECTORY = 4, FILEKIND_ANIMATION = 5, FILEKIND_JAVA = 6, FILEKIND_COUNT = 7;

class CHTMLSyntaxFilePage : public CHTMLSyntaxPickPage {
public:
    CHTMLSyntaxFilePage() { m_nCase = CASE_UNCHANGED; }
    void SetKind(int kind) { m_nKind = kind; }
    int GetKind() const { return m_nKind; }
    BOOL HasMore() const override { return TRUE; }
    BOOL HasRecent() const override { return TRUE; }
    BOOL RunMore(std::string& value, const std::string& current) override;
    void DrawIcon(const PickDraw& draw, int row, const RECT& rc) override;
    void DrawItem(const PickDraw& draw, int row, const RECT& rc, bool selected) override;

private:
    int m_nKind = FILEKIND_URL;
};

class CHTMLSyntaxHelpPage : public CHTMLSyntaxPickPage {
public:
    CHTMLSyntaxHelpPage() {
        m_bSorted = false;
        m_bDisabled = true;
    }
    void AddSchemaRows() override;
    void AddSpecialRows() override;
    BOOL GetValue(std::string& value) override;
    int RowHeight(int row, int textHeight, int listHeight) const override;
    void DrawItem(const PickDraw& draw, int row, const RECT& rc, bool selected) override;

private:
    std::string m_strTitle;
    std::string m_strHelp;
};

// The page index of an attribute's data type.
int PageIndexOfType(long type);
// Shortens a path in the middle with "..." until it fits `width` pixels of dc's font.
std::string ShortenPath(CDC& dc, const std::string& path, long width);
