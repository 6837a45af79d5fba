// The peer of the view benchmark: the same workloads on a QScintilla widget of the same size,
// with the same font, the HTML lexer for syntax colours, and the same wrap mode. Included by
// bench/view.cpp when the build found QScintilla.
#pragma once
#include <Qsci/qscilexerhtml.h>
#include <Qsci/qsciscintilla.h>

#include <QApplication>
#include <memory>
#include <string>
#include <vector>

#include "bench/benchtools.h"
#include "bench/htmlgen.h"
#include "bench/peerworkloads.h"

namespace bench {

class CPeer {
public:
    CPeer(const std::string& text, bool wrap) : m_sci(std::make_unique<QsciScintilla>()) {
        m_sci->resize(1000, 800);
        auto* lexer = new QsciLexerHTML(m_sci.get());
        lexer->setFont(QFont("Liberation Serif", 12));  // every style, as the view's default font
        m_sci->setLexer(lexer);
        m_sci->setMarginWidth(0, 60);
        m_sci->setWrapMode(QsciScintilla::WrapNone);
        m_sci->show();
        QApplication::processEvents();
        m_sci->SendScintilla(QsciScintillaBase::SCI_SETTEXT, text.c_str());
        if (wrap) Wrap();
        QApplication::processEvents();
    }
    // Word wrap, with every line laid out: showing the last line needs the rows of all before it.
    void Wrap() {
        m_sci->setWrapMode(QsciScintilla::WrapWord);
        const long lines = m_sci->SendScintilla(QsciScintillaBase::SCI_GETLINECOUNT);
        m_sci->SendScintilla(QsciScintillaBase::SCI_ENSUREVISIBLE, lines - 1);
    }
    // The text set, then every line wrapped; the wrap is its full layout.
    template <class Report>
    static std::unique_ptr<CPeer> Open(const std::string& text, double megabytes, const std::string& tag, Report report) {
        auto peer = std::make_unique<CPeer>(text, false);
        const auto t0 = Clock::now();
        peer->Wrap();
        report("reformat_wrap_" + tag, megabytes / SecondsSince(t0), "MB/s");
        return peer;
    }
    static std::string MemoryFigure() { return "memory_per_text_byte_"; }
    long Length() const { return m_sci->SendScintilla(QsciScintillaBase::SCI_GETLENGTH); }
    void Send(unsigned msg, unsigned long w = 0, long l = 0) { m_sci->SendScintilla(msg, w, l); }
    void MoveCaret(long at) { Send(QsciScintillaBase::SCI_GOTOPOS, static_cast<unsigned long>(at)); }
    void ForgetStyles() { Send(QsciScintillaBase::SCI_CLEARDOCUMENTSTYLE); }
    void Type() { m_sci->SendScintilla(QsciScintillaBase::SCI_ADDTEXT, 1UL, "x"); }
    void RepaintAll() { m_sci->viewport()->repaint(); }
    QsciScintilla* Widget() { return m_sci.get(); }

private:
    std::unique_ptr<QsciScintilla> m_sci;
};

template <class Report>
void RunPeer(const std::vector<double>& sizes, Report report) {
    {
        std::string line;
        while (line.size() < 5000) line += "<td class=\"cell\">value</td>";
        line.resize(5000);
        CPeer peer(line + "\n" + htmlgen::GenerateHtml(100000), false);
        // The point where the line's last character ends.
        const long x = peer.Widget()->SendScintilla(QsciScintillaBase::SCI_POINTXFROMPOSITION, 0UL, 5000L);
        std::vector<double> micros;
        for (int i = 0; i < 1000; ++i) {
            const auto t0 = Clock::now();
            const long pos = peer.Widget()->SendScintilla(QsciScintillaBase::SCI_POSITIONFROMPOINT,
                                                          static_cast<unsigned long>(x), 5L);
            micros.push_back(MicrosSince(t0));
            if (pos != 5000) std::fprintf(stderr, "peer click gave %ld\n", pos);
        }
        report("click_end_of_5000_byte_line", Percentile(micros, 0.5), "us");
    }
    {
        std::string text;
        for (char c : htmlgen::GenerateHtml(10'000'000))
            if (c != '\n' && c != '\r' && c != '\t') text += c;
        const auto t0 = Clock::now();
        CPeer peer(text, true);
        peer.RepaintAll();
        report("minified_10mb_wrap_and_paint", 1e3 * SecondsSince(t0), "ms");
    }
    PeerSizes<CPeer>("peer", sizes, report);
}

}  // namespace bench
