// Where the agent and the host meet: the fields of the record named "KestSettings".
#pragma once

namespace LIPC {

constexpr char kSettingsClientName[] = "KestSettings";
constexpr char kVersionSegment[] = "LIPC_VERSION";
constexpr char kSessionSegment[] = "LIPC_SESSION";

/// Numbers of `ClientEntry::params` in that record. The agent writes all but the host's message.
enum eSettingsParameter {
    eSoloMode = 4,
    eHdxAuxTrackDelay = 32,
    eDAWLinkControl = 33,
    eDefaultPannerObjects = 37, // 1.0 on, 0.0 off
    eHostMessage = 39,          // written by the host
    eLatencyCompensationControl = 40,
    ePhysMonConfig = 41, // an `LSS::eMixLayout`
};

/// Number of `ClientEntry::strings` that holds the name of the chosen facility.
constexpr int kFacilityString = 0;

} // namespace LIPC
