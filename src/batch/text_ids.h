// The numbers of the texts that the batch program writes of itself.
#pragma once

namespace Batch {

enum ETextId : int {
    textNoSuchFile = 10500,
    textOlderLayout = 10501,
    textNoPacketFile = 10502,
    textNoChannel = 10503,
    textNotDecoded = 10504,
    textNumbersContradict = 10505,
    textChannelEmpty = 10506,
    textTimeOutside = 10507,
    textExistsAlready = 10508,
    textNotWritten = 10509,
    textRunIncomplete = 10510
};

} // namespace Batch
