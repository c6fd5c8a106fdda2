// The backups one below the other: what each is called, when it was made and how large it is, with buttons to
// restore and to delete it. A thousand of them cost what a few do: rows are drawn, and only those that can be
// seen have buttons. Threads: main thread only.
#pragma once

#include "portability/BackupEntry.h"
#include "screens/routing/RowListModel.h"
#include "screens/theme/Theme.h"
#include "support/CalendarDate.h"

#include <QWidget>

#include <functional>
#include <vector>

class QListView;

namespace fernwick {

class BackupRowActions;
class EditorFrame;

// What the row shows of a backup. Its id stays the file's from listing to listing.
struct BackupRow {
    support::Uuid id;
    std::string url;
    QString name;
    QString facts; // date and size

    bool operator==(const BackupRow&) const = default;

    [[nodiscard]] QString title() const { return name; }
    [[nodiscard]] QString spoken() const { return name + QStringLiteral(", ") + facts; }
};

using BackupListModel = RowListModel<BackupRow>;

class BackupListView final : public QWidget {
public:
    struct Callbacks {
        std::function<void(const BackupEntry&)> restore;
        std::function<void(const BackupEntry&)> remove;
    };

    BackupListView(const Theme& theme, Callbacks callbacks, QWidget* parent);
    ~BackupListView() override;

    // Shows the backups of a listing. The chosen row stays with its file.
    void showEntries(const std::vector<BackupEntry>& entries);

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] std::vector<BackupRow> rowsOf(const std::vector<BackupEntry>& entries);
    void fitHeight();
    void placeActions();
    [[nodiscard]] BackupRowActions& actionsOf(std::size_t place);
    void ask(const std::function<void(const BackupEntry&)>& what, const support::Uuid& id);

    const Theme& theme_;
    Callbacks callbacks_;
    std::vector<BackupEntry> entries_; // in the order of the rows
    support::CalendarDateFormatter dates_;
    BackupListModel* model_;
    QListView* list_;
    EditorFrame* frame_;
    QWidget* strip_; // over the end of the rows, as high as what can be seen of them
    std::vector<BackupRowActions*> actions_;
};

} // namespace fernwick
