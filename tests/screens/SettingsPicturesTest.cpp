// Pictures of every tab and sheet of the settings window, for eyes, as those of the main window: in light and
// dark, at one and at two pixels for each of the screen's.
#include "SavedPicture.h"
#include "SettingsBench.h"

#include <QColorDialog>
#include <QPlainTextEdit>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

class SettingsPictures : public testing::TestWithParam<Appearance> {
protected:
    SettingsPictures() : bench(GetParam()) {}

    void save(QWidget& widget, const char* name) {
        bench.settle();
        savePicture(widget, "settings", name, GetParam());
    }

    void saveWindow(const char* name) { save(bench.window(), name); }

    void saveSmallest(const char* name) {
        bench.window().resize(bench.window().minimumSize());
        saveWindow(name);
        bench.window().resize(SettingsWindow::kWidth, SettingsWindow::kHeight);
    }

    void addKeys() {
        bench.addKey("/home/someone/.ssh/id_ed25519", "plain");
        bench.addKey("/home/someone/.ssh/id_rsa", SettingsBench::kEncryptedKey);
        bench.addKey("/home/someone/work/clients/production/deploy.pem", "plain");
    }

    SettingsBench bench;
};

TEST_P(SettingsPictures, General) {
    bench.open();
    saveWindow("general");
    bench.find<QWidget>("settingsTabs").setFocus(Qt::TabFocusReason);
    bench.controller.showUpdateOutcome(
        "New version 3.2.0 is available.\n\nFixes the popover on two screens.\n\nWould you like to download "
        "and install it now?");
    saveWindow("general-outcome");
    saveSmallest("general-smallest");
}

TEST_P(SettingsPictures, Identity) {
    bench.open(SettingsTab::identity);
    saveWindow("identity-empty");
    addKeys();
    saveWindow("identity-filled");
    bench.find<QWidget>("keyTable").setFocus(Qt::TabFocusReason);
    bench.chooseRow("keyTable", 1);
    saveWindow("identity-encrypted");
    bench.savePassphrase(bench.keys.keys()[0], "secret");
    bench.chooseRow("keyTable", 0);
    saveWindow("identity-saved");
    saveSmallest("identity-smallest");
}

TEST_P(SettingsPictures, Passphrase) {
    addKeys();
    bench.open(SettingsTab::identity);
    bench.chooseRow("keyTable", 1);
    bench.click("setPassphraseButton");
    save(bench.find<QDialog>("passphraseSheet"), "passphrase");
    bench.click("passphraseSaveButton");
    save(bench.find<QDialog>("passphraseSheet"), "passphrase-error");
    bench.type("passphraseField", QStringLiteral("correct horse"));
    bench.click("passphraseSaveButton");
    bench.click("changePassphraseButton");
    bench.type("passphraseField", QStringLiteral("correct horse"));
    save(bench.find<QDialog>("passphraseSheet"), "passphrase-stored");
    bench.click("showPassphraseButton");
    save(bench.find<QDialog>("passphraseSheet"), "passphrase-shown");
}

TEST_P(SettingsPictures, KnownHosts) {
    bench.open(SettingsTab::knownHosts);
    saveWindow("hosts-empty");
    std::string text;
    for (int number = 1; number <= 60; ++number) {
        text += "host" + std::to_string(number) + ".example.com,10.0.0." + std::to_string(number) +
                " ssh-ed25519 AAAAC3NzaC1lZDI1NTE5AAAAIOMqqnkVzrm0SdG6UOoqKLsabgH5C9okWi0dh2l9GKJl" +
                std::string(number % 5 == 0 ? 300 : 0, 'A') + "\n";
    }
    bench.files.files[SettingsBench::kKnownHosts] = {text, 0600};
    bench.click("reloadKnownHostsButton");
    bench.find<QWidget>("knownHostsEditor").setFocus();
    saveWindow("hosts");
    bench.files.files[SettingsBench::kKnownHosts] = {text.substr(0, text.find("host5.")), 0600};
    bench.click("reloadKnownHostsButton");
    saveWindow("hosts-few");
    bench.click("saveKnownHostsButton");
    saveWindow("hosts-saved");
    bench.files.writeFailure = platform::FileError{28, "No space left on device"};
    bench.click("saveKnownHostsButton");
    saveSmallest("hosts-failed");
}

TEST_P(SettingsPictures, Tags) {
    bench.open(SettingsTab::tags);
    saveWindow("tags");
    bench.find<QWidget>("tagList").setFocus(Qt::TabFocusReason);
    bench.chooseRow("tagList", 2);
    saveWindow("tags-selected");
    bench.click("editTagButton");
    save(bench.find<QDialog>("tagEditSheet"), "tag-edit");
    bench.click("editTagColorWell");
    save(bench.find<QDialog>("colorPanel"), "tag-color");
    bench.find<QDialog>("colorPanel").reject();
    bench.click("editTagCancelButton");
    bench.tags.tags().clear();
    bench.tags.save();
    saveWindow("tags-none");
}

TEST_P(SettingsPictures, LongAndForeignNames) {
    bench.addKey("/home/someone/.ssh/a-very-long-name-of-a-key-that-does-not-fit-into-the-column-at-all.pem",
                 SettingsBench::kEncryptedKey);
    bench.addKey("/home/someone/.ssh/מפתח הייצור של החברה", "plain");
    bench.addKey("/home/مستخدم/.ssh/خادم الإنتاج الرئيسي في مركز البيانات الأول بالقاهرة",
                 SettingsBench::kEncryptedKey);
    bench.addKey("/home/someone/.ssh/生产 🚀", "plain");
    bench.tags.tags().push_back({support::Uuid::random(), "מפתח הייצור", "#FF00AA"});
    bench.tags.tags().push_back({support::Uuid::random(), std::string(3000, 'w'), "#00FFAA"});
    bench.open(SettingsTab::identity);
    bench.chooseRow("keyTable", 0);
    saveWindow("names-long");
    bench.chooseRow("keyTable", 2);
    saveWindow("names-rtl");
    bench.click("setPassphraseButton");
    save(bench.find<QDialog>("passphraseSheet"), "names-passphrase");
    bench.click("passphraseCancelButton");
    bench.turnTo(SettingsTab::tags);
    bench.chooseRow("tagList", 6);
    saveWindow("names-tags");
}

TEST_P(SettingsPictures, FromRightToLeft) {
    QApplication::setLayoutDirection(Qt::RightToLeft);
    addKeys();
    bench.open();
    saveWindow("mirrored-general");
    bench.turnTo(SettingsTab::identity);
    bench.chooseRow("keyTable", 1);
    saveWindow("mirrored-identity");
    bench.turnTo(SettingsTab::knownHosts);
    saveWindow("mirrored-hosts");
    bench.turnTo(SettingsTab::tags);
    bench.chooseRow("tagList", 1);
    saveWindow("mirrored-tags");
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

INSTANTIATE_TEST_SUITE_P(Both, SettingsPictures, testing::Values(Appearance::light, Appearance::dark),
                         [](const auto& info) {
                             return info.param == Appearance::dark ? std::string("dark") : std::string("light");
                         });

} // namespace
} // namespace fernwick::tests
