// The tab with what a tunnel is: its name, the server and how to log in there, the ports, and notes. Every
// change is written through at once. Threads: main thread only.
#pragma once

#include "screens/detail/FormPage.h"
#include "screens/detail/TunnelBinding.h"
#include "screens/main/MainWindowContext.h"

#include <optional>
#include <vector>

namespace fernwick {

class ChoiceMenu;
class InlineKeyPickerView;
class NotesEditor;
class PasswordField;
class PortDiagramView;
class TagPicker;
class TextField;

class ConfigTabView final : public FormPage {
public:
    // The binding outlives the tab.
    ConfigTabView(const MainWindowContext& context, TunnelBinding& binding, QWidget* parent);

    // Shows the tunnel of the binding as it is now.
    void refresh();

private:
    // A field of one line, and the text of the tunnel that it is bound to.
    struct Row {
        const char* objectName;
        QString label;
        QString placeholder;
        std::string Tunnel::* text;
        int width = 0; // 0: as wide as there is room
    };
    struct BoundText {
        TextField* field;
        std::string Tunnel::* text;
        QWidget* row;
    };

    void buildGeneral();
    void buildServer();
    void buildAuthentication(FormSection& section);
    void buildForwarding();
    void buildNotes();
    TextField* addText(FormSection& section, const Row& row);
    // A row with a control; returns the row.
    QWidget* addControl(FormSection& section, const QString& label, QWidget* content,
                        QWidget* control = nullptr);
    void submitSSHPort();
    void refreshAuthentication(const Tunnel& tunnel);

    MainWindowContext context_;
    TunnelBinding& binding_;
    std::optional<support::Uuid> shownID_;
    std::vector<BoundText> texts_;
    ChoiceMenu* type_ = nullptr;
    TagPicker* tags_ = nullptr;
    ChoiceMenu* authMethod_ = nullptr;
    InlineKeyPickerView* keyPicker_ = nullptr;
    QWidget* keyRow_ = nullptr;
    PasswordField* password_ = nullptr;
    QWidget* passwordRow_ = nullptr;
    std::vector<QWidget*> remoteRows_;
    PortDiagramView* diagram_ = nullptr;
    NotesEditor* notes_ = nullptr;
};

} // namespace fernwick
