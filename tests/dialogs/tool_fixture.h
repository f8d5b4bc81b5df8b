// A project, its files and settings for the dialogs of the tools, and shell scripts in the place of the
// tools.
#pragma once

#include "config/config_file.h"
#include "dialogs/export_tools.h"
#include "dialogs/file_updater.h"
#include "dialogs/import_tools.h"
#include "document/scripted_host.h"
#include "foundation/message_target.h"
#include "foundation/texts.h"
#include "model/simulation_parameters.h"
#include "support/temporary_folder.h"
#include "values/adaptors.h"

#include <gmock/gmock.h>

#include <fstream>

namespace test {

using namespace Dialogue_Tarvel;
using Application_Tarvel::EOutcome;
using Outils_Texte::EText;

class CMessages final : public IToolDialogListener {
  public:
    void OnToolMessage(int level, const std::string& text) override {
        lines.push_back(std::to_string(level) + ' ' + text);
    }
    std::vector<std::string> lines;
};

class ToolDialogs : public testing::Test {
  protected:
    ToolDialogs() {
        m_adaptors.Configure(m_configuration);
        m_host.m_programFolder = m_folder / "bin";
        std::filesystem::create_directory(m_host.m_programFolder);
        for (const char* name : {"a.log", "b.log", "c d.log", "r.tarout", "x.tarin", "t.tarudt"})
            std::ofstream(m_folder / name) << "some bytes";
    }
    // A tool that does as the shell script says, after the word "start". $last is its last argument.
    void Install(const char* name, const std::string& script) {
        const auto path = m_host.m_programFolder / name;
        std::ofstream(path) << "#!/bin/sh\nfor last; do :; done\nread word\n" << script << '\n';
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    }
    SToolServices Services(bool expert = false) {
        return {m_host, m_configuration, m_looks, m_adaptors, expert};
    }
    std::unique_ptr<CTrvSimpleImporterDlg>
    Import(ERawFormat format, std::vector<std::filesystem::path> sources, bool expert = false) {
        for (auto& source : sources) source = m_folder.GetPath() / source;
        auto dialog = std::make_unique<CTrvSimpleImporterDlg>(Services(expert), format, sources);
        dialog->SetListener(&m_messages);
        return dialog;
    }
    // Over a project with all three roles of files.
    std::unique_ptr<CTrvSimpleExporterDlg> Export(EExportFormat format, std::string_view source) {
        auto project = GetExportProject(*m_parameters);
        for (SExportSource& own : project.sources) own.channels = {"IMU", "GPS_1", "USBL_2"};
        auto dialog = std::make_unique<CTrvSimpleExporterDlg>(Services(), project, [this](const auto& file) {
            m_opened.push_back(file.filename());
            return m_opens;
        });
        dialog->SetListener(&m_messages);
        Write(*dialog, EExportField::format, GetExportFormats()[static_cast<std::size_t>(format)].word);
        Write(*dialog, EExportField::source, source);
        return dialog;
    }
    template <class Field>
    void Write(CToolDialog& dialog, Field field, std::string_view text) {
        EXPECT_EQ(dialog.Write(static_cast<int>(field), text), "") << text;
    }
    // The command line without program, sources and folders: what comes between "/remote" and the files.
    std::string Switches(const CToolDialog& dialog) const {
        std::string line = dialog.GetCommandLine();
        for (std::size_t at; (at = line.find(m_folder.GetPath().string() + '/')) != line.npos;)
            line.erase(at, m_folder.GetPath().string().size() + 1);
        return line;
    }
    void RunToEnd(CToolDialog& dialog) {
        ASSERT_TRUE(dialog.Start()) << testing::PrintToString(m_host.m_messages);
        while (dialog.IsRunning()) dialog.Wait(std::chrono::milliseconds(50));
    }

    CTemporaryFolder m_folder;
    CScriptedHost m_host;
    Outils_Configuration::CTrvCnfConfigFile m_configuration;
    Outils_Valeurs::CTrvAdaptors m_adaptors;
    Application_Tarvel::CFileLooks m_looks{m_host.m_queue};
    CMessages m_messages;
    std::unique_ptr<Metier_Tarvel::CTrvSimulationParameters> m_parameters =
        std::make_unique<Metier_Tarvel::CTrvSimulationParameters>(m_folder / "x.tarin",
                                                                  m_folder / "r.tarout");
    std::vector<std::string> m_opened;
    bool m_opens = true;
};

} // namespace test
