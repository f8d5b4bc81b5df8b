// The commands of the main frame on the screen: one action each, in menus, tool bars and on keys. UI thread.
#pragma once

#include "app/commands.h"

#include <map>

class QAction;
class QMenu;
class QToolBar;

namespace Application_Tarvel {

class CTrvCommandBars {
  public:
    // Makes actions and menus; `frame` owns them and must outlive the object.
    explicit CTrvCommandBars(CTrvProjectMainFrame& frame);
    CTrvCommandBars(const CTrvCommandBars&) = delete;
    CTrvCommandBars& operator=(const CTrvCommandBars&) = delete;

    // REQUIRES: `command` is a row of the table.
    QAction& GetAction(int command) const { return *m_actions.at(command); }
    // Adds a bar with the commands of `bar` to the frame, which owns it.
    QToolBar* MakeToolBar(EBar bar, const char* name, Outils_Texte::EText title);
    // Gives the graphs their context menu and keys.
    void ServeGraphs();
    // Gives the processing panel its context menu.
    void ServeProcessing();
    // Offers the menus that need a project too, from now on.
    void ShowAllMenus();
    // Brings texts, pictures, ticks and states of all commands in line with the frame. Reads no file.
    void Update();

  private:
    void MakeActions();
    void MakeMenus();

    CTrvProjectMainFrame& m_frame;
    std::map<int, QAction*> m_actions; // all owned by the frame
    std::map<EMenu, QMenu*> m_menus;
};

} // namespace Application_Tarvel
