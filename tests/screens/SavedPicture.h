// Pictures of widgets, for eyes, kept in the build folder: one of each appearance and density of pixels.
#pragma once

#include "screens/theme/Theme.h"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QPixmap>
#include <QWidget>
#include <gtest/gtest.h>

namespace fernwick::tests {

// Keeps a picture of the widget as it is now, e.g. as "routing-empty-dark-2x.png". Fails when it is blank.
inline void savePicture(QWidget& widget, const char* group, const char* name, Appearance appearance) {
    const QImage picture = widget.grab().toImage();
    bool varied = false;
    for (int y = 0; y < picture.height() && !varied; ++y) {
        varied = picture.pixel(picture.width() / 2, y) != picture.pixel(0, 0);
    }
    EXPECT_TRUE(varied) << name;
    const QString folder = QStringLiteral(FERNWICK_PICTURES);
    const bool dark = appearance == Appearance::dark;
    QDir().mkpath(folder);
    EXPECT_TRUE(picture.save(QStringLiteral("%1/%2-%3-%4-%5x.png")
                                 .arg(folder, QString::fromLatin1(group), QString::fromLatin1(name),
                                      dark ? QStringLiteral("dark") : QStringLiteral("light"),
                                      QString::number(qApp->devicePixelRatio()))));
}

} // namespace fernwick::tests
