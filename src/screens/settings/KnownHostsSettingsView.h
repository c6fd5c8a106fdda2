// The tab "Known Hosts": ssh's file of host keys, read and written whole and never looked into. Both hold up
// the main thread, since the file is small. Threads: main thread only.
#pragma once

#include "screens/settings/SettingsContext.h"

#include <QWidget>

#include <memory>
#include <string>

namespace fernwick {

class IconLine;
class KnownHostsEditor;

class KnownHostsSettingsView final : public QWidget {
public:
    // How long it stands what came of saving.
    static constexpr platform::Duration kStatusDelay{2000};

    KnownHostsSettingsView(const SettingsContext& context, QWidget* parent);

    [[nodiscard]] std::string knownHostsText() const;
    [[nodiscard]] const std::string& saveStatus() const { return saveStatus_; }

    // Whether the file is being read right now.
    [[nodiscard]] bool isLoading() const { return isLoading_; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    [[nodiscard]] QWidget* buildHeader();
    void load();
    void save();
    void setLoading(bool loading);
    void setSaveStatus(std::string status, bool isGood);

    SettingsContext context_;
    std::string saveStatus_;
    bool isLoading_ = false;
    KnownHostsEditor* editor_ = nullptr;
    IconLine* status_ = nullptr;
    std::unique_ptr<platform::Timer> clearing_;
};

} // namespace fernwick
