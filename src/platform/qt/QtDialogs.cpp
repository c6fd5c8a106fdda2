#include "platform/qt/QtDialogs.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QStandardPaths>
#include <QString>

#include <utility>

namespace fernwick::platform {

namespace {

using OneChosen = std::function<void(std::optional<std::string>)>;
using ManyChosen = std::function<void(std::vector<std::string>)>;

// A panel over the active window that deletes itself when it is closed.
QFileDialog* makePanel(const QString& name, const std::string& title, const std::string& folder) {
    auto* panel = new QFileDialog(QApplication::activeWindow());
    panel->setObjectName(name);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setWindowTitle(QString::fromStdString(title));
    panel->setFilter(panel->filter() | QDir::Hidden);
    if (!folder.empty()) {
        panel->setDirectory(QString::fromStdString(folder));
    }
    return panel;
}

// A kind in the words of Qt's panel, e.g. "Backups (*.json *.backup)".
QString filterOf(const FileKind& kind) {
    QStringList patterns;
    for (const auto& extension : kind.extensions) {
        patterns << QStringLiteral("*.") + QString::fromStdString(extension);
    }
    return QString::fromStdString(kind.name) + QStringLiteral(" (%1)").arg(patterns.join(QLatin1Char(' ')));
}

// Opens the panel, and tells what was chosen when it is closed.
void tell(QFileDialog* panel, ManyChosen chosen) {
    QObject::connect(panel, &QFileDialog::finished, panel, [panel, chosen = std::move(chosen)](int result) {
        std::vector<std::string> files;
        for (const auto& file : result == QDialog::Accepted ? panel->selectedFiles() : QStringList()) {
            files.push_back(file.toStdString());
        }
        chosen(std::move(files));
    });
    panel->open();
}

void openPanel(const OpenFileRequest& request, QFileDialog::FileMode mode, ManyChosen chosen) {
    auto* panel = makePanel(QStringLiteral("openFilePanel"), request.title, request.folder);
    panel->setAcceptMode(QFileDialog::AcceptOpen);
    panel->setFileMode(mode);
    if (request.kind) {
        panel->setNameFilters({filterOf(*request.kind), QStringLiteral("All Files (*)")});
    }
    tell(panel, std::move(chosen));
}

ManyChosen firstOf(OneChosen chosen) {
    return [chosen = std::move(chosen)](const std::vector<std::string>& files) {
        chosen(files.empty() ? std::nullopt : std::optional(files.front()));
    };
}

} // namespace

void QtDialogs::openFile(const OpenFileRequest& request, OneChosen chosen) {
    openPanel(request, QFileDialog::ExistingFile, firstOf(std::move(chosen)));
}

void QtDialogs::openFiles(const OpenFileRequest& request, ManyChosen chosen) {
    openPanel(request, QFileDialog::ExistingFiles, std::move(chosen));
}

void QtDialogs::chooseFolder(const FolderRequest& request, OneChosen chosen) {
    auto* panel = makePanel(QStringLiteral("folderPanel"), request.message, request.folder);
    panel->setAcceptMode(QFileDialog::AcceptOpen);
    panel->setFileMode(QFileDialog::Directory);
    panel->setOption(QFileDialog::ShowDirsOnly);
    tell(panel, firstOf(std::move(chosen)));
}

void QtDialogs::saveFile(const SaveFileRequest& request, OneChosen chosen) {
    const auto documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const auto folder = QDir(documents).exists() ? documents : QDir::homePath();
    auto* panel = makePanel(QStringLiteral("saveFilePanel"), "Save", folder.toStdString());
    panel->setAcceptMode(QFileDialog::AcceptSave);
    panel->setFileMode(QFileDialog::AnyFile);
    panel->setNameFilters({filterOf(request.kind), QStringLiteral("All Files (*)")});
    panel->selectFile(QString::fromStdString(request.name));
    tell(panel, firstOf(std::move(chosen)));
}

} // namespace fernwick::platform
