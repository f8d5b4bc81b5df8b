#include "app/graph_commands.h"

#include "config/config_file.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "graph/forms.h"
#include "plot/text.h"

#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QProgressDialog>
#include <QTimer>

#include <algorithm>

namespace Application_Tarvel {

using namespace Presentation_Tarvel_Graphics;
using Outils_Configuration::Cnf;
using Outils_Fichiers::ToText;
using Outils_Plot2D::Text;
using Outils_Plot2D::ToQString;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

constexpr int kProgressInterval = 200; // milliseconds
constexpr int kProgressSteps = 1000;

} // namespace

CTrvGraphCommands::CTrvGraphCommands(CTrvView1D& view, CTrvFrameHost& host, IDialogs& dialogs,
                                     const Outils_Configuration::CTrvCnfConfigFile& configuration,
                                     const Outils_Valeurs::CTrvAdaptors& adaptors)
    : m_view(view), m_host(host), m_dialogs(dialogs), m_configuration(configuration), m_adaptors(adaptors) {}

CTrvGraphCommands::~CTrvGraphCommands() { delete m_progress; }

void CTrvGraphCommands::EditCurve() {
    auto* curve = m_view.TakeSelectedCurve();
    if (!curve) return;
    CCurveForm form(m_view.GetLoader().GetDocument(), *curve);
    m_dialogs.Show(m_view.window(), form);
}

void CTrvGraphCommands::EditRange() {
    const auto* graph = m_view.GetStack().GetSelectedMeasure();
    if (!graph) return;
    CRangeForm form(m_view.GetLoader(), *graph);
    m_dialogs.Show(m_view.window(), form);
}

void CTrvGraphCommands::GoToDate() {
    if (!m_view.GetStack().HasPeriod()) return;
    CDateForm form(m_view.GetLoader());
    m_dialogs.Show(m_view.window(), form);
}

SPictureContent CTrvGraphCommands::GetContent() const {
    return {m_view.GetStack(), m_view.GetViewState(), m_view.GetCursorLook(), m_view.HasEcho()};
}

void CTrvGraphCommands::Copy() {
    const ECopyEnd end = CopyToClipboard(GetContent());
    if (end == ECopyEnd::done) return;
    m_host.ShowMessage(std::string(GetText(end == ECopyEnd::noPicture ? EText::clipboardDataFailed
                                                                      : EText::clipboardFailed)),
                       EButtons::ok, EIcon::exclamation);
}

// Beside the project, under its name.
std::filesystem::path CTrvGraphCommands::Propose(const char* extension) const {
    return Outils_Fichiers::WithExtension(m_view.GetLoader().GetDocument().GetPathName(), extension);
}

void CTrvGraphCommands::SavePicture() {
    const auto chosen =
        m_host.AskPath({EPathKind::save, EText::savePicture, EText::pictureFilter, "svg", Propose(".svg")});
    if (chosen.empty() || Application_Tarvel::SavePicture(GetContent(), chosen.front())) return;
    m_host.ShowMessage(FormatText(EText::pictureFailed, {ToText(chosen.front())}), EButtons::ok,
                       EIcon::exclamation);
}

// The chooser has asked about the name itself.
bool CTrvGraphCommands::MayReplace(const std::vector<std::filesystem::path>& targets,
                                   const std::filesystem::path& chosen) {
    std::string existing;
    std::error_code error;
    for (const auto& target : targets)
        if (target != chosen && std::filesystem::exists(target, error)) existing += ToText(target) + '\n';
    return existing.empty() || m_host.ShowMessage(FormatText(EText::replaceFiles, {existing}),
                                                  EButtons::yesNo, EIcon::question) == EAnswer::yes;
}

void CTrvGraphCommands::SaveData() {
    if (m_export) return;
    auto data =
        std::make_unique<CTrv1DCsvExport>(m_view.GetLoader().GetDocument(), m_view.GetStack(), m_adaptors);
    if (data->IsEmpty()) {
        m_host.ShowMessage(std::string(GetText(EText::nothingVisible)), EButtons::ok, EIcon::information);
        return;
    }
    const auto chosen =
        m_host.AskPath({EPathKind::save, EText::saveData, EText::dataFilter, "csv", Propose(".csv")});
    if (chosen.empty() || !MayReplace(data->GetTargets(chosen.front()), chosen.front())) return;
    m_export = std::move(data);
    m_progress =
        new QProgressDialog(Text(EText::dataProgress), QString(), 0, kProgressSteps, m_view.window());
    m_progress->setCancelButtonText(Text(EText::cancelSaving));
    m_progress->setWindowTitle(Text(EText::product));
    m_progress->setAutoClose(false);
    m_progress->setAutoReset(false);
    QObject::connect(m_progress, &QProgressDialog::canceled, m_progress, [this] {
        if (m_export) m_export->Cancel();
    });
    auto* timer = new QTimer(m_progress);
    QObject::connect(timer, &QTimer::timeout, m_progress, [this] {
        if (m_export) m_progress->setValue(static_cast<int>(m_export->GetProgress() * kProgressSteps));
    });
    timer->start(kProgressInterval);
    m_export->Start(chosen.front(),
                    [this](const CTrv1DCsvExport::SOutcome& outcome) { OnDataSaved(outcome); });
}

void CTrvGraphCommands::OnDataSaved(const CTrv1DCsvExport::SOutcome& outcome) {
    delete m_progress;
    m_export.reset();
    const bool failed = outcome.end == CTrv1DCsvExport::EEnd::failed;
    const std::size_t written = outcome.files.size() - (failed ? 1 : 0);
    for (std::size_t i = 0; i < written; ++i)
        m_host.AppendOutputText(FormatText(
            EText::dataSaved, {ToText(outcome.files[i].first), std::to_string(outcome.files[i].second)}));
    if (failed)
        m_host.ShowMessage(FormatText(EText::dataNotSaved, {ToText(outcome.files.back().first)}),
                           EButtons::ok, EIcon::exclamation);
}

void CTrvGraphCommands::Print(QPrinter& printer) {
    SPageMargins margins;
    const auto get = [&](auto key) { return static_cast<float>(m_configuration.Get(key)); };
    margins.left = get(Cnf<"printing/margins/left">);
    margins.right = get(Cnf<"printing/margins/right">);
    margins.top = get(Cnf<"printing/margins/top">);
    margins.bottom = get(Cnf<"printing/margins/bottom">);
    margins.spacing = get(Cnf<"printing/verticalSpacing">);
    const auto& stack = m_view.GetStack();
    const auto& path = m_view.GetLoader().GetDocument().GetPathName();
    const std::string header =
        FormatText(EText::pageHeader,
                   {ToText(path.stem()), stack.GetTimeText().Format(stack.GetPeriod().start),
                    stack.GetTimeText().Format(stack.GetPeriod().end), stack.GetTimeText().GetScaleName()});
    PrintPages(GetContent(), printer, margins, header);
}

void CTrvGraphCommands::Print() {
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(ToQString(m_view.GetLoader().GetDocument().GetPathName().stem()));
    QPrintDialog dialog(&printer, m_view.window());
    if (dialog.exec() == QDialog::Accepted) Print(printer);
}

void CTrvGraphCommands::ShowPreview() {
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(ToQString(m_view.GetLoader().GetDocument().GetPathName().stem()));
    QPrintPreviewDialog dialog(&printer, m_view.window());
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                     [this](QPrinter* target) { Print(*target); });
    dialog.exec();
}

} // namespace Application_Tarvel
