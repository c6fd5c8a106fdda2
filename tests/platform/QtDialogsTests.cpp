#include "platform/qt/QtDialogs.h"
#include "support/TemporaryFolder.h"
#include "support/WaitUntil.h"

#include <QApplication>
#include <QFileDialog>
#include <QPointer>
#include <gtest/gtest.h>

#include <filesystem>
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
        for (auto* widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == QStringLiteral("openFilePanel")) {
                panel_ = qobject_cast<QFileDialog*>(widget);
            }
        }
        ASSERT_NE(panel_, nullptr);
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
};

using Answers = std::vector<std::optional<std::string>>;

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
    static_cast<QDialog*>(panel_)->accept();
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

} // namespace fernwick::platform
