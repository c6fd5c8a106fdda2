#include "platform/qt/QtPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QString>

namespace fernwick::platform {

void QtPasteboard::setString(std::string_view text) {
    QGuiApplication::clipboard()->setText(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
}

} // namespace fernwick::platform
