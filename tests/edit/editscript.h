// Behaviour cases as data: a file holds cases, each a starting text with its selection marked,
// the options, a sequence of keys, characters, clicks and automation calls, and what must hold
// afterwards. This header reads such files; behaviour_test.cpp plays them on the test backend.
//
// A case:
//
//   case Shift+Left extends the selection          the name, unique within its file
//   text ab{^}cd{|}ef                             {|} the caret, {^} the anchor (absent: at the caret)
//   options WordWrap=1 AutoIndent=0               properties set through automation before anything
//   codepage 932 | wrapcolumns 10 | nodoc | nofocus
//   key Shift+Left                                 actions, in order (see behaviour_test.cpp)
//   expect ab{^}c{|}def                            text and selection at this point
//   events SelectionChanged(3,2)                   events since the previous `events` line
//   beeps 0                                        beeps since the case began
//
// Texts are escaped: \r \n \t \\ \xNN, and \{ for a brace that starts no marker.
#pragma once
#include <string>
#include <vector>

struct EditStep {
    std::string verb;  // the first word of the line
    std::string rest;  // the line behind it, trimmed
    int line = 0;      // in the file, for messages
};

struct EditCase {
    std::string file;
    std::string name;
    int line = 0;
    std::vector<EditStep> setup;  // text, options and the other settings, in order
    std::vector<EditStep> steps;  // actions and expectations, in order
};

// A text with its markers taken out: the bytes, the caret and the anchor.
struct MarkedText {
    std::string text;
    long active = 0;
    long anchor = 0;
};

// Reads every case of every *.cases file in a folder, in file and line order.
std::vector<EditCase> ReadEditCases(const std::string& folder);
MarkedText ParseMarkedText(const std::string& escaped);
// Marks a selection into text again, escaped as the files write it.
std::string FormatMarkedText(const std::string& text, long active, long anchor);
