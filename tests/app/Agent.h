// The whole application with private paths, a fake desktop and, by default, a fake front end.
#pragma once

#include "app/KestSettingsAppDelegate.h"
#include "app/MenuSnapshot.h"
#include "backend/SettingsFileCheck.h"
#include "tests/support/Captured.h"
#include "tests/support/Encoder.h"
#include "tests/support/TestPaths.h"

#include <gmock/gmock.h>

#include <map>
#include <mutex>

namespace Kest::Test {

class FakeFrontEnd final : public App::FrontEnd {
public:
    void showStatusItem(const std::string& name) override { imageName = name; }
    void post(std::function<void()> job) override
    {
        const std::lock_guard lock(mutex);
        jobs.push_back(std::move(job));
    }
    void menuChanged(const App::MenuChanges&) override { ++changes; }
    void hostChanged() override { ++hostChanges; }
    void quit() override { hasQuit = true; }

    /// Runs the jobs posted so far, and returns their number.
    std::size_t runJobs()
    {
        std::unique_lock lock(mutex);
        const auto toRun = std::exchange(jobs, {});
        lock.unlock();
        for (const auto& job : toRun)
            job();
        return toRun.size();
    }
    bool awaitJob()
    {
        return eventually([this] {
            const std::lock_guard lock(mutex);
            return !jobs.empty();
        });
    }

    std::string imageName;
    int changes = 0;
    int hostChanges = 0;
    bool hasQuit = false;

private:
    std::mutex mutex;
    std::vector<std::function<void()>> jobs;
};

class FakeWorkspace final : public App::Workspace {
public:
    bool run(const std::string& program, const std::vector<std::string>& arguments) override
    {
        calls.push_back("run " + program);
        for (const auto& argument : arguments)
            calls.back() += " " + argument;
        whenRun();
        return true;
    }
    bool launchApplication(const std::string& path) override
    {
        calls.push_back("launch " + path);
        return applicationsLaunch;
    }
    void selectFile(const std::string& folder) override { calls.push_back("select " + folder); }
    void showAboutPanel(const App::About& about) override { calls.push_back("about " + about.name); }

    std::vector<std::string> calls;
    bool applicationsLaunch = true;
    std::function<void()> whenRun = [] {};
};

class FakeDelegate final : public App::KestSettingsAppDelegate {
public:
    using KestSettingsAppDelegate::KestSettingsAppDelegate;
    void showNotification(const std::string& text) override
    {
        notes.push_back(text);
        whenNotified();
    }
    std::vector<std::string> notes;
    std::function<void()> whenNotified = [] {};
};

/// The application with a `FrontEnd` whose function `runJobs` runs the posted jobs.
template <typename FrontEnd>
class AgentOn {
public:
    /// Creates a settings file with these values; creates no file if there are no values.
    explicit AgentOn(const std::map<std::string, std::string>& settings = {},
                     App::AbortJobs::Abort abortOne = App::abortEncoder)
        : delegate(frontEnd, workspace, system.paths, std::chrono::milliseconds(5), std::move(abortOne))
    {
        juce::StringPairArray values;
        for (const auto& [key, value] : settings)
            values.set(key, value);
        std::filesystem::create_directories(system.paths.settingsFolder);
        if (!settings.empty())
            writeFile(system.paths.settingsFile(), Settings::settingsText(values));
    }
    void start()
    {
        delegate.awakeFromNib();
        delegate.applicationDidFinishLaunching();
        frontEnd.runJobs();
    }

    /// Returns the item at a path such as "Solo Mode/Latch"; throws if there is no such item.
    App::MenuItem& at(const std::string& path) const
    {
        const auto slash = path.rfind('/');
        const auto& menu =
            slash == std::string::npos ? delegate.menu().statusMenu() : *at(path.substr(0, slash)).submenu();
        auto* item = menu.itemWithTitle(path.substr(slash + 1)); // npos + 1 is 0
        return item != nullptr ? *item : throw std::runtime_error("no item " + path);
    }
    const App::ItemProperties& properties(const std::string& path) const { return at(path).properties(); }
    bool choose(const std::string& path) { return delegate.choose(at(path).id()); }
    void open(const std::string& path) { delegate.menuWillOpen(at(path).id()); }

    /// Returns one text for each item in the submenu of the item at `path`: the title ("-" for a separator),
    /// a blank and the tag, then "*" if the item is on and "!" if it is red.
    std::vector<std::string> items(const std::string& path) const
    {
        std::vector<std::string> lines;
        for (const auto& item : at(path).submenu()->itemArray()) {
            const auto& is = item->properties();
            lines.push_back((is.separator ? "-" : is.title) + " " + std::to_string(is.tag) +
                            (is.on ? "*" : "") + (is.red ? "!" : ""));
        }
        return lines;
    }

    /// Runs jobs as they are posted until the condition holds. Returns false after 20 s.
    bool pumpUntil(const std::function<bool()>& condition)
    {
        return eventually([&] { return frontEnd.runJobs(), condition(); });
    }

    /// Returns the value of `key` in the settings file; "absent" if there is none.
    std::string stored(const std::string& key) const
    {
        const auto values = Settings::readSettingsText(readFile(system.paths.settingsFile()));
        return values ? values->getValue(key, "absent").toStdString() : "absent";
    }

    /// Writes lines of the encoder `pid` into the pipe: `path`, unless it is empty, and `percentage`. Waits
    /// until the menu shows the percentage. Returns false if that fails.
    bool report(int pid, const std::string& path, int percentage = 50)
    {
        const auto begin = "pid: " + std::to_string(pid) + " , ";
        return send((path.empty() ? "" : begin + "path: " + path + "\n") + begin +
                    "P: " + std::to_string(percentage) + "\n") &&
               pumpUntil([&] {
                   const auto* row = entry(pid);
                   return row != nullptr && row->properties().encoding->percent == percentage;
               });
    }
    bool send(const std::string& lines) const
    {
        return Encoder(system.paths.encodingProgressFifo).write(lines);
    }
    const App::MenuItem* entry(int pid) const { return at("Encoding History").submenu()->itemWithTag(pid); }

    TestPaths system;
    FrontEnd frontEnd;
    FakeWorkspace workspace;
    FakeDelegate delegate;
};

using Agent = AgentOn<FakeFrontEnd>;

} // namespace Kest::Test
