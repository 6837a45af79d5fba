// What accessibility costs a keystroke: characters typed in the middle of generated HTML of each
// size given in megabytes (default 100), in a 1000 x 800 Qt window, each through the whole path
// up to its repaint, in alternating rounds with accessibility off and on. While it is on, a
// stand-in for a screen reader hears every event (as Qt's bridge would hand them on) and does
// what one does after a keystroke: it speaks the typed text that the insertion carries, and
// when the caret moves it reads through the accessible interface the line at the caret and the
// character and word under it.
// Prints the median microseconds of each, and the median over the rounds of the ratio of their
// medians (on / off), which should stay below 1.1.
// Usage: bench_accessibility [MEGABYTES...]
#include <QAccessible>
#include <QApplication>
#include <string>
#include <vector>

#include "bench/htmlgen.h"
#include "bench/viewwindow.h"
#include "platform/qt/qtaccessible.h"
#include "platform/qt/qtwindow.h"

namespace {

using namespace bench;

constexpr int kRounds = 20;
constexpr int kKeysPerRound = 200;

long g_nEventsHeard = 0;

// Reads through the accessible interface what a screen reader speaks after an edit or a move.
void ScreenReader(QAccessibleEvent* event) {
    ++g_nEventsHeard;
    if (event->type() != QAccessible::TextCaretMoved) return;
    QAccessibleInterface* face = event->accessibleInterface();
    QAccessibleTextInterface* text = face ? face->textInterface() : nullptr;
    if (!text) return;
    const int caret = text->cursorPosition();
    int start = 0, end = 0;
    text->textAtOffset(caret, QAccessible::LineBoundary, &start, &end);
    text->textAtOffset(caret, QAccessible::CharBoundary, &start, &end);
    text->textAtOffset(caret, QAccessible::WordBoundary, &start, &end);
}

void MeasureSize(double megabytes) {
    g_nEventsHeard = 0;
    const std::string tag = std::to_string(static_cast<int>(megabytes)) + "mb";
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText(htmlgen::GenerateHtml(static_cast<size_t>(megabytes * 1e6)));
    CView view(doc.Get(), true);
    const long mid = doc->GetLength() / 2;
    view->SetSelection(mid, mid);
    view->ScrollCaretIntoView();
    UpdateWindow(view.Hwnd());
    // The ratio of each round's medians, so that a burst of load from elsewhere on the machine
    // weighs on one round and not on the whole figure.
    std::vector<double> off, on, ratios;
    for (int round = 0; round < kRounds; ++round) {
        double medians[2];
        for (bool active : {false, true}) {
            SetAccessibleListener(active ? ScreenReader : nullptr);
            const std::vector<double> micros = TypeBurst(view, kKeysPerRound);
            (active ? on : off).insert((active ? on : off).end(), micros.begin(), micros.end());
            medians[active] = Percentile(micros, 0.5);
        }
        ratios.push_back(medians[1] / medians[0]);
    }
    SetAccessibleListener(nullptr);
    Print("keystroke_" + tag + "_median", Percentile(off, 0.5), "us");
    Print("keystroke_accessible_" + tag + "_median", Percentile(on, 0.5), "us");
    Print("keystroke_accessible_" + tag + "_ratio", Percentile(ratios, 0.5), "x");
    Print("accessible_events_" + tag, static_cast<double>(g_nEventsHeard), "events");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        static char self[] = "bench_accessibility", hundred[] = "100";
        static char* defaults[] = {self, hundred, nullptr};
        argc = 2;
        argv = defaults;
    }
    return RunViewBenchmark(argc, argv, [](const std::vector<double>& sizes) {
        for (double megabytes : sizes) MeasureSize(megabytes);
    }, nullptr);
}
