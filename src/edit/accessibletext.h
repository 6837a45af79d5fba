// The control's text as assistive technology reads it: every answer comes from the document by
// offset and from the line table by line, so its cost does not grow with the text.
#pragma once
#include "platform/window/accessible.h"

class CZentrelCtrl;

class CAccessibleText final : public IAccessibleText {
public:
    explicit CAccessibleText(CZentrelCtrl* owner) : m_pOwner(owner) {}

    long Length() override;
    std::string Text(long start, long end) override;
    void CharBounds(long pos, long* start, long* end) override;
    void WordBounds(long pos, long* start, long* end) override;
    void LineBounds(long pos, long* start, long* end) override;
    void Selection(long* active, long* anchor) override;
    void SetSelection(long active, long anchor) override;
    BOOL Replace(long start, long end, const std::string& text) override;
    BOOL ReadOnly() override;
    RECT CharRect(long pos) override;
    long PositionAt(POINT pt) override;
    void ScrollIntoView(long start, long end) override;

private:
    long Clamp(long pos);
    CZentrelCtrl* m_pOwner;
};
