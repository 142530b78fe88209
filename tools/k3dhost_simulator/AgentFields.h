// What the agent writes into the parameters of its own record, and the words that it is printed with.
#pragma once

#include "lipc/SettingsRecord.h"

#include <string_view>

namespace K3DHostSimulator {

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

/// What these parameters hold before the agent has written them: none of its values.
constexpr float kNothingWritten = -1.0F;

} // namespace K3DHostSimulator
