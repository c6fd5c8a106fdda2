#include "platform/qt/QtDialogs.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QString>

#include <utility>

namespace fernwick::platform {

void QtDialogs::openFile(const OpenFileRequest& request,
                         std::function<void(std::optional<std::string>)> chosen) {
    auto* panel = new QFileDialog(QApplication::activeWindow()); // deletes itself when it is closed
    panel->setObjectName(QStringLiteral("openFilePanel"));
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setWindowTitle(QString::fromStdString(request.title));
    panel->setAcceptMode(QFileDialog::AcceptOpen);
    panel->setFileMode(QFileDialog::ExistingFile);
    panel->setFilter(panel->filter() | QDir::Hidden);
    panel->setDirectory(QString::fromStdString(request.folder));
    QObject::connect(panel, &QFileDialog::finished, panel, [panel, chosen = std::move(chosen)](int result) {
        const auto files = panel->selectedFiles();
        const bool isChosen = result == QDialog::Accepted && !files.isEmpty();
        chosen(isChosen ? std::optional(files.front().toStdString()) : std::nullopt);
    });
    panel->open();
}

} // namespace fernwick::platform
