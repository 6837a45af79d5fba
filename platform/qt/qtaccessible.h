// The control's face to assistive technology on Qt: an accessible editable text for the widget
// of a window that has an accessible text (platform/window/accessible.h). Offsets are the
// text's byte positions; each answer asks the window for the stretch it needs, never the
// whole text, so a question costs the same on any length of document.
#pragma once
#include <QAccessibleWidget>

#include "platform/window/accessible.h"

class CQtControlWidget;

class CQtAccessibleControl : public QAccessibleWidget,
                             public QAccessibleTextInterface,
                             public QAccessibleEditableTextInterface {
public:
    explicit CQtAccessibleControl(CQtControlWidget* widget);

    void* interface_cast(QAccessible::InterfaceType type) override;
    QAccessible::State state() const override;
    // The name is the widget's accessible name; the value is the line at the caret.
    QString text(QAccessible::Text t) const override;

    // QAccessibleTextInterface
    void selection(int selectionIndex, int* startOffset, int* endOffset) const override;
    int selectionCount() const override;
    void addSelection(int startOffset, int endOffset) override;
    void removeSelection(int selectionIndex) override;
    void setSelection(int selectionIndex, int startOffset, int endOffset) override;
    int cursorPosition() const override;
    void setCursorPosition(int position) override;
    QString text(int startOffset, int endOffset) const override;
    QString textBeforeOffset(int offset, QAccessible::TextBoundaryType boundaryType, int* startOffset,
                             int* endOffset) const override;
    QString textAfterOffset(int offset, QAccessible::TextBoundaryType boundaryType, int* startOffset,
                            int* endOffset) const override;
    QString textAtOffset(int offset, QAccessible::TextBoundaryType boundaryType, int* startOffset,
                         int* endOffset) const override;
    int characterCount() const override;
    QRect characterRect(int offset) const override;
    int offsetAtPoint(const QPoint& point) const override;
    void scrollToSubstring(int startIndex, int endIndex) override;
    QString attributes(int offset, int* startOffset, int* endOffset) const override;

    // QAccessibleEditableTextInterface
    void deleteText(int startOffset, int endOffset) override;
    void insertText(int offset, const QString& text) override;
    void replaceText(int startOffset, int endOffset, const QString& text) override;

private:
    IAccessibleText* Text() const;
    CQtControlWidget* Control() const;
    // The stretch of the given kind around `offset`.
    void Bounds(long offset, QAccessible::TextBoundaryType type, long* start, long* end) const;
    QString Stretch(long start, long end, int* startOffset, int* endOffset) const;
    QString Neighbour(int offset, QAccessible::TextBoundaryType type, bool after, int* startOffset, int* endOffset) const;
};

// Makes the accessible interface of every control widget; installed once by the Qt backend.
void InstallAccessibleFactory();

// Where the control widgets' accessible events go: Qt's accessibility layer while it is active
// (a screen reader listens). A listener given here hears them instead, active or not, for
// tools and tests on platforms without an accessibility bridge; null takes it away.
using AccessibleListener = void (*)(QAccessibleEvent* event);
void SetAccessibleListener(AccessibleListener listener);
bool AccessibleEventsHeard();
// Tells the accessibility layer of a window's event, from its widget.
void PostAccessibleEvent(CQtControlWidget* widget, const AccessibleTextEvent& event);
