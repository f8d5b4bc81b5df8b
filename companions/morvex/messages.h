// What the engine tells its user while it works.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace Morvex {

enum class ELevel : int { information = 0, warning = 1, error = 2 };

// Numbers of the messages: their codes on the line protocol and their rows in the table of texts.
enum EMessage : int {
    messageParametersUnreadable = 10900,
    messageNoMainFile,
    messageNoInertialData,
    messageNoGps,
    messageGpsChannelMissing,
    messageOutputFailed,
    messageNoFix,
    messageTooShort,
    messageStopped,
    messageNoUtc,
    messageUnitGrade,
    messageAligned,
    messageHeadingUnknown,
    messageGpsGap,
    messageImuGap,
    messageDamaged,
    messageRejectedFixes,
    messageForwardOnly,
    messageSensorsNotUsed,
    messageCiphered,
    messageFinished,
    messageUnexpected,
    messageUsage,
};

// Where they go; implemented over the line protocol, and by a list in tests.
class IRunMonitor {
  public:
    virtual ~IRunMonitor() = default;
    // Percent done; called often, never decreasing.
    virtual void Progress(double percent) = 0;
    virtual void Message(ELevel level, EMessage code, std::string_view text) = 0;
    // Asked all the time: waits while the run is paused, false once it is to stop.
    virtual bool GoOn() = 0;
};

} // namespace Morvex
