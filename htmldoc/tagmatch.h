// Partners in HTML text: brackets ()[]{} with nesting, an element's start tag and its end tag
// with nesting of tags of the same name, and the two ends of one tag; and the starts of tags
// for stepping from tag to tag.
#pragma once
#include <string>

#include "htmldoc/gapbuffer.h"

struct CTagInfo {
    long start = 0;        // the '<'
    long end = 0;          // behind the '>', or the text length for a tag that is not closed
    std::string name;      // lower case; empty for comments, declarations and processing
    bool closing = false;  // </name>
    bool selfClosing = false;
    bool special = false;  // <!-- -->, <!...>, <?...>

    bool Terminated(const CGapBuffer& text) const { return end > start && text.At(end - 1) == '>'; }
};

class CTagMatcher {
public:
    explicit CTagMatcher(const CGapBuffer& text) : m_text(text) {}

    // The partner of what stands at `pos`, or -1. A bracket at `pos`, else a tag around `pos`
    // (from its '<' or its name to the partner tag's '<'; from '<' of a tag without partner to
    // its '>', from '>' to its '<'), else a bracket just in front of `pos`.
    long FindMatch(long pos) const;
    // The '<' of the next tag behind `pos`, or of the last one in front of it; -1 if none.
    long NextTagStart(long pos) const;
    long PrevTagStart(long pos) const;

    bool IsTagStart(long pos) const;
    CTagInfo ParseTag(long lt) const;

private:
    long MatchBracket(long pos) const;
    long MatchTag(long pos) const;
    // The '<' of the tag that `pos` lies in, or -1.
    long TagAround(long pos) const;
    long FindClosing(const CTagInfo& tag) const;
    long FindOpening(const CTagInfo& tag) const;
    // The '<' of the tag start in front of `pos`, jumping over comments; -1 if none.
    long PrevTagStartSkippingComments(long pos) const;
    // The first occurrence of `what` at or behind `from`, or -1.
    long Find(long from, const char* what) const;
    long FindBack(long before, const char* what) const;
    bool At(long pos, const char* what) const;

    const CGapBuffer& m_text;
};
