#include "backend/HomeFolder.h"

#include "text/Utf8.h"

#include <climits>
#include <cstdlib>
#include <pwd.h>
#include <string_view>
#include <unistd.h>

namespace Kest::Settings {
namespace {

constexpr std::size_t kMaxHome = PATH_MAX - 256; // bytes; the rest is for file names
constexpr char kNoHome[] = "/nonexistent";

// Returns why a path cannot be used; null if it can.
const char* problemOf(std::string_view path)
{
    if (!path.starts_with('/'))
        return "is not an absolute path";
    if (path.size() > kMaxHome)
        return "is too long";
    if (!Text::isUtf8(path))
        return "is not UTF-8";
    return nullptr;
}

std::string homeInDatabase()
{
    const passwd* user = getpwuid(getuid());
    return user == nullptr || problemOf(user->pw_dir) != nullptr ? kNoHome : user->pw_dir;
}

} // namespace

std::string repairHome()
{
    const char* home = std::getenv("HOME");
    const char* problem = home == nullptr ? "is not set" : problemOf(home);
    if (problem == nullptr)
        return {};
    const auto line = std::string("HOME ") + problem + ", " + homeInDatabase() + " is used";
    setenv("HOME", homeInDatabase().c_str(), 1);
    return home == nullptr ? std::string() : line;
}

} // namespace Kest::Settings
