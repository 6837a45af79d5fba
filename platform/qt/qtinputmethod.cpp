#include <QFontMetrics>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QPainter>

#include "platform/codepage/convert.h"
#include "platform/qt/qtcontrolwidget.h"
#include "platform/window/keys.h"

namespace {

// The cursor that an input method places in its preedit text, or its end.
int PreeditCursor(const QInputMethodEvent* e) {
    for (const QInputMethodEvent::Attribute& a : e->attributes())
        if (a.type == QInputMethodEvent::Cursor) return a.start;
    return static_cast<int>(e->preeditString().size());
}

}  // namespace

void CQtControlWidget::inputMethodEvent(QInputMethodEvent* e) {
    e->accept();
    const QRect before = PreeditRect();
    m_strPreedit.clear();
    DeliverText(e->commitString(), 1);
    m_strPreedit = e->preeditString();
    m_nPreeditCursor = PreeditCursor(e);
    viewport()->update(QRegion(before) | PreeditRect() | m_rcCaret);
}

// The preedit text stands in a box of the caret's height that starts at the caret.
QRect CQtControlWidget::PreeditRect() const {
    if (m_strPreedit.isEmpty()) return {};
    const QFontMetrics metrics(font());
    return {m_rcCaret.left(), m_rcCaret.top(), metrics.horizontalAdvance(m_strPreedit) + 2,
            std::max(m_rcCaret.height(), metrics.height())};
}

// Drawn over the window's pixels and underlined, with the caret at the input method's cursor.
void CQtControlWidget::DrawPreedit(QPainter& p) const {
    const QRect box = PreeditRect();
    p.setCompositionMode(QPainter::CompositionMode_SourceOver);
    p.fillRect(box, palette().base());
    QFont underlined = font();
    underlined.setUnderline(true);
    p.setFont(underlined);
    p.setPen(palette().text().color());
    p.drawText(box, Qt::AlignLeft | Qt::AlignVCenter, m_strPreedit);
    if (CaretVisible()) {
        const int x = box.left() + QFontMetrics(font()).horizontalAdvance(m_strPreedit.left(m_nPreeditCursor));
        p.fillRect(QRect(x, box.top(), std::max(1, m_rcCaret.width()), box.height()), palette().text());
    }
}

QVariant CQtControlWidget::inputMethodQuery(Qt::InputMethodQuery query) const {
    switch (query) {
        case Qt::ImEnabled:
            return true;
        case Qt::ImCursorRectangle:
            return QRect(viewport()->mapTo(this, m_rcCaret.topLeft()), m_rcCaret.size());
        case Qt::ImFont:
            return font();
        case Qt::ImSurroundingText:
        case Qt::ImCursorPosition:
        case Qt::ImAnchorPosition: {
            SurroundingText around;
            if (!m_hwnd || !SendMessage(m_hwnd, WM_GETSURROUNDINGTEXT, 0, reinterpret_cast<LPARAM>(&around))) return {};
            std::u16string before, all;
            MultiByteToUtf16(CP_ACP, std::string_view(around.text).substr(0, static_cast<size_t>(around.caret)), &before);
            if (query != Qt::ImSurroundingText) return static_cast<int>(before.size());
            MultiByteToUtf16(CP_ACP, around.text, &all);
            return QString::fromUtf16(all.data(), static_cast<qsizetype>(all.size()));
        }
        default:
            return QAbstractScrollArea::inputMethodQuery(query);
    }
}
