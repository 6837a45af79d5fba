#include "platform/qt/qtaccessible.h"

#include <algorithm>

#include "platform/qt/qtcontrolwidget.h"
#include "platform/qt/qttext.h"

namespace {

QAccessibleInterface* ControlFactory(const QString&, QObject* object) {
    if (auto* widget = qobject_cast<CQtControlWidget*>(object)) return new CQtAccessibleControl(widget);
    return nullptr;
}

AccessibleListener& Listener() {
    static AccessibleListener listener = nullptr;
    return listener;
}

void Post(QAccessibleEvent* event) {
    if (Listener())
        Listener()(event);
    else
        QAccessible::updateAccessibility(event);
}

}  // namespace

void SetAccessibleListener(AccessibleListener listener) { Listener() = listener; }

bool AccessibleEventsHeard() { return Listener() || QAccessible::isActive(); }

void InstallAccessibleFactory() {
    static const bool installed = [] {
        QAccessible::installFactory(ControlFactory);
        return true;
    }();
    (void)installed;
}

void PostAccessibleEvent(CQtControlWidget* widget, const AccessibleTextEvent& event) {
    if (!AccessibleEventsHeard()) return;
    switch (event.kind) {
        case AccessibleTextEvent::Inserted: {
            QAccessibleTextInsertEvent e(widget, static_cast<int>(event.pos), QtTextFromCodePage(event.text));
            Post(&e);
            break;
        }
        case AccessibleTextEvent::Removed: {
            // The bytes are gone from the text before the window hears of it: the event tells
            // where and how many.
            QAccessibleTextRemoveEvent e(widget, static_cast<int>(event.pos), QString(static_cast<int>(event.count), QChar(' ')));
            Post(&e);
            break;
        }
        case AccessibleTextEvent::Caret: {
            if (event.anchor != event.pos) {
                QAccessibleTextSelectionEvent s(widget, static_cast<int>(std::min(event.pos, event.anchor)),
                                                static_cast<int>(std::max(event.pos, event.anchor)));
                s.setCursorPosition(static_cast<int>(event.pos));
                Post(&s);
            }
            QAccessibleTextCursorEvent c(widget, static_cast<int>(event.pos));
            Post(&c);
            break;
        }
    }
}

CQtAccessibleControl::CQtAccessibleControl(CQtControlWidget* widget) : QAccessibleWidget(widget, QAccessible::EditableText) {}

CQtControlWidget* CQtAccessibleControl::Control() const { return static_cast<CQtControlWidget*>(widget()); }

IAccessibleText* CQtAccessibleControl::Text() const { return GetAccessibleText(Control()->Handle()); }

void* CQtAccessibleControl::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
    if (type == QAccessible::EditableTextInterface) return static_cast<QAccessibleEditableTextInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
}

QAccessible::State CQtAccessibleControl::state() const {
    QAccessible::State s = QAccessibleWidget::state();
    s.multiLine = true;
    s.editable = true;
    s.selectableText = true;
    if (IAccessibleText* t = Text(); t && t->ReadOnly()) {
        s.readOnly = true;
        s.editable = false;
    }
    return s;
}

QString CQtAccessibleControl::text(QAccessible::Text t) const {
    if (t == QAccessible::Value) {
        IAccessibleText* text = Text();
        if (!text) return {};
        long active, anchor, start, end;
        text->Selection(&active, &anchor);
        text->LineBounds(active, &start, &end);
        return QtTextFromCodePage(text->Text(start, end));
    }
    return QAccessibleWidget::text(t);
}

void CQtAccessibleControl::selection(int selectionIndex, int* startOffset, int* endOffset) const {
    *startOffset = *endOffset = 0;
    IAccessibleText* t = Text();
    if (!t || selectionIndex != 0) return;
    long active, anchor;
    t->Selection(&active, &anchor);
    *startOffset = static_cast<int>(std::min(active, anchor));
    *endOffset = static_cast<int>(std::max(active, anchor));
}

int CQtAccessibleControl::selectionCount() const {
    int start, end;
    selection(0, &start, &end);
    return start != end ? 1 : 0;
}

void CQtAccessibleControl::addSelection(int startOffset, int endOffset) { setSelection(0, startOffset, endOffset); }

void CQtAccessibleControl::removeSelection(int selectionIndex) {
    if (selectionIndex == 0) setCursorPosition(cursorPosition());
}

void CQtAccessibleControl::setSelection(int selectionIndex, int startOffset, int endOffset) {
    if (IAccessibleText* t = Text(); t && selectionIndex == 0) t->SetSelection(endOffset, startOffset);
}

int CQtAccessibleControl::cursorPosition() const {
    IAccessibleText* t = Text();
    if (!t) return 0;
    long active, anchor;
    t->Selection(&active, &anchor);
    return static_cast<int>(active);
}

void CQtAccessibleControl::setCursorPosition(int position) {
    if (IAccessibleText* t = Text()) t->SetSelection(position, position);
}

QString CQtAccessibleControl::text(int startOffset, int endOffset) const {
    IAccessibleText* t = Text();
    if (!t) return {};
    if (endOffset < 0) endOffset = characterCount();
    return QtTextFromCodePage(t->Text(startOffset, endOffset));
}

void CQtAccessibleControl::Bounds(long offset, QAccessible::TextBoundaryType type, long* start, long* end) const {
    IAccessibleText* t = Text();
    switch (type) {
        case QAccessible::CharBoundary: t->CharBounds(offset, start, end); break;
        case QAccessible::WordBoundary: t->WordBounds(offset, start, end); break;
        case QAccessible::NoBoundary:
            *start = 0;
            *end = t->Length();
            break;
        default: t->LineBounds(offset, start, end); break;  // sentences and paragraphs: the line
    }
}

QString CQtAccessibleControl::Stretch(long start, long end, int* startOffset, int* endOffset) const {
    *startOffset = static_cast<int>(start);
    *endOffset = static_cast<int>(end);
    return QtTextFromCodePage(Text()->Text(start, end));
}

QString CQtAccessibleControl::textAtOffset(int offset, QAccessible::TextBoundaryType type, int* startOffset,
                                           int* endOffset) const {
    *startOffset = *endOffset = -1;
    if (!Text()) return {};
    long start, end;
    Bounds(offset, type, &start, &end);
    return Stretch(start, end, startOffset, endOffset);
}

// The stretch before or after the one at `offset`; nothing at either end of the text.
QString CQtAccessibleControl::Neighbour(int offset, QAccessible::TextBoundaryType type, bool after, int* startOffset,
                                        int* endOffset) const {
    *startOffset = *endOffset = -1;
    if (!Text() || type == QAccessible::NoBoundary) return {};
    long start, end;
    Bounds(offset, type, &start, &end);
    if (after ? end >= Text()->Length() : start <= 0) return {};
    Bounds(after ? end : start - 1, type, &start, &end);
    return Stretch(start, end, startOffset, endOffset);
}

QString CQtAccessibleControl::textBeforeOffset(int offset, QAccessible::TextBoundaryType type, int* startOffset,
                                               int* endOffset) const {
    return Neighbour(offset, type, false, startOffset, endOffset);
}

QString CQtAccessibleControl::textAfterOffset(int offset, QAccessible::TextBoundaryType type, int* startOffset,
                                              int* endOffset) const {
    return Neighbour(offset, type, true, startOffset, endOffset);
}

int CQtAccessibleControl::characterCount() const {
    IAccessibleText* t = Text();
    return t ? static_cast<int>(t->Length()) : 0;
}

QRect CQtAccessibleControl::characterRect(int offset) const {
    IAccessibleText* t = Text();
    if (!t) return {};
    const RECT rc = t->CharRect(offset);
    const QPoint origin = Control()->viewport()->mapToGlobal(QPoint(0, 0));
    return QRect(origin.x() + rc.left, origin.y() + rc.top, rc.right - rc.left, rc.bottom - rc.top);
}

int CQtAccessibleControl::offsetAtPoint(const QPoint& point) const {
    IAccessibleText* t = Text();
    if (!t) return -1;
    const QPoint local = Control()->viewport()->mapFromGlobal(point);
    return static_cast<int>(t->PositionAt(POINT{local.x(), local.y()}));
}

void CQtAccessibleControl::scrollToSubstring(int startIndex, int endIndex) {
    if (IAccessibleText* t = Text()) t->ScrollIntoView(startIndex, endIndex);
}

// The text carries no attributes of its own for assistive technology.
QString CQtAccessibleControl::attributes(int offset, int* startOffset, int* endOffset) const {
    *startOffset = *endOffset = offset;
    return {};
}

void CQtAccessibleControl::deleteText(int startOffset, int endOffset) { replaceText(startOffset, endOffset, {}); }

void CQtAccessibleControl::insertText(int offset, const QString& text) { replaceText(offset, offset, text); }

void CQtAccessibleControl::replaceText(int startOffset, int endOffset, const QString& text) {
    if (IAccessibleText* t = Text()) t->Replace(startOffset, endOffset, CodePageTextFromQt(text));
}
