#include "tools/kest_inspect/Formatting.h"

#include "backend/Backend.h"
#include "lipc/Numeric.h"
#include "lipc/SettingsRecord.h"
#include "tables/KestSettingsTables.h"
#include "tables/Settings.h"
#include "tables/StatusMessages.h"
#include "text/MacRoman.h"
#include "text/Utf8.h"

#include <algorithm>

namespace KestInspect {

using Kest::Settings::kParameterSettings;
using Kest::Settings::Setting;
using Kest::Settings::setting;

std::string_view parameterName(int number)
{
    if (number == LIPC::kStatusNumberParameter)
        return "HostMessage";
    const auto found = std::ranges::find(kParameterSettings, number, &Setting::number);
    return found == kParameterSettings.end() ? "" : found->name;
}

std::string_view textName(int number)
{
    return number == setting("Facility").number ? setting("Facility").name : "";
}

std::string parameterMeaning(int number, float value)
{
    if (number == LIPC::kStatusNumberParameter)
        return messageMeaning(LIPC::round(value));
    if (number != setting("PhysMonConfig").number)
        return "";
    const auto configuration = Kest::Settings::speakerConfigurationOfLayout(LIPC::round(value));
    const auto name = Kest::Settings::sSpkrConf2Name.find(configuration);
    return name == Kest::Settings::sSpkrConf2Name.end() ? "no such configuration" : name->second;
}

std::string messageMeaning(std::int32_t number)
{
    if (number == Kest::Settings::kMsgBusListChanged)
        return "The bus list has changed";
    const auto* message = Kest::Settings::statusMessage(number);
    return message == nullptr ? "" : message->text;
}

std::string typeText(std::int32_t type)
{
    std::string letters;
    for (int shift = 24; shift >= 0; shift -= 8)
        letters += static_cast<char>(static_cast<std::uint32_t>(type) >> shift & 0xFFU);
    const bool areLetters =
        std::ranges::all_of(letters, [](char letter) { return letter >= ' ' && letter <= '~'; });
    return areLetters ? letters : std::to_string(type);
}

std::string nameInUtf8(std::string_view bytes) { return Kest::Text::macRomanToUtf8(bytes); }

std::string textInUtf8(std::string_view bytes) { return Kest::Text::toUtf8(bytes); }

} // namespace KestInspect
