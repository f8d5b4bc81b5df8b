#include "app/commands.h"

#include "app/graph_commands.h"
#include "app/main_frame.h"
#include "document/edits.h"
#include "foundation/texts.h"
#include "plot/text.h"

namespace Application_Tarvel {

using Outils_Plot2D::Text;
using Outils_Texte::EText;

namespace {

using Frame = CTrvProjectMainFrame;

constexpr SMenuRow kMenus[] = {
    {EMenu::file, EMenu::file, EText::fileMenu, true},
    {EMenu::simulation, EMenu::simulation, EText::simulationMenu, false},
    {EMenu::add, EMenu::simulation, EText::addMenu, false},
    {EMenu::display, EMenu::display, EText::displayMenu, false},
    {EMenu::horizontal, EMenu::display, EText::horizontalScale, false},
    {EMenu::vertical, EMenu::display, EText::verticalScale, false},
    {EMenu::graph, EMenu::display, EText::graphMenu, false},
    {EMenu::mouse, EMenu::display, EText::mouseMenu, false},
    {EMenu::tools, EMenu::tools, EText::toolsMenu, true},
    {EMenu::help, EMenu::help, EText::helpMenu, true},
};
static_assert(std::size(kMenus) == static_cast<std::size_t>(EMenu::count));

bool HasProject(const Frame& frame) { return frame.HasProject(); }

constexpr SCommandRow Recent(int index, void (*run)(Frame&), QString (*caption)(const Frame&)) {
    return {.id = commandFirstRecent + index,
            .menu = EMenu::file,
            .text = EText::recent,
            .tip = EText::recentTip,
            .shortcut = "",
            .newGroup = index == 0,
            .run = run,
            .caption = caption};
}
template <int index>
constexpr SCommandRow kRecent = Recent(
    index, [](Frame& f) { f.OpenRecent(index); }, [](const Frame& f) { return f.GetRecentCaption(index); });

template <int id>
constexpr SCommandRow Toggle(EText text, const char* shortcut, bool newGroup = false) {
    return {.id = id,
            .menu = EMenu::display,
            .text = text,
            .tip = EText::showTip,
            .shortcut = shortcut,
            .newGroup = newGroup,
            .run = [](Frame& f) { f.ToggleBar(id); },
            .tickedWhen = [](const Frame& f) { return f.IsBarShown(id); }};
}

// A command of the graphs. `operation` is one of their loader, done with `steps`.
using Loader = Presentation_Tarvel_Graphics::CTrv1DGraphLoader;
template <auto operation, int... steps>
constexpr SCommandRow Graph(int id, EMenu menu, EText text, EText tip, const char* shortcut, EGlyph glyph,
                            bool newGroup, EContext context, const char* keys) {
    return {.id = id,
            .menu = menu,
            .text = text,
            .tip = tip,
            .shortcut = shortcut,
            .glyph = glyph,
            .bar = EBar::tools,
            .newGroup = newGroup,
            .run = [](Frame& f) { (f.GetView().GetLoader().*operation)(steps...); },
            .enabledWhen = HasProject,
            .graphMenu = context,
            .graphKeys = keys};
}

bool HasGraphs(const Frame& frame) { return !frame.GetView().GetStack().GetPortlets().empty(); }
bool HasPeriod(const Frame& frame) { return frame.GetView().GetStack().HasPeriod(); }
bool HasMeasures(const Frame& frame) { return frame.GetView().GetStack().GetSelectedMeasure() != nullptr; }
bool HasCurve(const Frame& frame) { return HasMeasures(frame) && frame.GetView().HasSelectedCurve(); }

template <EView1DMode mode>
constexpr SCommandRow Mode(int id, EText text, EText tip, const char* shortcut, EGlyph glyph, bool newGroup) {
    return {.id = id,
            .menu = EMenu::mouse,
            .text = text,
            .tip = tip,
            .shortcut = shortcut,
            .glyph = glyph,
            .bar = EBar::tools,
            .newGroup = newGroup,
            .run = [](Frame& f) { f.GetView().SetMode(mode); },
            .enabledWhen = HasProject,
            .tickedWhen = [](const Frame& f) { return f.GetView().GetMode() == mode; }};
}

// A command of the processing panel: what it adds, and for which units.
constexpr SCommandRow Add(int id, EText text, EText tip, EUnits units, void (*run)(Frame&),
                          bool (*enabledWhen)(const Frame&), bool newGroup = false) {
    return {.id = id,
            .menu = EMenu::add,
            .text = text,
            .tip = tip,
            .newGroup = newGroup,
            .run = run,
            .enabledWhen = enabledWhen,
            .inProcessingMenu = true,
            .units = units};
}
const Metier_Tarvel::CTrvSimulationParameters* FindParameters(const Frame& frame) {
    const auto* project = frame.GetDocument().GetProject();
    return project ? project->simulationParameters.get() : nullptr;
}
template <ESensorKind kind>
constexpr SCommandRow AddSensor(int id, EText text, EUnits units, bool newGroup = false) {
    return Add(
        id, text, EText::addSensorTip, units, [](Frame& f) { f.GetDocument().GetEdits().AddSensor(kind); },
        [](const Frame& f) { return FindParameters(f) && FindParameters(f)->CanAddSensor(kind); }, newGroup);
}
// An instruction in the object that `find` gives for the selected row.
template <const auto& edit, auto find>
constexpr SCommandRow AddInstruction(int id, EText text, EUnits units, bool newGroup = false) {
    return Add(
        id, text, EText::addInstructionTip, units,
        [](Frame& f) {
            auto& panel = f.GetProcessing();
            if (auto* owner = (panel.GetTree().*find)(panel.GetSelected()))
                f.GetDocument().GetEdits().Do(edit, *owner);
        },
        [](const Frame& f) {
            const auto& panel = f.GetProcessing();
            return f.HasProject() && (panel.GetTree().*find)(panel.GetSelected()) != nullptr;
        },
        newGroup);
}
template <const auto& edit>
constexpr SCommandRow AddPeriod(int id, EText text, EUnits units,
                                bool (*enabledWhen)(const Frame&) = HasProject) {
    return Add(
        id, text, EText::addInstructionTip, units, [](Frame& f) { f.GetDocument().GetEdits().Do(edit); },
        enabledWhen);
}
bool TakesAltitudeModes(const Frame& frame) {
    const auto* run = FindParameters(frame);
    return run && run->HasAltitudeAid();
}

constexpr EUnits kOthers = EUnits::others;
constexpr EUnits kNotSurface = EUnits::others | EUnits::land | EUnits::drone;
using Tree = Presentation_Tarvel_Grid::CProcessingTree;

using enum EGlyph;

// clang-format off
const SCommandRow kCommands[] = {
    {commandNew, EMenu::file, EText::newCommand, EText::newTip, "Ctrl+N", newProject, EBar::standard, false,
     [](Frame& f) { f.NewProject(); }},
    {.id = commandNewFromBatch, .menu = EMenu::file, .text = EText::newFromBatch, .tip = EText::newFromBatchTip,
     .run = [](Frame& f) { f.GetDocument().CommandNewBatch(); }},
    {commandOpen, EMenu::file, EText::open, EText::openTip, "Ctrl+O", open, EBar::standard, false,
     [](Frame& f) { f.AskAndOpen(); }},
    {commandSave, EMenu::file, EText::save, EText::saveTip, "Ctrl+S", save, EBar::standard, true,
     [](Frame& f) { f.GetDocument().Save(); }, HasProject},
    {commandSaveAs, EMenu::file, EText::saveAs, EText::saveAsTip, "Ctrl+Shift+S", none, EBar::none, false,
     [](Frame& f) { f.GetDocument().CommandSaveAs(); }, HasProject},
    {commandSaveCopyAs, EMenu::file, EText::saveCopyAs, EText::saveCopyAsTip, "", none, EBar::none, false,
     [](Frame& f) { f.GetDocument().SaveCopyAs(); }, HasProject},
    {.id = commandPrint, .menu = EMenu::file, .text = EText::print, .tip = EText::printTip, .shortcut = "Ctrl+P",
     .newGroup = true, .run = [](Frame& f) { f.GetGraphs().Print(); }, .enabledWhen = HasGraphs},
    {.id = commandPrintPreview, .menu = EMenu::file, .text = EText::printPreview, .tip = EText::printPreviewTip,
     .run = [](Frame& f) { f.GetGraphs().ShowPreview(); }, .enabledWhen = HasGraphs},
    {.id = commandSavePicture, .menu = EMenu::file, .text = EText::savePicture, .tip = EText::savePictureTip,
     .run = [](Frame& f) { f.GetGraphs().SavePicture(); }, .enabledWhen = HasGraphs, .graphMenu = EContext::top},
    {.id = commandSaveData, .menu = EMenu::file, .text = EText::saveData, .tip = EText::saveDataTip,
     .run = [](Frame& f) { f.GetGraphs().SaveData(); },
     .enabledWhen = [](const Frame& f) { return HasGraphs(f) && !f.GetGraphs().IsSavingData(); },
     .graphMenu = EContext::top},
    {.id = commandExport, .menu = EMenu::file, .text = EText::exportCommand, .tip = EText::exportTip,
     .shortcut = "Ctrl+Shift+E", .newGroup = true, .run = [](Frame& f) { f.Export(); }, .enabledWhen = HasProject},
    kRecent<0>, kRecent<1>, kRecent<2>, kRecent<3>,
    {commandExit, EMenu::file, EText::exit, EText::exitTip, "Ctrl+Q", none, EBar::none, true,
     [](Frame& f) { f.close(); }},

    {commandProcess, EMenu::simulation, EText::start, EText::startTip, "F5", process, EBar::standard, true,
     [](Frame& f) { f.GetProcessing().ToggleProcess(); }, HasProject, nullptr,
     [](const Frame& f) { return Text(f.IsRunning() ? EText::stop : EText::start); },
     [](const Frame& f) { return f.IsRunning() ? stop : process; }},

    {.id = commandNextFault, .menu = EMenu::simulation, .text = EText::nextFault, .tip = EText::nextFaultTip,
     .shortcut = "F8", .run = [](Frame& f) { f.GetProcessing().SelectNextFault(); },
     .enabledWhen = [](const Frame& f) { return f.GetProcessing().GetTree().GetFaultCount() > 0; }},
    {.id = commandImportConfiguration, .menu = EMenu::simulation, .text = EText::importConfiguration,
     .tip = EText::importConfigurationTip, .newGroup = true, .run = [](Frame& f) { f.ImportConfiguration(); },
     .enabledWhen = HasProject},
    {.id = commandBatchFile, .menu = EMenu::simulation, .text = EText::prepareBatch, .tip = EText::prepareBatchTip,
     .run = [](Frame& f) { f.PrepareBatchCommandFile(); }, .enabledWhen = HasProject},

    Add(commandAddDataFile, EText::addDataFile, EText::addDataFileTip, EUnits::all,
        [](Frame& f) { f.AddDataFile(); }, HasProject, true),
    AddSensor<ESensorKind::gps>(commandAddGps, EText::addGps, EUnits::all, true),
    AddSensor<ESensorKind::dvl>(commandAddDvl, EText::addDvl, kOthers),
    AddSensor<ESensorKind::emLog>(commandAddEMLog, EText::addEMLog, kOthers),
    AddSensor<ESensorKind::depth>(commandAddDepth, EText::addDepth, kOthers),
    AddSensor<ESensorKind::usbl>(commandAddUsbl, EText::addUsbl, kOthers),
    AddSensor<ESensorKind::lbl>(commandAddLbl, EText::addLbl, kOthers),
    AddSensor<ESensorKind::odometer>(commandAddOdometer, EText::addOdometer, kOthers | EUnits::land),
    AddSensor<ESensorKind::eventMarker>(commandAddEventMarker, EText::addEventMarker, kNotSurface),
    AddSensor<ESensorKind::platformOrientation>(commandAddPlatformOrientation, EText::addMount,
                                                kOthers | EUnits::drone),
    AddInstruction<Edits::kAddRejectionInstruction, &Tree::FindGroup>(commandAddRejection, EText::addRejection,
                                                                      EUnits::all, true),
    AddPeriod<Edits::kAddZupt>(commandAddZupt, EText::addZupt, kNotSurface),
    AddPeriod<Edits::kAddOutputRate>(commandAddOutputRate, EText::addOutputRate, EUnits::all),
    AddPeriod<Edits::kAddAltitudeMode>(commandAddAltitudeMode, EText::addAltitudeMode, kOthers | EUnits::surface,
                                       TakesAltitudeModes),
    AddInstruction<Edits::kAddHorizontalFilteringInstruction, &Tree::FindUsbl>(commandAddFiltering, EText::addFiltering,
                                                                               kOthers),
    {.id = commandRemove, .menu = EMenu::simulation, .text = EText::removeItem, .tip = EText::removeItemTip,
     .run = [](Frame& f) { f.GetProcessing().RemoveSelected(); },
     .enabledWhen = [](const Frame& f) { return f.HasProject() && f.GetProcessing().CanRemoveSelected(); },
     .inProcessingMenu = true},
    {.id = commandRelink, .menu = EMenu::simulation, .text = EText::relinkCommand, .tip = EText::relinkCommandTip,
     .newGroup = true, .run = [](Frame& f) { f.Relink(); },
     .enabledWhen = [](const Frame& f) { return f.HasProject() && !f.GetDocument().GetFiles()->GetMissing().empty(); }},
    {.id = commandMoveFile, .menu = EMenu::simulation, .text = EText::moveFileCommand, .tip = EText::moveFileTip,
     .run = [](Frame& f) { f.MoveFile(); }, .enabledWhen = HasProject},

    Toggle<commandMenuBar>(EText::showMenuBar, "Ctrl+M"),
    Toggle<commandStandardBar>(EText::showStandardBar, "Ctrl+Shift+T"),
    Toggle<commandToolsBar>(EText::showToolsBar, "Ctrl+Shift+L"),
    Toggle<commandProcessingPanel>(EText::showProcessing, "Ctrl+Shift+P", true),
    Toggle<commandVariablesPanel>(EText::showVariables, "Ctrl+Shift+V"),
    Toggle<commandValuesPanel>(EText::showInstantValues, "Ctrl+Shift+I"),
    Toggle<commandOutputPanel>(EText::showOutput, "Ctrl+Shift+O"),
    Toggle<commandPlanPanel>(EText::showPlan, "Ctrl+Shift+M"),
    {.id = commandResetLayout, .menu = EMenu::display, .text = EText::resetLayout, .tip = EText::resetLayoutTip,
     .run = [](Frame& f) { f.ResetLayout(); }},

    Mode<EView1DMode::select>(commandModeSelect, EText::modeSelect, EText::modeSelectTip, "Ctrl+1", select, true),
    Mode<EView1DMode::pan>(commandModePan, EText::modePan, EText::modePanTip, "Ctrl+2", pan, false),
    Mode<EView1DMode::zoom>(commandModeZoom, EText::modeZoom, EText::modeZoomTip, "Ctrl+3", zoomPeriod, false),

    Graph<&Loader::ZoomTime, 1>(commandZoomHorizontal, EMenu::horizontal, EText::zoom, EText::zoomHorizontalTip,
                                "Alt++", zoomHorizontal, true, EContext::submenu, "+; ="),
    Graph<&Loader::ZoomTime, -1>(commandUnzoomHorizontal, EMenu::horizontal, EText::unzoom,
                                 EText::unzoomHorizontalTip, "Alt+-", unzoomHorizontal, false, EContext::submenu,
                                 "-; _"),
    Graph<&Loader::ScrollTime, -1>(commandScrollLeft, EMenu::horizontal, EText::leftScroll, EText::scrollLeftTip,
                                   "Ctrl+Alt+Left", scrollLeft, false, EContext::submenu, ""),
    Graph<&Loader::ScrollTime, 1>(commandScrollRight, EMenu::horizontal, EText::rightScroll,
                                  EText::scrollRightTip, "Ctrl+Alt+Right", scrollRight, false, EContext::submenu,
                                  ""),
    Graph<&Loader::ViewAll>(commandViewAll, EMenu::horizontal, EText::horizontalViewAll, EText::viewAllTip,
                            "Alt+Home", viewAll, false, EContext::top, "F"),

    Graph<&Loader::ZoomValues, 1>(commandZoomVertical, EMenu::vertical, EText::zoom, EText::zoomVerticalTip,
                                  "Ctrl++", zoomVertical, true, EContext::submenu, "Ctrl++; Ctrl+="),
    Graph<&Loader::ZoomValues, -1>(commandUnzoomVertical, EMenu::vertical, EText::unzoom,
                                   EText::unzoomVerticalTip, "Ctrl+-", unzoomVertical, false, EContext::submenu,
                                   "Ctrl+-; Ctrl+_"),
    Graph<&Loader::ScrollValues, 1>(commandScrollUp, EMenu::vertical, EText::upScroll, EText::scrollUpTip,
                                    "Ctrl+Up", scrollUp, false, EContext::submenu, ""),
    Graph<&Loader::ScrollValues, -1>(commandScrollDown, EMenu::vertical, EText::downScroll,
                                     EText::scrollDownTip, "Ctrl+Down", scrollDown, false, EContext::submenu,
                                     ""),
    {.id = commandFitValues, .menu = EMenu::vertical, .text = EText::verticalViewAll,
     .tip = EText::verticalViewAllTip, .shortcut = "Alt+End", .run = [](Frame& f) { f.GetView().GetLoader().FitValues(); },
     .enabledWhen = HasPeriod, .graphMenu = EContext::top, .graphKeys = "Shift+F"},

    {.id = commandPreviousView, .menu = EMenu::graph, .text = EText::previousView, .tip = EText::previousViewTip,
     .run = [](Frame& f) { f.GetViewState().GoBack(); },
     .enabledWhen = [](const Frame& f) { return f.GetViewState().CanGoBack(); }, .graphMenu = EContext::top,
     .graphKeys = "Backspace; Alt+Left"},
    {.id = commandNextView, .menu = EMenu::graph, .text = EText::nextView, .tip = EText::nextViewTip,
     .run = [](Frame& f) { f.GetViewState().GoForward(); },
     .enabledWhen = [](const Frame& f) { return f.GetViewState().CanGoForward(); }, .graphKeys = "Alt+Right"},
    {.id = commandGoToDate, .menu = EMenu::graph, .text = EText::goToDate, .tip = EText::goToDateTip,
     .shortcut = "Ctrl+G", .run = [](Frame& f) { f.GetGraphs().GoToDate(); }, .enabledWhen = HasPeriod},
    {.id = commandCurveProperties, .menu = EMenu::graph, .text = EText::curveProperties,
     .tip = EText::curvePropertiesTip, .newGroup = true, .run = [](Frame& f) { f.GetGraphs().EditCurve(); },
     .enabledWhen = HasCurve, .graphMenu = EContext::top, .graphKeys = "Return; Enter"},
    {.id = commandAxisRange, .menu = EMenu::graph, .text = EText::axisRange, .tip = EText::axisRangeTip,
     .run = [](Frame& f) { f.GetGraphs().EditRange(); }, .enabledWhen = HasMeasures,
     .graphMenu = EContext::top, .graphKeys = "R"},
    {.id = commandShowAlone, .menu = EMenu::graph, .text = EText::showAlone, .tip = EText::showAloneTip,
     .newGroup = true,
     .run = [](Frame& f) { f.GetView().GetLoader().ShowAlone(!f.GetView().GetStack().IsAlone()); },
     .enabledWhen = HasGraphs, .tickedWhen = [](const Frame& f) { return f.GetView().GetStack().IsAlone(); },
     .graphMenu = EContext::top, .graphKeys = "Z"},
    {.id = commandMoveGraphUp, .menu = EMenu::graph, .text = EText::moveGraphUp, .tip = EText::moveGraphTip,
     .run = [](Frame& f) { f.GetView().GetLoader().MoveSelected(-1); }, .enabledWhen = HasGraphs,
     .graphKeys = "Ctrl+Shift+Up"},
    {.id = commandMoveGraphDown, .menu = EMenu::graph, .text = EText::moveGraphDown, .tip = EText::moveGraphTip,
     .run = [](Frame& f) { f.GetView().GetLoader().MoveSelected(1); }, .enabledWhen = HasGraphs,
     .graphKeys = "Ctrl+Shift+Down"},
    {.id = commandEqualHeights, .menu = EMenu::graph, .text = EText::equalHeights, .tip = EText::equalHeightsTip,
     .run = [](Frame& f) { f.GetView().GetLoader().EqualHeights(); }, .enabledWhen = HasGraphs},
    {.id = commandRemoveGraph, .menu = EMenu::graph, .text = EText::removeGraph, .tip = EText::removeGraphTip,
     .newGroup = true, .run = [](Frame& f) { f.GetView().RemoveSelectedGraph(); }, .enabledWhen = HasGraphs,
     .graphMenu = EContext::top},

    {.id = commandLegends, .menu = EMenu::display, .text = EText::graphLegends, .tip = EText::legendsTip,
     .shortcut = "Ctrl+L", .glyph = legends, .bar = EBar::tools, .newGroup = true,
     .run = [](Frame& f) { f.GetView().SetLegendsVisible(!f.GetView().AreLegendsVisible()); },
     .enabledWhen = HasProject, .tickedWhen = [](const Frame& f) { return f.GetView().AreLegendsVisible(); },
     .graphMenu = EContext::top},
    {.id = commandEcho, .menu = EMenu::display, .text = EText::echo, .tip = EText::echoTip, .shortcut = "Ctrl+E",
     .run = [](Frame& f) { f.GetView().SetEcho(!f.GetView().HasEcho()); }, .enabledWhen = HasProject,
     .tickedWhen = [](const Frame& f) { return f.GetView().HasEcho(); }, .graphMenu = EContext::top},
    {.id = commandCopyGraphs, .menu = EMenu::display, .text = EText::copy, .tip = EText::copyGraphsTip,
     .newGroup = true,
     .run = [](Frame& f) { f.GetGraphs().Copy(); }, .enabledWhen = HasGraphs, .graphMenu = EContext::top, .graphKeys = "Ctrl+C"},
    {.id = commandDeleteCurve, .menu = EMenu::display, .text = EText::deleteCurve, .tip = EText::deleteCurveTip,
     .run = [](Frame& f) { f.GetView().RemoveSelected(); }, .enabledWhen = HasGraphs,
     .graphMenu = EContext::top, .graphKeys = "Del"},

    {.id = commandSettings, .menu = EMenu::tools, .text = EText::settings, .tip = EText::settingsTip,
     .shortcut = "Ctrl+,", .run = [](Frame& f) { f.ShowSettings(); }},
    {commandClearOutput, EMenu::tools, EText::clearOutput, EText::clearOutputTip, "Ctrl+Shift+Del", clear,
     EBar::standard, true, [](Frame& f) { f.GetOutput().clear(); }},

    {commandUserGuide, EMenu::help, EText::userGuide, EText::userGuideTip, "F1", none, EBar::none, false,
     [](Frame& f) { f.OpenUserGuide(); }, [](const Frame& f) { return f.HasUserGuide(); }},
    {commandContactSupport, EMenu::help, EText::contactSupport, EText::contactSupportTip, "", none, EBar::none, false,
     [](Frame& f) { f.ContactSupport(); }},
    {commandAbout, EMenu::help, EText::about, EText::aboutTip, "", none, EBar::none, true,
     [](Frame& f) { f.ShowAbout(); }},
};
// clang-format on

} // namespace

EUnits GetUnitsOf(std::int32_t equipment) {
    switch (equipment) {
    case 1:
    case 2: return EUnits::surface;
    case 13:
    case 15:
    case 18: return EUnits::land;
    case 14: return EUnits::drone;
    default: return EUnits::others;
    }
}

std::span<const SMenuRow> GetMenus() { return kMenus; }
std::span<const SCommandRow> GetCommands() { return kCommands; }

} // namespace Application_Tarvel
