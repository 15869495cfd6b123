#include "platform/desktop/desktop_workspace.h"

#include "platform/text/file_url.h"

#include <QDesktopServices>
#include <QUrl>

namespace zelmora::platform {

bool DesktopWorkspace::openFile(const std::string& path) {
    // Encoded from the bytes: QUrl::fromLocalFile() would take them for UTF-8.
    return openURL(fileURLFromPath(path));
}

bool DesktopWorkspace::openURL(const std::string& url) {
    return QDesktopServices::openUrl(QUrl::fromEncoded(QByteArray::fromStdString(url)));
}

} // namespace zelmora::platform
