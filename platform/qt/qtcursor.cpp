#include "platform/qt/qtcursor.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <map>
#include <utility>

QImage QtImageFromCursorImage(const CursorImage& image) {
    QImage out(image.width, image.height, QImage::Format_ARGB32);
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) out.setPixel(x, y, image.Pixel(x, y));
    return out.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

// Each picture becomes a Qt cursor once per density: the cursor is set on every mouse move.
QCursor QtCursor(UINT id, qreal devicePixelRatio) {
    if (id == IDC_IBEAM) return QCursor(Qt::IBeamCursor);
    const CursorPicture* picture = FindCursorPicture(id);
    if (!picture) return QCursor(Qt::ArrowCursor);
    const bool doubled = devicePixelRatio > 1.0 && !picture->doubled.argb.empty();
    // Kept to the end of the process, never torn down after the application that drew them.
    static auto* made = new std::map<std::pair<UINT, bool>, QCursor>;
    auto it = made->find({id, doubled});
    if (it != made->end()) return it->second;
    QPixmap pixmap = QPixmap::fromImage(QtImageFromCursorImage(doubled ? picture->doubled : picture->normal));
    pixmap.setDevicePixelRatio(doubled ? 2.0 : 1.0);
    return made->emplace(std::make_pair(id, doubled), QCursor(pixmap, picture->hotSpot.x, picture->hotSpot.y)).first->second;
}

QCursor QtCursor(UINT id) {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return QtCursor(id, screen ? screen->devicePixelRatio() : 1.0);
}
