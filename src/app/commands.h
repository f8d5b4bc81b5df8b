// The commands of the main frame: one row each, from which menus, tool bars and keys are made.
#pragma once

#include "app/icons.h"
#include "foundation/text_id.h"

#include <QString>

#include <span>

namespace Application_Tarvel {

class CTrvProjectMainFrame;

// Where a command stands. The numbers of commands and bars are stable: they are kept in the user's settings.
enum class EMenu { file, simulation, add, display, horizontal, vertical, graph, mouse, tools, help, count };
enum class EBar { none, standard, tools };
// Where a command is in a context menu: directly, or under the title of its own menu.
enum class EContext { none, top, submenu };

// The inertial units that have a command: each kind of unit has a main menu and a menu of the processing
// panel, in which the others' commands are missing.
enum class EUnits : std::uint8_t {
    surface = 1, // the main menu 1053, and 1083 of the panel
    land = 2,    // 1052, 1082
    drone = 4,   // 1051, 1081
    others = 8,  // 1050, 1080, and without a project
    all = 15
};
constexpr EUnits operator|(EUnits left, EUnits right) {
    return static_cast<EUnits>(static_cast<int>(left) | static_cast<int>(right));
}
constexpr bool Includes(EUnits all, EUnits one) {
    return (static_cast<int>(all) & static_cast<int>(one)) != 0;
}
// By the equipment code of the project; 0 without one.
EUnits GetUnitsOf(std::int32_t equipment);

enum ECommand : int {
    commandProcess = 2,
    commandMenuBar = 32771,
    commandStandardBar = 32780,
    commandToolsBar = 32781,
    commandProcessingPanel = 32790,
    commandVariablesPanel = 32791,
    commandValuesPanel = 32792,
    commandOutputPanel = 32793,
    commandPlanPanel = 32794,
    commandZoomHorizontal = 32820,
    commandUnzoomHorizontal = 32821,
    commandScrollRight = 32822,
    commandScrollLeft = 32823,
    commandZoomVertical = 32830,
    commandUnzoomVertical = 32831,
    commandScrollUp = 32832,
    commandScrollDown = 32833,
    commandViewAll = 32840,
    commandFitValues = 32841,
    commandModeSelect = 32850,
    commandModePan = 32851,
    commandModeZoom = 32852,
    commandAddDataFile = 32860,
    commandAddGps = 32861,
    commandAddDvl = 32862,
    commandAddEMLog = 32863,
    commandAddDepth = 32864,
    commandAddUsbl = 32865,
    commandAddLbl = 32866,
    commandAddOdometer = 32867,
    commandAddEventMarker = 32868,
    commandAddPlatformOrientation = 32869,
    commandAddRejection = 32870,
    commandAddZupt = 32871,
    commandAddOutputRate = 32872,
    commandAddAltitudeMode = 32873,
    commandRemove = 32874,
    commandExport = 32875,
    commandSettings = 32876,
    commandLegends = 32877,
    commandEcho = 32878,
    commandClearOutput = 32879,
    commandUserGuide = 32882,
    commandContactSupport = 32883,
    commandCurveProperties = 32884,
    commandRemoveGraph = 32885,
    commandAddFiltering = 32888,
    commandBatchFile = 32889,
    commandNewFromBatch = 32890,
    commandNextFault = 32895,
    commandImportConfiguration = 32896,
    commandResetLayout = 32897,
    commandRelink = 32898,
    commandMoveFile = 32899,
    commandPreviousView = 32910,
    commandNextView = 32911,
    commandGoToDate = 32912,
    commandAxisRange = 32913,
    commandMoveGraphUp = 32914,
    commandMoveGraphDown = 32915,
    commandShowAlone = 32916,
    commandEqualHeights = 32917,
    commandSavePicture = 32918,
    commandSaveData = 32919,
    commandNew = 57600,
    commandOpen = 57601,
    commandSave = 57603,
    commandSaveAs = 57604,
    commandSaveCopyAs = 57611,
    commandPrint = 57607,
    commandPrintPreview = 57609,
    commandFirstRecent = 57616,
    commandDeleteCurve = 57632,
    commandCopyGraphs = 57634,
    commandAbout = 57664,
    commandExit = 57665
};

struct SMenuRow {
    EMenu menu;
    EMenu parent; // itself for a menu of the menu bar
    Outils_Texte::EText text;
    bool alsoWithoutProject; // in the menu bar before the first project
};

struct SCommandRow {
    int id;
    EMenu menu;
    Outils_Texte::EText text;
    Outils_Texte::EText tip;
    const char* shortcut = ""; // in portable form; "" for none
    EGlyph glyph = EGlyph::none;
    EBar bar = EBar::none;
    bool newGroup = false; // a separator is before it in its menu and bar
    void (*run)(CTrvProjectMainFrame&) = nullptr;
    bool (*enabledWhen)(const CTrvProjectMainFrame&) = nullptr; // null: always
    bool (*tickedWhen)(const CTrvProjectMainFrame&) = nullptr;  // null: it has no tick
    // The text at the moment, in place of the one above; an empty one hides the command.
    QString (*caption)(const CTrvProjectMainFrame&) = nullptr;
    // The picture at the moment.
    EGlyph (*glyphNow)(const CTrvProjectMainFrame&) = nullptr;
    // What works in the graphs alone: their context menu, and keys (separated by "; ") while they have the
    // focus.
    EContext graphMenu = EContext::none;
    const char* graphKeys = "";
    // In the menu of the processing panel, and for which units that menu and the main menu offer it.
    bool inProcessingMenu = false;
    EUnits units = EUnits::all;
};

std::span<const SMenuRow> GetMenus();
// In the order of their menus and bars. A menu is in its parent where its first command would be.
std::span<const SCommandRow> GetCommands();

} // namespace Application_Tarvel
