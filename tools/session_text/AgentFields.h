// What the agent writes into the parameters of its own record, and the words that it is printed with.
#pragma once

#include "lipc/SettingsRecord.h"

#include <string_view>

namespace SessionText {

struct AgentParameter {
    int number; // in `LIPC::ClientEntry::params`
    std::string_view name;
};

constexpr AgentParameter kAgentParameters[] = {
    {LIPC::eSoloMode, "SoloMode"},
    {LIPC::eHdxAuxTrackDelay, "HdxAuxTrackDelay"},
    {LIPC::eDAWLinkControl, "DAWLinkControl"},
    {LIPC::eDefaultPannerObjects, "defaultPannerObjects"},
    {LIPC::eLatencyCompensationControl, "LatencyCompensationControl"},
    {LIPC::ePhysMonConfig, "PhysMonConfig"},
};

/// The text `LIPC::kFacilityString`.
constexpr std::string_view kFacilityName = "Facility";

} // namespace SessionText
