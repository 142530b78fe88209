#include "tools/k3dhost_simulator/WriteWatcher.h"

#include "lipc/SettingsRecord.h"
#include "tables/Settings.h"
#include "text/Printable.h"
#include "tools/k3dhost_simulator/SessionRecords.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace K3DHostSimulator {
namespace {

using Kest::Settings::kParameterSettings;
using Kest::Text::escaped;
using Kest::Text::escapedBytes;
using Kest::Text::printable;

constexpr const auto& kFacility = Kest::Settings::setting("Facility");
constexpr std::string_view kDefaultBus = "default bus ";
constexpr std::string_view kForeignWrite = "FOREIGN WRITE at offset ";

// The agent writes the slots and the index of a text, but not the type word before or the padding after them.
constexpr std::size_t kTextStart = 8;
constexpr std::size_t kTextEnd = 268;

struct ByteRange {
    std::size_t begin;
    std::size_t end;
};

// Returns the agent's own fields in the order of their offsets; the last one ends with the segment.
std::vector<ByteRange> agentRanges(int settingsSlot)
{
    std::vector<ByteRange> fields;
    if (settingsSlot >= 0) {
        const auto record = offsetof(LIPC::SessionBuffer, clients) +
                            static_cast<std::size_t>(settingsSlot) * sizeof(LIPC::ClientEntry);
        for (const auto& setting : kParameterSettings) {
            const auto begin = record + offsetof(LIPC::ClientEntry, params) +
                               static_cast<std::size_t>(setting.number) * sizeof(float);
            fields.push_back({begin, begin + sizeof(float)});
        }
        const auto text =
            record + offsetof(LIPC::ClientEntry, strings) + kFacility.number * sizeof(LIPC::SHMString);
        fields.push_back({text + kTextStart, text + kTextEnd});
    }
    fields.push_back({offsetof(LIPC::SessionBuffer, defaultBus), LIPC::SessionBuffer::kSegmentBytes});
    std::sort(fields.begin(), fields.end(), [](auto& a, auto& b) { return a.begin < b.begin; });
    return fields;
}

bool startsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start && text.size() > start.size();
}

} // namespace

WriteWatcher::WriteWatcher() : expectedSession(std::make_unique<LIPC::SessionBuffer>()) {}

std::vector<std::string> WriteWatcher::takeAgentWrites(const LIPC::SessionBuffer& session)
{
    std::vector<std::string> lines;
    const int slot = slotOf(*expectedSession, LIPC::kSettingsClientName);
    if (slot >= 0) {
        const auto& record = session.clients[slot];
        for (const auto& setting : kParameterSettings) {
            const float value = LIPC::loadShared(record.params[setting.number]);
            float& known = expectedSession->clients[slot].params[setting.number];
            if (std::bit_cast<std::uint32_t>(value) == std::bit_cast<std::uint32_t>(known)) // NaN too
                continue;
            known = value;
            lines.push_back(std::string(setting.name) + " " + printable(value));
        }
        if (facility.update(record.strings[kFacility.number].text()))
            lines.push_back(std::string(kFacility.name) + " " + escaped(facility.text()));
    }
    if (defaultBus.update(session.defaultBus.text()))
        lines.push_back(defaultBusLine());
    return lines;
}

std::string WriteWatcher::defaultBusLine() const
{
    const int slot = slotOf(*expectedSession, defaultBus.text());
    const auto id = "(id " + escapedBytes(defaultBus.text()) + ")";
    if (slot < 0)
        return std::string(kDefaultBus) + id;
    return std::string(kDefaultBus) + escapedBytes(expectedSession->clients[slot].labelText()) + " " + id;
}

std::vector<std::string> WriteWatcher::takeForeignWrites(const LIPC::SessionBuffer& session)
{
    std::vector<std::string> lines;
    const auto* found = reinterpret_cast<const unsigned char*>(&session);
    auto* known = reinterpret_cast<unsigned char*>(expectedSession.get());
    std::size_t begin = 0;
    for (const auto& field : agentRanges(slotOf(*expectedSession, LIPC::kSettingsClientName))) {
        const auto length = field.begin - begin;
        if (std::memcmp(found + begin, known + begin, length) != 0) {
            const auto* changed = std::mismatch(found + begin, found + field.begin, known + begin).first;
            lines.push_back(std::string(kForeignWrite) + std::to_string(changed - found));
            std::memcpy(known + begin, found + begin, length);
        }
        begin = field.end;
    }
    return lines;
}

bool WriteWatcher::hasReportForm(std::string_view line)
{
    const bool isSetting = std::ranges::any_of(Kest::Settings::kSettings, [line](const auto& setting) {
        return startsWith(line, std::string(setting.name) + " ");
    });
    return isSetting || startsWith(line, kDefaultBus) || startsWith(line, kForeignWrite);
}

} // namespace K3DHostSimulator
