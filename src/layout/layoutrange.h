// The changed part of the document as the line breaker reports it.
#pragma once

struct LayoutRange {
    long nStart;  // first changed position
    long nEnd;    // last changed position; 0x7FFFFFFF: everything down to the window's bottom moved
};
