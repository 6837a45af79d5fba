#include "platform/qt/qtcursor.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>

QImage QtImageFromCursorImage(const CursorImage& image) {
    QImage out(image.width, image.height, QImage::Format_ARGB32);
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) out.setPixel(x, y, image.Pixel(x, y));
    return out.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QCursor QtCursor(UINT id, qreal devicePixelRatio) {
    if (id == IDC_IBEAM) return QCursor(Qt::IBeamCursor);
    const CursorPicture* picture = FindCursorPicture(id);
    if (!picture) return QCursor(Qt::ArrowCursor);
    const bool doubled = devicePixelRatio > 1.0 && !picture->doubled.argb.empty();
    QPixmap pixmap = QPixmap::fromImage(QtImageFromCursorImage(doubled ? picture->doubled : picture->normal));
    pixmap.setDevicePixelRatio(doubled ? 2.0 : 1.0);
    return QCursor(pixmap, picture->hotSpot.x, picture->hotSpot.y);
}

QCursor QtCursor(UINT id) {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return QtCursor(id, screen ? screen->devicePixelRatio() : 1.0);
}
