// Cursors on Qt: the system arrow and I-beam as Qt's shapes, and the pictures the program
// registered (platform/window/cursor.h) as pixmap cursors with their hot spots, from the
// double-size picture on screens of more than one device pixel per pixel.
#pragma once
#include <QCursor>
#include <QImage>

#include "platform/window/cursor.h"

// The picture as an image of premultiplied ARGB pixels.
QImage QtImageFromCursorImage(const CursorImage& image);
// The cursor of an id for a screen of the given density; the arrow for an unknown id.
QCursor QtCursor(UINT id, qreal devicePixelRatio);
// The same for the primary screen.
QCursor QtCursor(UINT id);
