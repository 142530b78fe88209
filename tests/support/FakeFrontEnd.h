// A front end and a desktop that only record the calls.
#pragma once

#include "app/FrontEnd.h"

#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

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

    /// Runs what has been posted so far, and returns how much that was.
    int runJobs()
    {
        std::unique_lock lock(mutex);
        const auto toRun = std::exchange(jobs, {});
        lock.unlock();
        for (const auto& job : toRun)
            job();
        return static_cast<int>(toRun.size());
    }
    bool hasJobs()
    {
        const std::lock_guard lock(mutex);
        return !jobs.empty();
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
        asked.push_back("run " + program);
        for (const auto& argument : arguments)
            asked.back() += " " + argument;
        whenRun();
        return true;
    }
    bool launchApplication(const std::string& path) override
    {
        asked.push_back("launch " + path);
        return applicationsLaunch;
    }
    void selectFile(const std::string& folder) override { asked.push_back("select " + folder); }
    void showAboutPanel(const App::About& about) override { asked.push_back("about " + about.name); }

    std::vector<std::string> asked;
    bool applicationsLaunch = true;
    std::function<void()> whenRun = [] {};
};

} // namespace Kest::Test
