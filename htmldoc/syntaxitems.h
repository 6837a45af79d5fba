// The objects that the document hands out for its syntax: the items of GetItemAt (tags with
// their names, character references with a hint, and the rest by kind), the documentation
// items of GetDocItemAt, and the schema tree of GetSchema.
#pragma once
#include <string>

#include "platform/com/dispatch.h"
#include "src/document/sourcetext.h"

// Kinds of the items of GetItemAt.
enum SyntaxItemKind : long {
    SI_TEXT = 0,
    SI_TAG = 1,        // a tag, end tag, declaration, processing instruction or CDATA section
    SI_CHAR_REF = 2,   // a character reference: offers a hint
    SI_COMMENT = 3,
    SI_ERROR = 4,      // a stray '<' or an unknown character reference
};

// An item of GetItemAt; `text` is the tag name (upper case, "/" in front for an end tag) or the
// hint of a character reference.
ComPtr<ISourceSyntaxItem> CreateSyntaxItem(long kind, std::string text);

// The documentation of a tag or attribute of the schema; null when the schema has none. An end
// tag's item stands for its tag's item through ISourceDocLink.
ComPtr<ISourceDocItem> CreateTagDocItem(int tag, bool endTag);
ComPtr<ISourceDocItem> CreateAttrDocItem(int attr);

// The automation object of the schema: its property 1 is the root ISourceSchema.
ComPtr<IDispatch> CreateSchemaDispatch();
