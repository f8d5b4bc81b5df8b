// The numbers of the texts that the batch program writes of itself. What each command does has the numbers
// from 10511 on, which stand in the table of commands; the labels of a description are in labels.h.
#pragma once

namespace Batch {

enum ETextId : int {
    textNoData = 10301,
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
    textRunIncomplete = 10510,
    // wrong usage
    textUnknownCommand = 10526,
    textWrongArguments = 10527,
    textUnknownOption = 10528,
    textOptionValue = 10529,
    textOptionTwice = 10530,
    textPositiveNumber = 10531,
    textNoSeconds = 10532,
    textWindowNeeded = 10533,
    textPictureSize = 10534,
    textPictureName = 10535,
    textUnknownKind = 10536,
    textFileChoice = 10537,
    textUsage = 10538,
    textHasData = 10539,
    textHelpTail = 10592,
    textChannelColumns = 10593,
    textAnalysisColumns = 10594,
    textUtcOrigin = 10595,
    textFirstPosition = 10596,
    textDamagedAt = 10597,
    textTornAt = 10598,
    textMoreDamage = 10599,
    textNoFile = 10614,
    textOutputNotWritten = 10615,
    textMinimumOf = 10616,
    textMaximumOf = 10617
};

} // namespace Batch
