#include "platform/desktop/desktop_workspace.h"

#include <QDesktopServices>
#include <QUrl>

namespace zelmora::platform {

bool DesktopWorkspace::openFile(const std::string& path) {
    // Encoded from the bytes: QUrl::fromLocalFile() would take them for UTF-8.
    const auto encoded = QByteArray::fromStdString(path).toPercentEncoding("/");
    return QDesktopServices::openUrl(QUrl::fromEncoded("file://" + encoded));
}

bool DesktopWorkspace::openURL(const std::string& url) {
    return QDesktopServices::openUrl(QUrl::fromEncoded(QByteArray::fromStdString(url)));
}

} // namespace zelmora::platform
