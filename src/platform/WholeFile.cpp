#include "platform/WholeFile.h"

#include <QSaveFile>

namespace velorin {

tl::expected<void, QString> replaceFile(const QString& path, const QByteArray& data,
                                        std::optional<QFileDevice::Permissions> permissions) {
    QSaveFile file(path);
    // Without a buffer: what a full disk did not take is seen here, and not thrown away with the buffer.
    const bool isWritten = file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
                           (!permissions || file.setPermissions(*permissions)) &&
                           file.write(data) == data.size() && file.commit();
    if (!isWritten)
        return tl::unexpected(file.errorString());
    return {};
}

} // namespace velorin
