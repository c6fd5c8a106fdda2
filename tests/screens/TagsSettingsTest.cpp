// The tab "Tags": adding, editing and deleting, and the colours as text.
#include "SettingsBench.h"
#include "catalogue/TunnelStore.h"
#include "screens/settings/ColorWell.h"
#include "screens/settings/TagEditSheet.h"
#include "screens/settings/TagListView.h"
#include "screens/theme/TagColors.h"

#include <QColorDialog>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QToolButton>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

class Tags : public testing::Test {
protected:
    Tags() { bench.open(SettingsTab::tags); }

    TagsSettingsView& tab() { return bench.find<TagsSettingsView>("tagsTab"); }
    QListView& list() { return bench.find<QListView>("tagList"); }
    ColorWell& newColor() { return bench.find<ColorWell>("newTagColorWell"); }
    QLineEdit& newName() { return bench.find<QLineEdit>("newTagNameField"); }
    TagEditSheet* sheet() { return bench.look<TagEditSheet>("tagEditSheet"); }
    bool shows(const char* name) { return bench.find<QWidget>(name).isVisible(); }

    void add(const char* name) {
        newName().setText(QString::fromUtf8(name));
        bench.click("addTagButton");
    }

    std::vector<std::string> names() {
        std::vector<std::string> found;
        for (const auto& tag : bench.tags.tags()) {
            found.push_back(tag.name);
        }
        return found;
    }

    void setTags(std::vector<TunnelTag> tags) {
        bench.tags.tags() = std::move(tags);
        bench.tags.save();
        bench.settle();
    }

    SettingsBench bench;
};

TEST_F(Tags, CountsThem) {
    EXPECT_EQ(bench.text("tagCount"), "5 tags — select a tag to edit or delete");
    setTags({{support::Uuid::random(), "one", "#FF0000"}});
    EXPECT_EQ(bench.text("tagCount"), "1 tag — select a tag to edit or delete");
    setTags({});
    EXPECT_EQ(bench.text("tagCount"), "0 tags — select a tag to edit or delete");
    const auto labels = tab().findChildren<QLabel*>();
    EXPECT_TRUE(std::ranges::any_of(labels, [](const QLabel* label) {
        return label->text() == QStringLiteral("Manage tags to organize your tunnels.");
    }));
}

TEST_F(Tags, ListsThemInTheirOrder) {
    ASSERT_EQ(list().model()->rowCount(), 5);
    EXPECT_EQ(list().model()->index(0, 0).data().toString(), QStringLiteral("Production"));
    EXPECT_EQ(list().model()->index(4, 0).data().toString(), QStringLiteral("Personal"));
    const QImage row = list().viewport()->grab().toImage();
    const QPoint swatch(23, list().visualRect(list().model()->index(0, 0)).center().y());
    EXPECT_EQ(row.pixelColor(swatch * row.devicePixelRatio()), QColor(0xFF, 0x45, 0x3A));
}

TEST_F(Tags, ANewTagIsTrimmedAndSaved) {
    newColor().setColor(Qt::red);
    add("  Work ");
    ASSERT_EQ(bench.tags.tags().size(), 6U);
    const auto& tag = bench.tags.tags().back();
    EXPECT_EQ(tag.name, "Work");
    EXPECT_EQ(tag.colorHex, "#FF0000");
    EXPECT_EQ(TagManager(bench.defaults).tags().back(), tag);
    EXPECT_EQ(newName().text(), QString());
    EXPECT_EQ(tagColorHex(newColor().color()), "#0A84FF"); // back to blue
    EXPECT_EQ(bench.text("tagCount"), "6 tags — select a tag to edit or delete");
    EXPECT_EQ(list().model()->rowCount(), 6);
}

TEST_F(Tags, ASecondTagOfThatExactNameIsRefusedSilently) {
    add("Work");
    newColor().setColor(Qt::red);
    add(" Work");
    EXPECT_EQ(bench.tags.tags().size(), 6U);
    EXPECT_EQ(newName().text(), QStringLiteral(" Work"));
    EXPECT_EQ(newColor().color(), QColor(Qt::red));
    add("work");
    EXPECT_EQ(names().back(), "work");
    EXPECT_EQ(bench.tags.tags().size(), 7U);
}

TEST_F(Tags, ATagWithoutANameIsNone) {
    for (const char* name : {"", "   ", "\t", "\u00A0\u3000"}) {
        add(name);
        EXPECT_EQ(bench.tags.tags().size(), 5U) << name;
    }
}

TEST_F(Tags, ReturnInTheFieldAdds) {
    newName().setFocus();
    QTest::keyClicks(&newName(), QStringLiteral("Work"));
    QTest::keyClick(&newName(), Qt::Key_Return);
    EXPECT_EQ(names().back(), "Work");
    EXPECT_EQ(newName().placeholderText(), QStringLiteral("New tag name"));
    EXPECT_GE(newName().width(), 180);
    EXPECT_LE(newName().width(), 240);
}

TEST_F(Tags, OnlyTheSelectedRowHasButtons) {
    EXPECT_FALSE(shows("editTagButton"));
    bench.chooseRow("tagList", 2);
    EXPECT_EQ(tab().selectedTagID(), bench.tags.tags()[2].id);
    EXPECT_TRUE(shows("editTagButton"));
    EXPECT_TRUE(shows("deleteTagButton"));
    const auto place = [&] {
        auto& button = bench.find<QWidget>("deleteTagButton");
        return list().viewport()->mapFromGlobal(button.mapToGlobal(button.rect().center()));
    };
    EXPECT_TRUE(list().visualRect(list().model()->index(2, 0)).contains(place()));
    bench.chooseRow("tagList", 3);
    EXPECT_TRUE(list().visualRect(list().model()->index(3, 0)).contains(place()));
}

TEST_F(Tags, TheButtonsGoAlongWhenTheListScrolls) {
    std::vector<TunnelTag> many;
    for (int number = 0; number < 10000; ++number) {
        many.push_back({support::Uuid::random(), "tag " + std::to_string(number), "#00FF00"});
    }
    setTags(many);
    bench.chooseRow("tagList", 0);
    EXPECT_TRUE(shows("editTagButton"));
    bench.find<QWidget>("editTagButton").setFocus();
    list().verticalScrollBar()->setValue(5000);
    EXPECT_FALSE(shows("editTagButton"));
    EXPECT_EQ(bench.window().focusWidget(), &list());
    list().verticalScrollBar()->setValue(0);
    EXPECT_TRUE(shows("editTagButton"));
}

TEST_F(Tags, DeletingAsksNothingAndClearsTheSelection) {
    const auto gone = bench.tags.tags()[1].id;
    bench.chooseRow("tagList", 1);
    bench.find<QWidget>("deleteTagButton").setFocus();
    bench.click("deleteTagButton");
    EXPECT_EQ(names(), (std::vector<std::string>{"Production", "Development", "Database", "Personal"}));
    EXPECT_EQ(TagManager(bench.defaults).tags(), bench.tags.tags());
    EXPECT_EQ(bench.tags.find(gone), nullptr);
    EXPECT_FALSE(tab().selectedTagID());
    EXPECT_FALSE(shows("editTagButton"));
    EXPECT_EQ(bench.window().focusWidget(), &list());
}

TEST_F(Tags, TunnelsKeepTheIdOfADeletedTag) {
    TunnelStore store(bench.defaults, bench.clock);
    Tunnel tunnel = store.tunnels().front();
    tunnel.tagIDs = {bench.tags.tags().front().id};
    store.update(tunnel);
    bench.chooseRow("tagList", 0);
    bench.click("deleteTagButton");
    store.reload();
    EXPECT_EQ(store.tunnels().front().tagIDs, tunnel.tagIDs);
}

TEST_F(Tags, TheKeyboardEditsAndDeletes) {
    QTest::keyClick(&list(), Qt::Key_Delete);
    EXPECT_EQ(bench.tags.tags().size(), 5U); // nothing is selected
    bench.chooseRow("tagList", 4);
    QTest::keyClick(&list(), Qt::Key_Return);
    ASSERT_NE(sheet(), nullptr);
    sheet()->reject();
    bench.settle();
    QTest::keyClick(&list(), Qt::Key_Delete);
    EXPECT_EQ(bench.tags.tags().size(), 4U);
}

TEST_F(Tags, EditingKeepsTheIdAndThePlace) {
    const auto id = bench.tags.tags()[1].id;
    bench.chooseRow("tagList", 1);
    bench.click("editTagButton");
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(sheet()->windowTitle(), QStringLiteral("Edit Tag"));
    EXPECT_EQ(sheet()->width(), 280);
    EXPECT_EQ(bench.find<QLineEdit>("editTagNameField").placeholderText(), QStringLiteral("Tag name"));
    EXPECT_EQ(bench.find<QLineEdit>("editTagNameField").text(), QStringLiteral("Staging"));
    EXPECT_EQ(bench.find<ColorWell>("editTagColorWell").color(), QColor(0xFF, 0x9F, 0x0A));
    bench.type("editTagNameField", QStringLiteral("  Test "));
    bench.find<ColorWell>("editTagColorWell").setColor(Qt::red);
    bench.click("editTagSaveButton");
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_EQ(bench.tags.tags()[1], (TunnelTag{id, "Test", "#FF0000"}));
    EXPECT_EQ(TagManager(bench.defaults).tags(), bench.tags.tags());
    EXPECT_EQ(tab().selectedTagID(), id);
    EXPECT_EQ(list().model()->index(1, 0).data().toString(), QStringLiteral("Test"));
}

TEST_F(Tags, EditingWithoutANameStays) {
    const auto before = bench.tags.tags();
    bench.chooseRow("tagList", 0);
    bench.click("editTagButton");
    bench.type("editTagNameField", QStringLiteral("   "));
    bench.click("editTagSaveButton");
    ASSERT_NE(sheet(), nullptr);
    EXPECT_TRUE(sheet()->isVisible());
    QTest::keyClick(sheet(), Qt::Key_Escape);
    bench.settle();
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_EQ(bench.tags.tags(), before);
}

TEST_F(Tags, AnotherTagsNameMayBeGivenByEditing) {
    bench.chooseRow("tagList", 0);
    bench.click("editTagButton");
    bench.type("editTagNameField", QStringLiteral("Staging"));
    QTest::keyClick(&bench.find<QLineEdit>("editTagNameField"), Qt::Key_Return);
    bench.settle();
    EXPECT_EQ(names()[0], "Staging");
    EXPECT_EQ(names()[1], "Staging");
}

TEST_F(Tags, ATagThatHasGoneMeanwhileStaysAway) {
    bench.chooseRow("tagList", 0);
    bench.click("editTagButton");
    setTags({});
    bench.click("editTagSaveButton");
    EXPECT_TRUE(bench.tags.tags().empty());
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(Tags, TheColorWellOpensAPanel) {
    QTest::keyClick(&newColor(), Qt::Key_Space);
    bench.settle();
    const QPointer<QColorDialog> panel = &bench.find<QColorDialog>("colorPanel");
    EXPECT_EQ(tagColorHex(panel->currentColor()), "#0A84FF");
    bench.click("newTagColorWell"); // one at a time
    EXPECT_EQ(bench.window().findChildren<QColorDialog*>().size(), 1);
    panel->setCurrentColor(QColor(1, 2, 3));
    panel->accept();
    bench.settle();
    EXPECT_TRUE(panel.isNull());
    EXPECT_EQ(newColor().color(), QColor(1, 2, 3));
    EXPECT_EQ(newColor().accessibleDescription(), QStringLiteral("#010203"));
    bench.click("newTagColorWell");
    bench.find<QColorDialog>("colorPanel").reject();
    EXPECT_EQ(newColor().color(), QColor(1, 2, 3));
}

TEST_F(Tags, EveryControlHasAName) {
    bench.chooseRow("tagList", 0);
    EXPECT_EQ(bench.aloud("tagList"), "Tags");
    EXPECT_EQ(bench.aloud("editTagButton"), "Edit tag");
    EXPECT_EQ(bench.aloud("deleteTagButton"), "Delete tag");
    EXPECT_EQ(bench.aloud("newTagColorWell"), "New tag color");
    EXPECT_EQ(bench.aloud("newTagNameField"), "New tag name");
    EXPECT_EQ(bench.aloud("addTagButton"), "Add");
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&newColor())->role(), QAccessible::Button);
    bench.click("editTagButton");
    EXPECT_EQ(bench.aloud("editTagColorWell"), "Tag color");
    EXPECT_EQ(bench.aloud("editTagNameField"), "Tag name");
}

TEST(TagColorHex, IsCutToWholeNumbers) {
    EXPECT_EQ(tagColorHex(Qt::red), "#FF0000");
    EXPECT_EQ(tagColorHex(QColor::fromRgbF(0.5F, 0.999F, 0.002F)), "#7FFE00");
    EXPECT_EQ(tagColorHex(QColor::fromHsv(120, 255, 255)), "#00FF00");
    EXPECT_EQ(tagColorHex(QColor::fromCmyk(0, 255, 255, 0)), "#FF0000");
    EXPECT_EQ(tagColorHex(QColor(1, 2, 3, 4)), "#010203");
    EXPECT_EQ(tagColorHex(QColor()), "#0A84FF");
}

TEST(TagColorHex, EveryComponentComesBackAsItWas) {
    for (int value = 0; value < 256; ++value) {
        const QColor color(value, 255 - value, value);
        EXPECT_EQ(tagColor(tagColorHex(color), paletteFor(Appearance::light)), color);
    }
}

} // namespace
} // namespace fernwick::tests
