// What loading put into the text in place of the file's own bytes, so that saving can put them
// back: a reference for a character that the process code page lacks, a stand-in for bytes that
// read as no character, a character whose bytes its encoding would write otherwise, a shift
// sequence. Each mark covers a span of the text and moves with edits; an edit that touches its
// text drops it, and undoing the edit brings it back.
//
// The marks sit in two stacks around the place of the last edit, as text sits in a gap buffer:
// those in front by their position, those behind by their distance from the end of the text, so
// that an edit moves none of them and typing in one place costs the same for any number of marks.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Twelve bytes, since a page may hold millions: positions stay below 2 GB, and the text and the
// bytes of a mark are a few bytes.
struct CLoadMark {
    int32_t pos = 0;         // where its text starts
    uint16_t length = 0;     // bytes of its text; 0 for a shift sequence, which stands for no text
    uint16_t rawLength = 0;  // 0: the text is a reference whose character is written in the file's encoding
    uint32_t rawOffset = 0;  // the file's bytes, in the store's pool
};

class CLoadMarks {
public:
    // No marks, for a text of this length.
    void Reset(long textLength);
    // Adds a mark behind all others, while the text is made; EndText gives the length of the
    // text when it is done.
    void Append(long pos, long length, std::string_view raw);
    void EndText(long textLength);
    std::string_view Raw(const CLoadMark& mark) const { return std::string_view(m_pool).substr(mark.rawOffset, mark.rawLength); }
    size_t Count() const { return m_front.size() + m_back.size(); }

    // Follows an edit that put newCount bytes in place of the oldCount at pos. A mark whose text
    // the edit changes goes; a shift sequence at either end of the span stays there. `touched`
    // gets every mark at or inside the span as it was, for undo.
    void Replace(long pos, long oldCount, long newCount, std::vector<CLoadMark>* touched);
    // Follows the undoing of such an edit: what is at or inside the span goes, and the marks that
    // the edit touched come back.
    void Restore(long pos, long oldCount, long newCount, const std::vector<CLoadMark>& touched);
    // Adds marks for the text that an edit just put at pos, at positions within that text.
    void Insert(long pos, const std::vector<CLoadMark>& made);

    // Calls f(mark) for every mark in order, with its position in the text.
    template <class F>
    void ForEach(F&& f) const {
        for (const CLoadMark& mark : m_front) f(mark);
        for (auto it = m_back.rbegin(); it != m_back.rend(); ++it) {
            CLoadMark mark = *it;
            mark.pos = static_cast<int32_t>(m_nLength - mark.pos);
            f(mark);
        }
    }

private:
    void MoveGap(long pos);
    // Takes out the marks at or inside [pos, pos + count], in order.
    std::vector<CLoadMark> TakeSpan(long pos, long count);
    void PushBack(CLoadMark mark);  // a mark at its absolute position, in front of those behind

    std::vector<CLoadMark> m_front;  // positions, ascending
    std::vector<CLoadMark> m_back;   // distances from the end; the nearest to the gap last
    long m_nLength = 0;
    std::string m_pool;
};
