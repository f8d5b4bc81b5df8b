// The numbers of the texts that the document shows.
#pragma once

namespace Application_Tarvel {

enum ETextId : int {
    textOutputExtension = 332, // ".tarout"
    textParametersWrongRun = 324,
    textStopBeforeExit = 900,
    textStopBeforeClose = 901,
    textStopBeforeSaveAs = 903,
    textFailedToLoad = 904,
    textEventMarkerAdded = 906,
    textMountAdded = 907,
    textUntitled = 10200,
    textSaveChanges = 10201,
    textFailedToSave = 10202,
    textParametersWrongLine = 10203,
    textMustSaveBeforeRun = 10204,
    textResultExists = 10205,
    textNoParameterPath = 10206,
    textNoParameterFile = 10207,
    textNoProcess = 10208,
    textFrozen = 10209,
    textRecordingNotFound = 10210,
    textRecordingOutdated = 10211,
    textUnknownFileType = 10212,
    textNoEquipment = 10213,
    textBatchFileCorrupted = 10220,
    textNoSynchronization = 10221,
    textEnterValue = 10222,
    textFolderNotFound = 10223,
    textNotAFolder = 10224,
    textOverwriteProject = 10225,
    textBatchFileNotRead = 10226
};

} // namespace Application_Tarvel
