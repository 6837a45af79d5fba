#include "platform/qt/qtclipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QUrl>

#include "platform/codepage/convert.h"

namespace {

// Registered formats travel under a mime type of their own name.
const QString kFormatMimePrefix = QStringLiteral("application/x-zentrel-format;name=");

// Bytes up to the first NUL, as clipboard text ends.
std::string_view UpToNul(const std::string& bytes) { return std::string_view(bytes).substr(0, bytes.find('\0')); }

QString TextOfCodePage(const std::string& bytes) {
    std::u16string units;
    MultiByteToUtf16(CP_ACP, UpToNul(bytes), &units);
    return QString::fromUtf16(units.data(), static_cast<qsizetype>(units.size()));
}

QString TextOfUnicode(const std::string& bytes) {
    std::u16string units(bytes.size() / 2, u'\0');
    for (size_t i = 0; i < units.size(); ++i)
        units[i] = static_cast<char16_t>(static_cast<unsigned char>(bytes[2 * i]) |
                                         (static_cast<unsigned char>(bytes[2 * i + 1]) << 8));
    units.resize(std::min(units.size(), units.find(u'\0')));
    return QString::fromUtf16(units.data(), static_cast<qsizetype>(units.size()));
}

std::string UnicodeBytes(const QString& text) {
    std::string bytes;
    bytes.reserve((text.size() + 1) * 2);
    for (QChar c : text) {
        bytes.push_back(static_cast<char>(c.unicode() & 0xFF));
        bytes.push_back(static_cast<char>(c.unicode() >> 8));
    }
    bytes.append(2, '\0');
    return bytes;
}

CLIPFORMAT FileNameFormat() {
    static const CLIPFORMAT format = RegisterClipboardFormat("FileName");
    return format;
}

std::string CodePageText(const QString& text) {
    std::string bytes;
    const std::u16string_view units(reinterpret_cast<const char16_t*>(text.utf16()), static_cast<size_t>(text.size()));
    Utf16ToMultiByte(CP_ACP, units, &bytes);
    return bytes;
}

}  // namespace

ClipboardFormats FormatsFromMimeData(const QMimeData& mime) {
    ClipboardFormats formats;
    if (mime.hasText()) {
        const QString text = mime.text();
        std::string bytes;
        const std::u16string_view units(reinterpret_cast<const char16_t*>(text.utf16()), static_cast<size_t>(text.size()));
        if (Utf16ToMultiByte(CP_ACP, units, &bytes).Exact()) formats.emplace_back(CF_TEXT, bytes + '\0');
        formats.emplace_back(CF_UNICODETEXT, UnicodeBytes(text));
    }
    // A shell file name: the first local file of a uri list, in the code page.
    for (const QUrl& url : mime.urls()) {
        if (!url.isLocalFile()) continue;
        formats.emplace_back(FileNameFormat(), CodePageText(url.toLocalFile()) + '\0');
        break;
    }
    for (const QString& type : mime.formats()) {
        if (!type.startsWith(kFormatMimePrefix)) continue;
        const QByteArray data = mime.data(type);
        const CLIPFORMAT format = RegisterClipboardFormat(type.mid(kFormatMimePrefix.size()).toStdString());
        formats.emplace_back(format, std::string(data.constData(), static_cast<size_t>(data.size())));
    }
    return formats;
}

QMimeData* MimeDataFromFormats(const ClipboardFormats& formats) {
    auto* mime = new QMimeData;
    const auto held = [&](CLIPFORMAT wanted) -> const std::string* {
        for (const auto& [format, bytes] : formats)
            if (format == wanted) return &bytes;
        return nullptr;
    };
    if (const std::string* unicode = held(CF_UNICODETEXT))
        mime->setText(TextOfUnicode(*unicode));
    else if (const std::string* text = held(CF_TEXT))
        mime->setText(TextOfCodePage(*text));
    if (const std::string* file = held(FileNameFormat()))
        mime->setUrls({QUrl::fromLocalFile(TextOfCodePage(*file))});
    for (const auto& [format, bytes] : formats) {
        const std::string name = GetClipboardFormatName(format);
        if (!name.empty() && format != FileNameFormat())
            mime->setData(kFormatMimePrefix + QString::fromStdString(name),
                          QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size())));
    }
    return mime;
}

bool CQtClipboard::Write(const ClipboardFormats& formats) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (!clipboard) return false;
    clipboard->setMimeData(MimeDataFromFormats(formats));
    return true;
}

ClipboardFormats CQtClipboard::Read() {
    QClipboard* clipboard = QGuiApplication::clipboard();
    const QMimeData* mime = clipboard ? clipboard->mimeData() : nullptr;
    return mime ? FormatsFromMimeData(*mime) : ClipboardFormats{};
}
