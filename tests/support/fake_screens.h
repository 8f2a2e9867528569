#pragma once
// A screen service for tests: records what was shown, unloaded and started,
// and keeps a list of loaded screens. A modal screen can be given a handler
// that plays what the user does in it.

#include <QHash>
#include <QStringList>
#include <functional>

#include "shell/screens.h"

namespace veldo::testing {

class FakeScreens : public Screens {
public:
    void show(const QString& name) override {
        shown << name;
        if (!loaded_.contains(name)) loaded_ << name;
    }
    void show_modal(const QString& name) override {
        modal << name;
        if (!loaded_.contains(name)) loaded_ << name;
        if (auto it = modal_handlers.find(name); it != modal_handlers.end()) it.value()();
        loaded_.removeAll(name);
    }
    void unload(const QString& name) override {
        unloaded << name;
        loaded_.removeAll(name);
    }
    bool is_loaded(const QString& name) const override { return loaded_.contains(name); }
    QStringList loaded() const override { return loaded_; }
    void end_program() override { ended = true; }
    bool start_process(const QString& program) override {
        started << program;
        return true;
    }
    bool open_document(const QString& path) override {
        documents << path;
        return true;
    }
    QStringList process_environment() const override { return environment; }
    // Recorded among the unloads, where its order matters.
    void close_dialogs() override { unloaded << "(dialogs closed)"; }

    QStringList shown, modal, unloaded, started, documents;
    QStringList environment{"HOME=/home/juffrou", "LANG=af_ZA.UTF-8"};
    QHash<QString, std::function<void()>> modal_handlers;
    bool ended = false;

private:
    QStringList loaded_{screen::startup};
};

}  // namespace veldo::testing
