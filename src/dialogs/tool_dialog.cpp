#include "dialogs/tool_dialog.h"

#include "config/config_file.h"
#include "foundation/files.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "processing/message_line.h"
#include "processing/process.h"

#include <algorithm>

#include <fcntl.h>
#include <unistd.h>

namespace Dialogue_Tarvel {

using namespace Application_Tarvel;
using namespace Presentation_Tarvel_Grid;
using Outils_Fichiers::FromText;
using Outils_Fichiers::ToText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

ERowKind KindOf(EFieldKind kind) {
    switch (kind) {
    case EFieldKind::word: return ERowKind::list;
    case EFieldKind::color: return ERowKind::color;
    case EFieldKind::path:
    case EFieldKind::paths:
    case EFieldKind::target: return ERowKind::file;
    case EFieldKind::note: return ERowKind::staticText;
    default: return ERowKind::edit;
    }
}

// A lease for writing is granted only while nobody has the file open.
bool IsOpenSomewhere(const std::filesystem::path& path) {
    const int file = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) return false;
    const bool busy = ::fcntl(file, F_SETLEASE, F_WRLCK) != 0 && errno == EAGAIN;
    if (!busy) ::fcntl(file, F_SETLEASE, F_UNLCK);
    ::close(file);
    return busy;
}

} // namespace

SToolFiles LookAtFiles(const std::vector<std::filesystem::path>& sources, const std::filesystem::path& target,
                       const std::filesystem::path& exportTemplate) {
    namespace fs = std::filesystem;
    std::error_code error;
    SToolFiles files;
    files.sourcesExist = !sources.empty() && std::ranges::all_of(sources, [&error](const auto& source) {
        return fs::exists(source, error) && !fs::is_directory(source, error);
    });
    files.templateExists = !exportTemplate.empty() && fs::is_regular_file(exportTemplate, error);
    const auto type = target.empty() ? fs::file_type::not_found : fs::status(target, error).type();
    files.targetExists = type != fs::file_type::not_found;
    files.targetIsFolder = type == fs::file_type::directory;
    files.targetIsSource = std::ranges::any_of(sources, [&](const auto& source) {
        return fs::equivalent(source, target, error) ||
               Outils_Fichiers::SamePath(Outils_Fichiers::ToAbsolute(source),
                                         Outils_Fichiers::ToAbsolute(target));
    });
    files.targetIsOpen = type == fs::file_type::regular && IsOpenSomewhere(target);
    files.folderIsWritable =
        !target.empty() && Outils_Fichiers::CanWriteInto(Outils_Fichiers::ToAbsolute(target).parent_path());
    return files;
}

class CToolDialog::CFieldItem final : public CHGItem {
  public:
    CFieldItem(CToolDialog& dialog, int field)
        : CHGItem(KindOf(dialog.m_fields.GetRow(field).kind)), m_dialog(dialog), m_field(field) {}

    std::string GetTitle() const override { return std::string(GetText(GetRow().title)); }
    std::string GetValue() const override {
        const int choice = GetChoice();
        return choice < 0 ? m_dialog.Show(m_field) : m_dialog.m_fields.GetShown(m_field)[AsIndex(choice)];
    }
    std::string GetHelp() const override {
        return std::string(GetText(GetRow().help == EText::none && GetRow().key.row != kNoKey.row
                                       ? Outils_Configuration::kSchema[GetRow().key.row].help
                                       : GetRow().help));
    }
    bool IsEditable() const override { return GetRow().kind != EFieldKind::note && !m_dialog.IsRunning(); }
    bool IsVisible() const override { return m_dialog.IsShown(m_field); }
    std::span<const std::string> GetChoices() const override { return m_dialog.m_fields.GetShown(m_field); }
    int GetChoice() const override {
        return GetKind() == ERowKind::list ? m_dialog.m_fields.GetChoice(m_field) : -1;
    }
    const SPathQuestion* GetPathQuestion() const override {
        if (GetKind() != ERowKind::file) return nullptr;
        m_question.emplace(m_dialog.GetQuestion(m_field));
        return &*m_question;
    }
    std::string Write(std::string_view text) override {
        if (GetKind() != ERowKind::list) return m_dialog.Write(m_field, text);
        const auto& shown = m_dialog.m_fields.GetShown(m_field);
        const auto found = std::ranges::find(shown, text);
        return found == shown.end() ? std::string(GetText(EText::invalidValue))
                                    : Choose(static_cast<int>(found - shown.begin()));
    }
    // By the place: two files may have the same name.
    std::string Choose(int choice) override {
        return m_dialog.Write(m_field, m_dialog.m_fields.GetWords(m_field)[AsIndex(choice)]);
    }
    std::string WritePaths(const std::vector<std::filesystem::path>& paths) override {
        return m_dialog.WritePaths(m_field, paths);
    }

  private:
    static std::size_t AsIndex(int choice) { return static_cast<std::size_t>(choice); }
    const SToolField& GetRow() const { return m_dialog.m_fields.GetRow(m_field); }

    CToolDialog& m_dialog;
    const int m_field;
    mutable std::optional<SPathQuestion> m_question;
};

CToolDialog::CToolDialog(EToolKind kind, const SToolServices& services, std::span<const SToolField> rows)
    : m_services(services), m_fields(rows), m_run(kind, services.host, [this](int level, const auto& text) {
          if (m_listener) m_listener->OnToolMessage(level, text);
          m_services.host.AppendOutputText(Communication_Processus::FormatMessageLine(level, text));
      }) {}

CToolDialog::~CToolDialog() { m_listener = nullptr; }

EText CToolDialog::GetLaunchFailure() const { return EText::launchFailed; }

void CToolDialog::MakeRows() {
    for (std::size_t i = 0; i < m_fields.GetCount(); ++i) {
        auto item = std::make_unique<CFieldItem>(*this, static_cast<int>(i));
        m_items.push_back(item.get());
        m_grid.Insert(m_grid.GetRoot(), i, std::move(item));
    }
}

bool CToolDialog::IsShown(int field) const {
    return m_fields.Applies(field) && (m_services.expertMode || !m_fields.GetRow(field).expertOnly);
}

std::string CToolDialog::Show(int field) const {
    switch (m_fields.GetRow(field).kind) {
    case EFieldKind::paths: return JoinPaths(m_fields.GetPaths(field));
    default: return m_fields.Get(field);
    }
}

std::string CToolDialog::Read(int, std::string_view text, std::string& value) const {
    value = text;
    return {};
}

SPathQuestion CToolDialog::GetQuestion(int field) const {
    const SToolField& row = m_fields.GetRow(field);
    const auto paths = m_fields.GetPaths(field);
    return {EPathKind::open, row.title, EText::exportTargetFilter, "",
            paths.empty() ? std::filesystem::path() : paths.front()};
}

std::string CToolDialog::Write(int field, std::string_view text) {
    std::string value;
    std::string refusal = Read(field, text, value);
    if (refusal.empty()) refusal = m_fields.Set(field, value);
    if (!refusal.empty()) return refusal;
    OnWritten(field);
    m_grid.Changed(m_grid.GetRoot());
    return {};
}

std::string CToolDialog::WritePaths(int field, const std::vector<std::filesystem::path>& paths) {
    std::vector<std::filesystem::path> full;
    for (const auto& path : paths) full.push_back(Outils_Fichiers::ToAbsolute(path));
    m_fields.SetPaths(field, full);
    OnWritten(field);
    m_grid.Changed(m_grid.GetRoot());
    return {};
}

const CHGItem* CToolDialog::GetFaultItem() const {
    return m_focus < 0 ? nullptr : m_items[static_cast<std::size_t>(m_focus)];
}

bool CToolDialog::Refuse(EText text, const std::filesystem::path& about) {
    m_services.host.ShowMessage(FormatText(text, {ToText(about)}), EButtons::ok, EIcon::exclamation);
    return false;
}

bool CToolDialog::Ask(EText question) {
    return m_services.host.ShowMessage(std::string(GetText(question)), EButtons::okCancel, EIcon::question) ==
           EAnswer::ok;
}

std::optional<SToolFiles> CToolDialog::Look(const std::vector<std::filesystem::path>& sources,
                                            const std::filesystem::path& target,
                                            const std::filesystem::path& exportTemplate) {
    const CWaitCursor wait(m_services.host);
    auto files = m_services.looks.Call(
        [=](const Outils::CEvent&) { return LookAtFiles(sources, target, exportTemplate); },
        GetTimeForChosenFile(m_services.configuration));
    if (!files) Refuse(EText::fileNotReadable, sources.empty() ? target : sources.front());
    return files;
}

std::string CToolDialog::ResolveProgram(Outils_Configuration::TKey<std::string> key) const {
    return ToText((m_services.host.GetProgramFolder() / FromText(m_services.configuration.Get(key)))
                      .lexically_normal());
}

void CToolDialog::RemoveFile(const std::filesystem::path& path) {
    std::error_code error;
    if (!path.empty() && !std::filesystem::is_directory(path, error)) std::filesystem::remove(path, error);
}

bool CToolDialog::Start() {
    if (m_run.IsActive()) return false;
    m_failure.clear();
    m_outcome = EOutcome::cancelled;
    m_hasEnded = false;
    if (!Check()) return false;
    m_fields.Store(m_services.configuration);
    const auto target = GetTarget();
    std::error_code error;
    RemoveFile(target);
    if (!target.empty() && std::filesystem::exists(target, error))
        return Refuse(EText::toolTargetNotRemoved, target);
    if (m_run.Start(GetCommandLine())) {
        m_grid.Changed(m_grid.GetRoot());
        return true;
    }
    m_outcome = EOutcome::failed;
    m_failure =
        std::string(GetText(GetLaunchFailure())) + "\n\n" + FormatText(EText::toolMissing, {GetProgram()});
    m_services.host.ShowMessage(m_failure, EButtons::ok, EIcon::exclamation);
    return false;
}

void CToolDialog::Cancel() {
    const CWaitCursor wait(m_services.host);
    if (m_run.Stop() == CToolRun::ERunState::ended) Finish();
}

void CToolDialog::Poll() {
    if (m_run.Poll() == CToolRun::ERunState::ended) Finish();
}

void CToolDialog::Wait(std::chrono::milliseconds time) {
    if (m_run.Wait(time) == CToolRun::ERunState::ended) Finish();
}

bool CToolDialog::Close() {
    if (m_run.IsActive()) {
        m_services.host.ShowMessage(std::string(GetText(EText::stopToolFirst)), EButtons::ok,
                                    EIcon::information);
        return false;
    }
    m_fields.Store(m_services.configuration);
    return true;
}

void CToolDialog::Finish() {
    m_outcome = m_run.IsStopRequested() ? EOutcome::cancelled : EOutcome::done;
    m_grid.Changed(m_grid.GetRoot());
    if (m_listener) m_listener->OnToolEnded();
    m_hasEnded = OnEnded(m_outcome, m_failure);
}

std::string CToolDialog::DescribeEnd() const {
    using Communication_Processus::SProcessEnd;
    std::string text = m_run.GetError();
    // A tool that has said why it failed ends with an exit code that says no more.
    const bool wasKilled = m_run.GetEnd().kind != SProcessEnd::EKind::exited;
    if (wasKilled || (text.empty() && !m_run.GetEnd().IsSuccess())) {
        const std::string end =
            FormatText(EText::toolEnded, {GetProgram(), Communication_Processus::ToText(m_run.GetEnd())});
        text += text.empty() ? end : "\n\n" + end;
    }
    return text;
}

} // namespace Dialogue_Tarvel
