// The window of a running print job: a small animation, the document's name, "Page n of m
// page(s)" and a bar. It is drawn at each page while the job holds the thread; its Cancel does
// not stop the job.
#pragma once
#include <memory>
#include <string>

#include "platform/gdi/printer.h"

// The animation: a sheet flies from the document on the left into the printer on the right, one
// frame further each kFrameMs while pages print. Drawn with filled rectangles only, so that it
// looks the same on every device.
class CPrintAnimation final : public IPrintAnimation {
public:
    static constexpr int kFrames = 10;
    // Time per frame: about two flights a second, slow enough to follow at any page rate.
    static constexpr DWORD kFrameMs = 50;

    SIZE GetSize() const override;
    void Paint(CDC* dc, const RECT& rc) override;
    // Moves to the frame that the time `now` (milliseconds, GetTickCount) falls in, counted from
    // the first call.
    void Advance(DWORD now);

private:
    bool m_bStarted = false;
    DWORD m_dwStart = 0;
    int m_nFrame = 0;
};

class CPrintProgressDialog {
public:
    // Shows the window over `parent`; without a print backend nothing shows and every call is
    // kept in the counters only.
    explicit CPrintProgressDialog(HWND parent);
    void SetName(const std::string& text);
    void SetPageCount(int n);
    // Shows page `n` and the animation's frame of this moment.
    void SetPage(int n);
    int GetPageCount() const { return m_nPages; }
    int GetPage() const { return m_nPage; }

private:
    CPrintAnimation m_animation;  // outlives the window, which draws it
    std::unique_ptr<IPrintProgress> m_pWindow;
    std::string m_strNameFormat;
    std::string m_strPageFormat;
    int m_nPages = 0;
    int m_nPage = 0;
};
