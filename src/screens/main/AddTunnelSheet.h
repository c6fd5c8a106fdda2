// The sheet that creates a tunnel. It blocks the window that it belongs to and nothing else.
// Threads: main thread only.
#pragma once

#include "catalogue/TunnelStore.h"
#include "screens/main/TunnelRules.h"
#include "screens/theme/Theme.h"

#include <QDialog>

#include <functional>

class QGridLayout;
class QLineEdit;
class QPushButton;

namespace fernwick {

class AddTunnelSheet final : public QDialog {
public:
    static constexpr int kWidth = 420;

    // `onAdded` is called with the tunnel after the store has taken it.
    AddTunnelSheet(const Theme& theme, TunnelStore& store, const platform::Clock& clock,
                   std::function<void(const Tunnel&)> onAdded, QWidget* parent);

private:
    // A field of the sheet and the text that it fills in.
    struct Row {
        QString label;
        QString placeholder;
        QString objectName;
        std::string NewTunnelFields::* text;
    };

    QWidget* buildHeading();
    QWidget* buildFields();
    QWidget* buildButtons();
    QLineEdit* addRow(QGridLayout& grid, const Row& row);
    void create();

    const Theme& theme_;
    TunnelStore& store_;
    const platform::Clock& clock_;
    std::function<void(const Tunnel&)> onAdded_;
    NewTunnelFields fields_;
    QPushButton* createButton_ = nullptr;
};

} // namespace fernwick
