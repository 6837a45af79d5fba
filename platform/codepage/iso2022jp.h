// ISO-2022-JP read and written with its shift state in view: the reader splits the bytes into
// shift sequences and stretches of one character set, so that a caller can keep each sequence as
// the file has it; the writer shifts only where a character needs another set, so that a run of
// characters shares one sequence, and it can carry on from sequences written as they are.
#pragma once
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "platform/codepage/convert.h"

enum class JisSet {
    Ascii,     // ESC ( B
    Roman,     // ESC ( J: ASCII with a yen sign for 0x5C and an overline for 0x7E
    Jis0208,   // ESC $ B or ESC $ @: two bytes of 0x21..0x7E for each character
    Katakana,  // ESC ( I: half-width katakana, one byte of 0x21..0x5F each
};

struct CJisPiece {
    size_t nOffset = 0;
    size_t nLength = 0;
    JisSet set = JisSet::Ascii;  // of a stretch: the set it is in; of a shift: the set it chooses
    bool bShift = false;         // a shift sequence, not text
};

// Hands the pieces of `in` to `piece` in order. An escape that starts no shift sequence stays in
// the stretch around it, where it reads as no character.
void SplitIso2022Jp(std::string_view in, const std::function<void(const CJisPiece&)>& piece);

// The character set that a shift sequence chooses; false if the bytes are none.
bool JisSetOfShift(std::string_view bytes, JisSet* set);

class CIso2022JpWriter {
public:
    // Appends the characters, shifting where one needs another set. A character that the
    // encoding lacks (an escape, SO and SI among them) goes to the handler, in ASCII.
    void Write(std::u32string_view chars, std::string& out, const UnmappableHandler& onUnmappable,
               size_t* unmappable = nullptr);
    // Appends bytes of a file as they are; a shift sequence among them changes the set.
    void WriteRaw(std::string_view bytes, std::string& out);
    // Ends in ASCII if this writer itself shifted away from it last.
    void Finish(std::string& out);

    // The two bytes of JIS X 0208 for a character, or false.
    static bool Jis0208Of(char32_t ch, char bytes[2]);

private:
    void WriteEach(std::u32string_view chars, std::string& out, const UnmappableHandler& onUnmappable,
                   size_t* unmappable);
    void Shift(JisSet set, std::string& out);
    JisSet m_set = JisSet::Ascii;
    bool m_bShiftedHere = false;
};
