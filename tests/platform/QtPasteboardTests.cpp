#include "platform/qt/QtPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <gtest/gtest.h>

namespace fernwick::platform {

TEST(QtPasteboard, TextTakesThePlaceOfWhatWasThere) {
    QtPasteboard pasteboard;
    for (const auto* text : {"ssh -N host", "Đã kết nối \U0001F511", ""}) {
        pasteboard.setString(text);
        EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), text);
    }
}

} // namespace fernwick::platform
