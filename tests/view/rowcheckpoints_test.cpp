// Long rows against a model: a paint and a position mapping that start from remembered states
// give what a walk from the row's start gives, through random edits, typing, classes,
// selections, focus changes, options and horizontal scrolls. The model is the same control with
// its checkpoints off.
#include <random>
#include <sstream>

#include "htmldoc/sourcechange.h"
#include "tests/view/viewfixture.h"

namespace {

// Everything a drawing call recorded but the region it could reach and the surfaces.
std::string Describe(const DrawLog& log) {
    std::ostringstream out;
    for (const DrawRecord& r : log) {
        out << int(r.kind) << ' ' << r.rc.left << ',' << r.rc.top << ',' << r.rc.right << ',' << r.rc.bottom << ' ' << r.color
            << " [" << r.text << "] " << r.origin.x << ',' << r.origin.y << ' ' << r.font.lfFaceName << '/'
            << r.font.lfWeight << '/' << int(r.font.lfItalic) << ' ' << r.clipped << ' ' << r.clip.left << ','
            << r.clip.right << ' ' << r.from.x << ',' << r.from.y << ',' << r.to.x << ',' << r.to.y;
        for (int a : r.advances) out << ' ' << a;
        out << '\n';
    }
    return out.str();
}

class LongRows : public ViewFixture {
protected:
    void SetUp() override {
        NewControl(420, 160);
        ctrl->SetOption(OPT_WORDWRAP, FALSE);
        ctrl->SetOption(OPT_HIDESELECTION, TRUE);
        // Two long rows around a short one; a lone CR ends what the second shows, unless it is
        // selected or hidden characters show.
        doc = CreateHtmlDocument();
        syntax = std::make_unique<CScriptedSyntax>(doc.Get());
        doc->SetText(RandomBytes(16000) + "\n" + "short\n" + RandomBytes(9000) + "\r" + RandomBytes(700) + "\n");
        SetClasses(0, doc->GetLength());
        ctrl->SetDocument(syntax.get());
    }

    long Random(long n) { return std::uniform_int_distribution<long>(0, n - 1)(rng); }

    std::string RandomBytes(long count) {
        static const char kBytes[] = "abcdefghij <>=/\"'&;#\xE9";
        std::string out;
        for (long i = 0; i < count; ++i) {
            // Few tabs: a tab stop would hide a wrong x behind it.
            out += Random(3000) == 0 ? '\t' : kBytes[Random(sizeof kBytes - 1)];
        }
        return out;
    }

    // New classes in runs over [start, end).
    void SetClasses(long start, long end) {
        for (long pos = start; pos < end;) {
            // Short runs of many formats, and long ones that the painter cuts by length.
            const long count = std::min(end - pos, 1 + Random(Random(3) ? 60 : 6000));
            syntax->SetClass(pos, count, Random(11));
            pos += count;
        }
    }
    // The same, told to the view as the document tells it.
    void Classify(long start, long end) {
        SetClasses(start, end);
        auto* change = new CSourceChange(SA_STYLE, start, end);
        change->AddRef();  // the message's reference
        PostMessage(ctrl->GetSafeHwnd(), WM_SOURCE_REPAINT, 0, reinterpret_cast<LPARAM>(change->AsUnknown()));
        MSG msg;
        while (PeekMessage(&msg, ctrl->GetSafeHwnd(), 0, 0, PM_REMOVE)) SendMessage(msg.hwnd, msg.message, msg.wParam, msg.lParam);
    }

    void RandomStep() {
        const long length = doc->GetLength();
        const long roll = Random(100);
        if (roll < 30) {
            const std::string bytes = RandomBytes(1 + Random(3));
            doc->InsertText(Random(length), bytes.data(), static_cast<long>(bytes.size()), nullptr);
        } else if (roll < 40) {
            doc->DeleteText(Random(length - 1), 1 + Random(2), nullptr);
        } else if (roll < 70) {
            const long start = Random(length - 1);
            Classify(start, std::min(length, start + 1 + Random(200)));
        } else if (roll < 85) {
            const long anchor = Random(length);
            ctrl->SetSelection(anchor, std::clamp(anchor + Random(20000) - 10000, 0L, length));
        } else if (roll < 88) {
            ctrl->SetOption(OPT_DISPLAYALL, Random(2));
        } else if (roll < 91) {
            // Under HideSelection the selection shows only with the focus: a selection over what
            // the window shows, painted, then the focus taken or given.
            const long at = ctrl->PositionFromClientPoint(ctrl->m_nIndentSize + 2, 2);
            ctrl->SetSelection(std::max(0L, at - Random(6000)), std::min(length, at + Random(6000)));
            PaintNow();
            platform->MoveFocus(ctrl->m_bFocused ? nullptr : ctrl->GetSafeHwnd());
        } else if (roll < 96) {
            ctrl->SetFormatStyleWord(static_cast<SHORT>(1 + Random(11)), static_cast<long>(Random(4)));
        } else {
            // Typing where the caret was just placed, or one in front: the walk to the caret
            // remembered where it ended. A tab is wider than the byte it pushes on.
            POINT pt;
            typedAt = Random(length);
            ctrl->ClientPointFromPosition(typedAt, &pt);
            typedAt = std::max(0L, typedAt - Random(2));
            doc->InsertText(typedAt, Random(2) ? "x" : "\t", 1, nullptr);
        }
        // Far along a row, or a few cells on, as a scroll bar drag and a key scroll it.
        const long left = Random(2) ? Random(170000) : std::max(0L, ctrl->m_nLeftPixel + Random(200) - 100);
        ctrl->ScrollTo(0, left);
    }

    // What a paint of the invalid region draws, then of everything, with the checkpoints as
    // they are and without them.
    void ExpectSamePaint(int step) {
        const std::vector<RECT> pending = Window().PendingRegion().Rects();
        for (const bool whole : {false, true}) {
            std::string drawn[2];
            for (const bool points : {true, false}) {
                ctrl->m_RowCheckpoints.Enable(points);
                if (whole) ctrl->InvalidateControl();
                if (!points && !whole)
                    for (const RECT& rc : pending) InvalidateRect(ctrl->GetSafeHwnd(), &rc, FALSE);
                drawn[points] = Describe(PaintNow());
            }
            ctrl->m_RowCheckpoints.Enable(true);
            ASSERT_EQ(drawn[true], drawn[false]) << "step " << step << (whole ? " whole" : " invalid part");
        }
    }

    void ExpectSameMapping(int step) {
        const long length = doc->GetLength();
        for (int i = 0; i < 7; ++i) {
            const long pos = i < 3 ? std::min(typedAt + i, length) : Random(length + 1);
            const LONG y = static_cast<LONG>(Random(3) * ctrl->m_nLineHeight + 2);
            const LONG x = static_cast<LONG>(Random(170000) - ctrl->m_nLeftPixel);
            POINT withPoints{}, fromStart{};
            ctrl->ClientPointFromPosition(pos, &withPoints);
            const long hit = ctrl->PositionFromClientPoint(x, y);
            ctrl->m_RowCheckpoints.Enable(false);
            ctrl->ClientPointFromPosition(pos, &fromStart);
            const long model = ctrl->PositionFromClientPoint(x, y);
            ctrl->m_RowCheckpoints.Enable(true);
            ASSERT_EQ(withPoints, fromStart) << "step " << step << " position " << pos;
            ASSERT_EQ(hit, model) << "step " << step << " point " << x << ',' << y;
        }
    }

    std::mt19937 rng{18};
    std::unique_ptr<CScriptedSyntax> syntax;
    long typedAt = 0;  // where the last character was typed
};

TEST_F(LongRows, CheckpointsGiveWhatAWalkFromTheRowStartGives) {
    Focus();
    for (int step = 0; step < 150; ++step) {
        RandomStep();
        ASSERT_NO_FATAL_FAILURE(ExpectSamePaint(step));
        ASSERT_NO_FATAL_FAILURE(ExpectSameMapping(step));
    }
}

TEST_F(LongRows, APaintOrAMappingFarAlongARowLooksAtAFewThousandBytes) {
    ctrl->ScrollTo(0, 130000);
    PaintNow();
    POINT pt;
    ctrl->ClientPointFromPosition(15000, &pt);
    const auto classesAsked = [&](auto&& work) {
        const long before = syntax->classCalls;
        work();
        return syntax->classCalls - before;
    };
    const auto paint = [&] {
        ctrl->InvalidateControl();
        PaintNow();
    };
    const auto map = [&] { ctrl->ClientPointFromPosition(15500, &pt); };
    const long window = 3 * CRowCheckpoints::kSpacing;
    EXPECT_LT(classesAsked(paint), window);
    EXPECT_LT(classesAsked(map), window);
    ctrl->m_RowCheckpoints.Enable(false);
    EXPECT_GT(classesAsked(paint), 14000);
    EXPECT_GT(classesAsked(map), 15000);
}

}  // namespace
