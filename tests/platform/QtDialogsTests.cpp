#include "platform/qt/QtDialogs.h"
#include "support/TemporaryFolder.h"
#include "support/WaitUntil.h"

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <vector>

namespace fernwick::platform {

namespace {

class QtDialogsTest : public testing::Test {
protected:
    QtDialogsTest() {
        std::filesystem::create_directory(folder_ / ".ssh");
        folder_.write(".ssh/.hidden key", "a key");
    }

    void open() {
        dialogs_.openFile({.title = "Choose a key", .message = "Advice", .folder = folder_ / ".ssh"},
                          [this](const auto& file) { answers_.push_back(file); });
        findPanel("openFilePanel");
    }
    void openMany() {
        dialogs_.openFiles({.title = "Import",
                            .message = "",
                            .folder = folder_.path(),
                            .kind = FileKind{"Backups", {"json", "backup"}}},
                           [this](const auto& files) { manyAnswers_.push_back(files); });
        findPanel("openFilePanel");
    }
    void openFolder() {
        dialogs_.chooseFolder({.message = "Choose a folder", .folder = folder_.path()},
                              [this](const auto& folder) { answers_.push_back(folder); });
        findPanel("folderPanel");
    }
    // The panel for a file that is to be saved in the test's folder.
    void openSave(const std::string& name) {
        dialogs_.saveFile({.name = name, .kind = {"Backups", {"json"}}},
                          [this](const auto& file) { answers_.push_back(file); });
        findPanel("saveFilePanel");
        panel_->setDirectory(QString::fromStdString(folder_.path()));
    }
    void findPanel(const char* name) {
        for (auto* widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == QLatin1String(name)) {
                panel_ = qobject_cast<QFileDialog*>(widget);
            }
        }
        ASSERT_NE(panel_, nullptr);
    }

    void accept() { static_cast<QDialog*>(panel_)->accept(); }

    // Accepts a panel that asks a question about it, and answers that. The question, or nothing if it did not
    // come.
    [[nodiscard]] QString acceptAnswering(QMessageBox::StandardButton answer) {
        QString question;
        QTimer answering;
        QObject::connect(&answering, &QTimer::timeout, &answering, [&] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                question = box->text();
                box->button(answer)->click();
            }
        });
        answering.start(0);
        accept();
        return question;
    }

    [[nodiscard]] bool panelGoes() const {
        return fakes::waitUntil(
            [] {
                QApplication::processEvents();
                QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            },
            [this] { return panel_.isNull(); });
    }

    fakes::TemporaryFolder folder_;
    QtDialogs dialogs_;
    QPointer<QFileDialog> panel_;
    std::vector<std::optional<std::string>> answers_;
    std::vector<std::vector<std::string>> manyAnswers_;
};

using Answers = std::vector<std::optional<std::string>>;
using ManyAnswers = std::vector<std::vector<std::string>>;

} // namespace

TEST_F(QtDialogsTest, PanelAsksForOneExistingFileHiddenOnesIncluded) {
    open();
    EXPECT_TRUE(panel_->isVisible());
    EXPECT_EQ(panel_->windowTitle(), QStringLiteral("Choose a key"));
    EXPECT_EQ(panel_->directory().absolutePath().toStdString(), folder_ / ".ssh");
    EXPECT_EQ(panel_->fileMode(), QFileDialog::ExistingFile);
    EXPECT_EQ(panel_->acceptMode(), QFileDialog::AcceptOpen);
    EXPECT_TRUE(panel_->filter().testFlag(QDir::Hidden));
    EXPECT_FALSE(panel_->testOption(QFileDialog::DontUseNativeDialog));
    EXPECT_TRUE(answers_.empty());
    panel_->reject();
    EXPECT_TRUE(panelGoes());
}

TEST_F(QtDialogsTest, ChosenFileIsToldOnce) {
    open();
    const auto file = folder_ / ".ssh/.hidden key";
    panel_->selectFile(QString::fromStdString(file));
    accept();
    EXPECT_TRUE(panelGoes());
    EXPECT_EQ(answers_, Answers{file});
}

TEST_F(QtDialogsTest, DismissalIsToldAsNothing) {
    open();
    panel_->reject();
    EXPECT_TRUE(panelGoes());
    EXPECT_EQ(answers_, Answers{std::nullopt});
}

TEST_F(QtDialogsTest, ClosedPanelIsDismissed) {
    open();
    panel_->close();
    EXPECT_TRUE(panelGoes());
    EXPECT_EQ(answers_, Answers{std::nullopt});
}

TEST_F(QtDialogsTest, FilesOfAKindAreOfferedFirst) {
    openMany();
    EXPECT_EQ(panel_->windowTitle(), QStringLiteral("Import"));
    EXPECT_EQ(panel_->fileMode(), QFileDialog::ExistingFiles);
    EXPECT_EQ(panel_->acceptMode(), QFileDialog::AcceptOpen);
    EXPECT_EQ(panel_->nameFilters(),
              (QStringList{QStringLiteral("Backups (*.json *.backup)"), QStringLiteral("All Files (*)")}));
    panel_->reject();
    EXPECT_TRUE(panelGoes());
    EXPECT_EQ(manyAnswers_, ManyAnswers{{}});
}

TEST_F(QtDialogsTest, SeveralFilesAreToldTogether) {
    folder_.write("one.json", "1");
    folder_.write("two words.json", "2");
    openMany();
    panel_->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
        ->setText(QStringLiteral("\"one.json\" \"two words.json\""));
    accept();
    EXPECT_TRUE(panelGoes());
    EXPECT_EQ(manyAnswers_, (ManyAnswers{{folder_ / "one.json", folder_ / "two words.json"}}));
}

TEST_F(QtDialogsTest, OneOfSeveralFilesIsEnough) {
    folder_.write("one.json", "1");
    openMany();
    panel_->selectFile(QString::fromStdString(folder_ / "one.json"));
    accept();
    EXPECT_TRUE(panelGoes());
    EXPECT_EQ(manyAnswers_, (ManyAnswers{{folder_ / "one.json"}}));
}

TEST_F(QtDialogsTest, FolderIsAskedForAndTold) {
    openFolder();
    EXPECT_EQ(panel_->windowTitle(), QStringLiteral("Choose a folder"));
    EXPECT_EQ(panel_->fileMode(), QFileDialog::Directory);
    EXPECT_TRUE(panel_->testOption(QFileDialog::ShowDirsOnly));
    EXPECT_FALSE(panel_->testOption(QFileDialog::ReadOnly)); // a new one can be made
    panel_->selectFile(QString::fromStdString(folder_ / ".ssh"));
    accept();
    EXPECT_TRUE(panelGoes());
    EXPECT_EQ(answers_, Answers{folder_ / ".ssh"});
}

TEST_F(QtDialogsTest, FolderThatThePanelStartsInCanBeTaken) {
    openFolder();
    accept();
    EXPECT_TRUE(panelGoes());
    EXPECT_EQ(answers_, Answers{folder_.path()});
}

TEST_F(QtDialogsTest, DismissedFolderIsToldAsNothing) {
    openFolder();
    panel_->close();
    EXPECT_TRUE(panelGoes());
    EXPECT_EQ(answers_, Answers{std::nullopt});
}

TEST_F(QtDialogsTest, SuggestedNameKeepsItsColons) {
    const std::string name = "Fernwick 2026-01-01T12:30:00Z.json";
    openSave(name);
    EXPECT_EQ(panel_->acceptMode(), QFileDialog::AcceptSave);
    EXPECT_EQ(panel_->fileMode(), QFileDialog::AnyFile);
    EXPECT_EQ(panel_->nameFilters().front(), QStringLiteral("Backups (*.json)"));
    EXPECT_EQ(panel_->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text().toStdString(), name);
    accept();
    EXPECT_TRUE(panelGoes());
    EXPECT_EQ(answers_, Answers{folder_ / name});
    EXPECT_FALSE(std::filesystem::exists(folder_ / name));
}

TEST_F(QtDialogsTest, PanelForSavingStartsInAFolderThatIsThere) {
    dialogs_.saveFile({.name = "a.json", .kind = {"Backups", {"json"}}}, [](const auto&) {});
    findPanel("saveFilePanel");
    EXPECT_TRUE(panel_->directory().exists());
    panel_->reject();
    EXPECT_TRUE(panelGoes());
}

TEST_F(QtDialogsTest, OverwritingIsAskedFor) {
    folder_.write("there.json", "old");
    openSave("there.json");
    EXPECT_TRUE(acceptAnswering(QMessageBox::No).contains(QStringLiteral("there.json")));
    EXPECT_TRUE(panel_->isVisible());
    EXPECT_TRUE(answers_.empty());
    EXPECT_FALSE(acceptAnswering(QMessageBox::Yes).isEmpty());
    EXPECT_TRUE(panelGoes());
    EXPECT_EQ(answers_, Answers{folder_ / "there.json"});
    EXPECT_EQ(folder_.read("there.json"), "old");
}

TEST_F(QtDialogsTest, DismissedSaveIsToldAsNothing) {
    openSave("a.json");
    panel_->reject();
    EXPECT_TRUE(panelGoes());
    EXPECT_EQ(answers_, Answers{std::nullopt});
}

TEST_F(QtDialogsTest, PanelGoesWithItsWindowAndTellsNobody) {
    auto window = std::make_unique<QWidget>();
    window->show();
    window->activateWindow();
    ASSERT_TRUE(fakes::waitUntil([] { QApplication::processEvents(); },
                                 [&] { return QApplication::activeWindow() == window.get(); }));
    dialogs_.chooseFolder({.message = "Choose a folder", .folder = folder_.path()},
                          [this](const auto& folder) { answers_.push_back(folder); });
    panel_ = window->findChild<QFileDialog*>(QStringLiteral("folderPanel"));
    ASSERT_NE(panel_, nullptr);
    window.reset();
    EXPECT_TRUE(panel_.isNull());
    EXPECT_TRUE(answers_.empty());
}

} // namespace fernwick::platform
