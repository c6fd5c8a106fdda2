// The file panel and the clipboard by the toolkit's own means.
// Threads: main thread only.
#pragma once

#include "platform/Dialogs.h"
#include "platform/Pasteboard.h"

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>

#include <utility>

namespace fernwick {

class ClipboardPasteboard final : public platform::Pasteboard {
public:
    void setString(std::string_view text) override {
        QGuiApplication::clipboard()->setText(
            QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
    }
};

class FilePanels final : public platform::Dialogs {
public:
    void openFile(const platform::OpenFileRequest& request,
                  std::function<void(std::optional<std::string>)> chosen) override {
        auto* panel = new QFileDialog(QApplication::activeWindow(), QString::fromStdString(request.title),
                                      QString::fromStdString(request.folder));
        panel->setAttribute(Qt::WA_DeleteOnClose);
        panel->setFileMode(QFileDialog::ExistingFile);
        panel->setFilter(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        QObject::connect(panel, &QFileDialog::finished, panel, [panel, chosen = std::move(chosen)](int result) {
            const QStringList files = result == QDialog::Accepted ? panel->selectedFiles() : QStringList();
            chosen(files.isEmpty() ? std::nullopt : std::optional(files.front().toStdString()));
        });
        panel->open();
    }
};

} // namespace fernwick
