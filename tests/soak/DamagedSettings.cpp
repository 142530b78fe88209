// Damaged settings files by the thousand, each met by a start beside the last good copy.
//
//   soak-damaged FOLDER COUNT     says "FILES DAMAGED WRONG SLOWEST_MS" in numbers
#include "backend/SettingsFile.h"
#include "backend/SettingsFileCheck.h"
#include "backend/SystemPaths.h"
#include "tests/support/TemporaryFolder.h"

#include <chrono>
#include <cstdio>
#include <random>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using Kest::Settings::SettingsFile;
using Kest::Test::readFile;
using Kest::Test::writeFile;

constexpr int kSeed = 4711;
constexpr unsigned kHangSeconds = 10; // then the alarm ends the program

std::string repeated(const std::string& text, int times)
{
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

// Such as make the store's parser hang, read beyond its end or use up the stack.
const std::string kPieces[] = {"<?a?>R",
                               "<?",
                               "<!--",
                               "<!DOCTYPE a [<!ENTITY b SYSTEM \"c\">]>",
                               "<![CDATA[",
                               "&b;",
                               "&#x;",
                               "&#99999999;",
                               "&",
                               "<a>",
                               "</PROPERTIES>",
                               "<VALUE name=\"SoloMode\"/>",
                               "\"",
                               "\0"s,
                               "\xff\xfe",
                               "\xf8\x88",
                               "PROP\x01",
                               repeated("<a>", 40000)};

class Damage {
public:
    std::string operator()(std::string text)
    {
        switch (below(4)) {
        case 0:
            for (std::size_t flips = 1 + below(8); flips > 0; --flips)
                text[below(text.size())] ^= static_cast<char>(1 << below(8));
            break;
        case 1:
            text.resize(below(text.size()));
            break;
        case 2:
            text.insert(below(text.size()), kPieces[below(std::size(kPieces))]);
            break;
        default: // a piece in place of another, as after a write that never came
            const auto from = below(text.size());
            text.replace(from, below(text.size() - from), below(2) == 0 ? ""s : std::string(512, '\0'));
        }
        return text;
    }

private:
    std::size_t below(std::size_t limit) { return random() % limit; }
    std::mt19937 random{kSeed};
};

struct Outcome {
    bool damaged;
    bool well;
    double milliseconds;
};

Outcome startWith(const std::string& text, const std::string& good, const Kest::Settings::SystemPaths& paths)
{
    const auto file = paths.settingsFile();
    writeFile(file, text);
    writeFile(file + ".last", good);
    fs::remove(file + ".bad");
    const bool damaged = !Kest::Settings::isSettingsText(text);

    alarm(kHangSeconds);
    const auto begin = std::chrono::steady_clock::now();
    juce::ApplicationProperties properties;
    SettingsFile settings(properties, paths);
    const int mode = settings.values().getIntValue("SoloMode", 0);
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begin;
    bool well = true;
    settings.keep("SoloMode", damaged ? mode : mode + 1); // what only looks well has to go through the store
    if (damaged) // all of the last good copy, and the damaged file is kept
        well = mode == 7 && readFile(file) == good && readFile(file + ".bad") == text;
    return {damaged, well, taken.count()};
}

} // namespace

int main(int count, char** words)
{
    if (count < 3)
        return 2;
    if (std::freopen("/dev/null", "w", stderr) == nullptr)
        return 2;
    Kest::Settings::SystemPaths paths;
    paths.settingsFolder = words[1];
    const auto good = [&paths] {
        juce::ApplicationProperties properties;
        SettingsFile settings(properties, paths);
        for (int i = 0; i < 10; ++i)
            settings.keep(("Key" + std::to_string(i)).c_str(), juce::String("Studio \"A\" & <B>"));
        settings.keep("SoloMode", 7);
        return readFile(paths.settingsFile());
    }();

    const int files = std::stoi(words[2]);
    Damage damage;
    int damaged = 0;
    int wrong = 0;
    double slowest = 0;
    for (int i = 0; i < files; ++i) {
        const auto outcome = startWith(damage(good), good, paths);
        damaged += outcome.damaged ? 1 : 0;
        wrong += outcome.well ? 0 : 1;
        slowest = std::max(slowest, outcome.milliseconds);
    }
    std::printf("result %d %d %d %.0f\n", files, damaged, wrong, slowest);
    return 0;
}
