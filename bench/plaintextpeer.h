// The second peer of the view benchmark: a QPlainTextEdit of the same size and font, word wrap
// on, with a syntax highlighter that colours HTML tags, attribute names, quoted values and
// comments. A comment or a quoted value may run over several lines: each block hands the state
// it ends in to the next through its block state.
#pragma once
#include <QApplication>
#include <QPlainTextEdit>
#include <QSyntaxHighlighter>
#include <QTextCharFormat>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "bench/benchtools.h"
#include "bench/peerworkloads.h"

namespace bench {

class CHtmlHighlighter final : public QSyntaxHighlighter {
public:
    explicit CHtmlHighlighter(QTextDocument* doc) : QSyntaxHighlighter(doc) {
        m_tag.setForeground(QColor(0x00, 0x00, 0x80));
        m_attribute.setForeground(QColor(0x80, 0x00, 0x80));
        m_value.setForeground(QColor(0x00, 0x80, 0x00));
        m_comment.setForeground(QColor(0x80, 0x80, 0x80));
    }

protected:
    void highlightBlock(const QString& text) override {
        State state = previousBlockState() < 0 ? kText : static_cast<State>(previousBlockState());
        int at = 0;
        while (at < text.size()) at = Step(text, at, state);
        setCurrentBlockState(state);
    }

private:
    // Where the scan is at a block's end: plain text, inside a tag, a comment, or a value quoted
    // with " or '.
    enum State { kText, kTag, kComment, kDoubleQuoted, kSingleQuoted };

    // Colours what starts at `at` in `state`; gives where the next step starts.
    int Step(const QString& text, int at, State& state) {
        switch (state) {
        case kText: return InText(text, at, state);
        case kTag: return InTag(text, at, state);
        case kComment: return Until(text, at, QStringLiteral("-->"), m_comment, state);
        case kDoubleQuoted: return Until(text, at, QStringLiteral("\""), m_value, state);
        case kSingleQuoted: return Until(text, at, QStringLiteral("'"), m_value, state);
        }
        return text.size();
    }

    int InText(const QString& text, int at, State& state) {
        const int open = text.indexOf(QLatin1Char('<'), at);
        if (open < 0) return text.size();
        if (text.mid(open, 4) == QLatin1String("<!--")) {
            state = kComment;
            setFormat(open, 4, m_comment);
            return open + 4;
        }
        int end = open + 1;
        if (end < text.size() && text[end] == QLatin1Char('/')) ++end;
        end = NameEnd(text, end);
        setFormat(open, end - open, m_tag);
        state = kTag;
        return end;
    }

    int InTag(const QString& text, int at, State& state) {
        const QChar c = text[at];
        if (c == QLatin1Char('>') || c == QLatin1Char('/')) {
            setFormat(at, 1, m_tag);
            if (c == QLatin1Char('>')) state = kText;
            return at + 1;
        }
        if (c == QLatin1Char('"') || c == QLatin1Char('\'')) {
            setFormat(at, 1, m_value);
            state = c == QLatin1Char('"') ? kDoubleQuoted : kSingleQuoted;
            return at + 1;
        }
        if (c.isSpace() || c == QLatin1Char('=')) return at + 1;
        const int end = std::max(NameEnd(text, at), at + 1);
        setFormat(at, end - at, m_attribute);
        return end;
    }

    // Colours up to and with `close`, or to the block's end when it is not there.
    int Until(const QString& text, int at, const QString& close, const QTextCharFormat& format, State& state) {
        const int found = text.indexOf(close, at);
        const int end = found < 0 ? static_cast<int>(text.size()) : found + static_cast<int>(close.size());
        setFormat(at, end - at, format);
        if (found >= 0) state = state == kComment ? kText : kTag;
        return end;
    }

    static int NameEnd(const QString& text, int at) {
        while (at < text.size() && (text[at].isLetterOrNumber() || text[at] == QLatin1Char('-') ||
                                    text[at] == QLatin1Char(':') || text[at] == QLatin1Char('!')))
            ++at;
        return at;
    }

    QTextCharFormat m_tag, m_attribute, m_value, m_comment;
};

class CPlainTextPeer {
public:
    // Shown, the text put in and coloured by the highlighter, and painted.
    explicit CPlainTextPeer(const std::string& text) : m_edit(std::make_unique<QPlainTextEdit>()) {
        m_edit->resize(1000, 800);
        m_edit->setFont(QFont("Liberation Serif", 12));
        m_edit->setLineWrapMode(QPlainTextEdit::WidgetWidth);
        m_edit->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        new CHtmlHighlighter(m_edit->document());
        m_edit->show();
        QApplication::processEvents();
        m_edit->setPlainText(QString::fromStdString(text));
        QApplication::processEvents();
        RepaintAll();
    }
    // Opening is the whole path to the first paint: the text put in, coloured from the top to
    // the end by the highlighter, and the first wrapped rows painted. A plain text edit lays out
    // only the blocks it shows, so it has no full layout of its own to measure.
    template <class Report>
    static std::unique_ptr<CPlainTextPeer> Open(const std::string& text, double megabytes, const std::string& tag, Report report) {
        const auto t0 = Clock::now();
        auto peer = std::make_unique<CPlainTextPeer>(text);
        const double seconds = SecondsSince(t0);
        report("load_into_view_" + tag, megabytes / seconds, "MB/s");
        report("open_to_first_paint_" + tag, seconds * 1e3, "ms");
        return peer;
    }
    // Once open, the whole text is coloured: its memory compares with ours once ours is too.
    static std::string MemoryFigure() { return "memory_per_text_byte_classified_"; }
    long Length() const { return m_edit->document()->characterCount() - 1; }
    void MoveCaret(long at) {
        QTextCursor cursor(m_edit->document());
        cursor.setPosition(static_cast<int>(at));
        m_edit->setTextCursor(cursor);
        m_edit->ensureCursorVisible();
    }
    // The highlighter keeps no state apart from the colours of the text, which it gives at once
    // when the text is put in: there is nothing to forget short of putting the text in again.
    void ForgetStyles() {}
    void Type() { m_edit->insertPlainText(QStringLiteral("x")); }
    void RepaintAll() { m_edit->viewport()->repaint(); }

private:
    std::unique_ptr<QPlainTextEdit> m_edit;
};

template <class Report>
void RunPlainTextPeer(const std::vector<double>& sizes, Report report) {
    PeerSizes<CPlainTextPeer>("plaintext", sizes, report);
}

}  // namespace bench
