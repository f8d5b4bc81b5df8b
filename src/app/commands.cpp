#include "app/commands.h"

#include "app/main_frame.h"
#include "app/text.h"
#include "app/text_ids.h"
#include "views/text_ids.h"

namespace Application_Tarvel {

namespace {

using Frame = CTrvProjectMainFrame;

constexpr SMenuRow kMenus[] = {
    {EMenu::file, EMenu::file, textFileMenu, true},
    {EMenu::simulation, EMenu::simulation, textSimulationMenu, false},
    {EMenu::display, EMenu::display, textDisplayMenu, false},
    {EMenu::horizontal, EMenu::display, textHorizontalScale, false},
    {EMenu::vertical, EMenu::display, textVerticalScale, false},
    {EMenu::mouse, EMenu::display, textMouseMenu, false},
    {EMenu::tools, EMenu::tools, textToolsMenu, true},
    {EMenu::help, EMenu::help, textHelpMenu, true},
};
static_assert(std::size(kMenus) == static_cast<std::size_t>(EMenu::count));

bool HasProject(const Frame& frame) { return frame.HasProject(); }

constexpr SCommandRow Recent(int index, void (*run)(Frame&), QString (*caption)(const Frame&)) {
    return {.id = commandFirstRecent + index,
            .menu = EMenu::file,
            .text = textRecent,
            .tip = textRecentTip,
            .shortcut = "",
            .newGroup = index == 0,
            .run = run,
            .caption = caption};
}
template <int index>
constexpr SCommandRow kRecent = Recent(
    index, [](Frame& f) { f.OpenRecent(index); }, [](const Frame& f) { return f.GetRecentCaption(index); });

template <int id>
constexpr SCommandRow Toggle(int text, const char* shortcut, bool newGroup = false) {
    return {.id = id,
            .menu = EMenu::display,
            .text = text,
            .tip = textShowTip,
            .shortcut = shortcut,
            .newGroup = newGroup,
            .run = [](Frame& f) { f.ToggleBar(id); },
            .tickedWhen = [](const Frame& f) { return f.IsBarShown(id); }};
}

template <auto operation>
void OnView(Frame& frame) {
    (frame.GetView().*operation)();
}

template <EView1DMode mode>
constexpr SCommandRow Mode(int id, int text, int tip, const char* shortcut, EGlyph glyph, bool newGroup) {
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

using enum EGlyph;
using View = CTrvView1D;

// clang-format off
const SCommandRow kCommands[] = {
    {commandNew, EMenu::file, textNew, textNewTip, "Ctrl+N", newProject, EBar::standard, false,
     [](Frame& f) { f.NewProject(); }},
    {commandOpen, EMenu::file, textOpen, textOpenTip, "Ctrl+O", open, EBar::standard, false,
     [](Frame& f) { f.AskAndOpen(); }},
    {commandSave, EMenu::file, textSave, textSaveTip, "Ctrl+S", save, EBar::standard, true,
     [](Frame& f) { f.GetDocument().Save(); }, HasProject},
    {commandSaveAs, EMenu::file, textSaveAs, textSaveAsTip, "Ctrl+Shift+S", none, EBar::none, false,
     [](Frame& f) { f.GetDocument().CommandSaveAs(); }, HasProject},
    {commandSaveCopyAs, EMenu::file, textSaveCopyAs, textSaveCopyAsTip, "", none, EBar::none, false,
     [](Frame& f) { f.GetDocument().SaveCopyAs(); }, HasProject},
    kRecent<0>, kRecent<1>, kRecent<2>, kRecent<3>,
    {commandExit, EMenu::file, textExit, textExitTip, "Ctrl+Q", none, EBar::none, true,
     [](Frame& f) { f.close(); }},

    {commandProcess, EMenu::simulation, textStart, textStartTip, "F5", process, EBar::standard, true,
     [](Frame& f) { f.GetProcessing().ToggleProcess(); }, HasProject, nullptr,
     [](const Frame& f) { return Text(f.IsRunning() ? textStop : textStart); },
     [](const Frame& f) { return f.IsRunning() ? stop : process; }},

    Toggle<commandMenuBar>(textShowMenuBar, "Ctrl+M"),
    Toggle<commandStandardBar>(textShowStandardBar, "Ctrl+Shift+T"),
    Toggle<commandToolsBar>(textShowToolsBar, "Ctrl+Shift+L"),
    Toggle<commandProcessingPanel>(textShowProcessing, "Ctrl+Shift+P", true),
    Toggle<commandOutputPanel>(textShowOutput, "Ctrl+Shift+O"),

    Mode<EView1DMode::select>(commandModeSelect, textModeSelect, textModeSelectTip, "Ctrl+1", select, true),
    Mode<EView1DMode::pan>(commandModePan, textModePan, textModePanTip, "Ctrl+2", pan, false),
    Mode<EView1DMode::zoom>(commandModeZoom, textModeZoom, textModeZoomTip, "Ctrl+3", zoomPeriod, false),

    {commandZoomHorizontal, EMenu::horizontal, textZoom, textZoomHorizontalTip, "Alt++", zoomHorizontal,
     EBar::tools, true, OnView<&View::ZoomHorizontal>, HasProject},
    {commandUnzoomHorizontal, EMenu::horizontal, textUnzoom, textUnzoomHorizontalTip, "Alt+-", unzoomHorizontal,
     EBar::tools, false, OnView<&View::UnzoomHorizontal>, HasProject},
    {commandScrollLeft, EMenu::horizontal, textLeftScroll, textScrollLeftTip, "Alt+Left", scrollLeft,
     EBar::tools, false, OnView<&View::ScrollLeft>, HasProject},
    {commandScrollRight, EMenu::horizontal, textRightScroll, textScrollRightTip, "Alt+Right", scrollRight,
     EBar::tools, false, OnView<&View::ScrollRight>, HasProject},
    {commandViewAll, EMenu::horizontal, textHorizontalViewAll, textViewAllTip, "Alt+Home", viewAll,
     EBar::tools, false, OnView<&View::ViewAll>, HasProject},

    {commandZoomVertical, EMenu::vertical, textZoom, textZoomVerticalTip, "Ctrl++", zoomVertical,
     EBar::tools, true, OnView<&View::ZoomVertical>, HasProject},
    {commandUnzoomVertical, EMenu::vertical, textUnzoom, textUnzoomVerticalTip, "Ctrl+-", unzoomVertical,
     EBar::tools, false, OnView<&View::UnzoomVertical>, HasProject},
    {commandScrollUp, EMenu::vertical, textUpScroll, textScrollUpTip, "Ctrl+Up", scrollUp,
     EBar::tools, false, OnView<&View::ScrollUp>, HasProject},
    {commandScrollDown, EMenu::vertical, textDownScroll, textScrollDownTip, "Ctrl+Down", scrollDown,
     EBar::tools, false, OnView<&View::ScrollDown>, HasProject},

    {commandLegends, EMenu::display, textGraphLegends, textLegendsTip, "Ctrl+L", legends, EBar::tools, true,
     OnView<&View::ToggleLegends>, HasProject, [](const Frame& f) { return f.GetView().AreLegendsVisible(); }},
    {commandEcho, EMenu::display, textEcho, textEchoTip, "Ctrl+E", none, EBar::none, false,
     [](Frame& f) { f.GetView().SetEcho(!f.GetView().HasEcho()); }, HasProject,
     [](const Frame& f) { return f.GetView().HasEcho(); }},

    {commandClearOutput, EMenu::tools, textClearOutput, textClearOutputTip, "Ctrl+Shift+Del", clear,
     EBar::standard, true, [](Frame& f) { f.GetOutput().clear(); }},

    {commandUserGuide, EMenu::help, textUserGuide, textUserGuideTip, "F1", none, EBar::none, false,
     [](Frame& f) { f.OpenUserGuide(); }, [](const Frame& f) { return f.HasUserGuide(); }},
    {commandContactSupport, EMenu::help, textContactSupport, textContactSupportTip, "", none, EBar::none, false,
     [](Frame& f) { f.ContactSupport(); }},
    {commandAbout, EMenu::help, textAbout, textAboutTip, "", none, EBar::none, true,
     [](Frame& f) { f.ShowAbout(); }},
};
// clang-format on

} // namespace

std::span<const SMenuRow> GetMenus() { return kMenus; }
std::span<const SCommandRow> GetCommands() { return kCommands; }

} // namespace Application_Tarvel
