#include "app/viewstates.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

#include "platform/com/stream.h"
#include "src/view/zentrelctrl.h"

namespace {

// A record file: these four bytes, the document's size and its modification time in
// milliseconds since the epoch (both 64-bit little-endian), then the extra info record.
constexpr std::array<char, 4> kMagic = {'Z', 'V', 'S', '1'};
constexpr size_t kStampBytes = 16;

struct DocumentStamp {
    int64_t size = 0;
    int64_t modified = 0;
    bool operator==(const DocumentStamp&) const = default;
};

std::optional<DocumentStamp> StampOf(const QString& path) {
    const QFileInfo info(path);
    if (!info.isFile()) return std::nullopt;
    return DocumentStamp{info.size(), info.lastModified().toMSecsSinceEpoch()};
}

void PutLittleEndian(int64_t value, char* out) {
    for (int i = 0; i < 8; ++i) out[i] = static_cast<char>(static_cast<uint64_t>(value) >> (8 * i));
}

int64_t GetLittleEndian(const char* in) {
    uint64_t value = 0;
    for (int i = 0; i < 8; ++i) value |= static_cast<uint64_t>(static_cast<unsigned char>(in[i])) << (8 * i);
    return static_cast<int64_t>(value);
}

bool WriteHead(IStream* stream, const DocumentStamp& stamp) {
    char head[kMagic.size() + kStampBytes];
    std::copy(kMagic.begin(), kMagic.end(), head);
    PutLittleEndian(stamp.size, head + kMagic.size());
    PutLittleEndian(stamp.modified, head + kMagic.size() + 8);
    ULONG written = 0;
    return SUCCEEDED(stream->Write(head, sizeof head, &written)) && written == sizeof head;
}

std::optional<DocumentStamp> ReadHead(IStream* stream) {
    char head[kMagic.size() + kStampBytes];
    ULONG read = 0;
    if (FAILED(stream->Read(head, sizeof head, &read)) || read != sizeof head) return std::nullopt;
    if (!std::equal(kMagic.begin(), kMagic.end(), head)) return std::nullopt;
    return DocumentStamp{GetLittleEndian(head + kMagic.size()), GetLittleEndian(head + kMagic.size() + 8)};
}

}  // namespace

CViewStates::CViewStates(QString directory) : m_directory(std::move(directory)) {}

QString CViewStates::DefaultDirectory() {
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + "/viewstate";
}

QString CViewStates::RecordFile(const QString& path) const {
    const QByteArray key = QFileInfo(path).absoluteFilePath().toUtf8();
    return m_directory + "/" + QCryptographicHash::hash(key, QCryptographicHash::Sha1).toHex() + ".zvs";
}

bool CViewStates::Save(CZentrelCtrl& ctrl, const QString& path) const {
    const std::optional<DocumentStamp> stamp = StampOf(path);
    if (!stamp || !QDir().mkpath(m_directory)) return false;
    // Written aside and renamed over the old record, so that a failed write leaves the old one.
    const QString record = RecordFile(path);
    const QString part = record + ".part";
    {
        ComPtr<IStream> file;
        if (FAILED(CreateFileStream(part.toStdString(), FileMode::Write, &file)) || !WriteHead(file.Get(), *stamp) ||
            !ctrl.SaveExtraInfoTo(file.Get())) {
            file = nullptr;
            QFile::remove(part);
            return false;
        }
    }
    QFile::remove(record);
    return QFile::rename(part, record);
}

bool CViewStates::Restore(CZentrelCtrl& ctrl, const QString& path) const {
    ComPtr<IStream> file;
    if (FAILED(CreateFileStream(RecordFile(path).toStdString(), FileMode::Read, &file))) return false;
    const std::optional<DocumentStamp> saved = ReadHead(file.Get());
    return saved && saved == StampOf(path) && ctrl.LoadExtraInfoFrom(file.Get());
}
