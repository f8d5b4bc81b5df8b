#include "app/dialogs.h"

#include "app/icons.h"
#include "foundation/file_filter.h"
#include "foundation/texts.h"
#include "plot/text.h"

#include <QDesktopServices>
#include <QFileDialog>
#include <QMessageBox>
#include <QSettings>

namespace Application_Tarvel {

using Outils_Plot2D::Text;
using Outils_Plot2D::ToPath;
using Outils_Plot2D::ToQString;
using Outils_Texte::EText;

namespace {

struct SButtonRow {
    QMessageBox::StandardButton button;
    EAnswer answer;
};
constexpr SButtonRow kButtons[] = {
    {QMessageBox::Ok, EAnswer::ok},
    {QMessageBox::Yes, EAnswer::yes},
    {QMessageBox::No, EAnswer::no},
    {QMessageBox::Cancel, EAnswer::cancel},
};

QMessageBox::StandardButtons ToButtons(EButtons buttons) {
    switch (buttons) {
    case EButtons::okCancel: return QMessageBox::Ok | QMessageBox::Cancel;
    case EButtons::yesNo: return QMessageBox::Yes | QMessageBox::No;
    case EButtons::yesNoCancel: return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case EButtons::ok: break;
    }
    return QMessageBox::Ok;
}

QMessageBox::Icon ToIcon(EIcon icon) {
    switch (icon) {
    case EIcon::exclamation: return QMessageBox::Warning;
    case EIcon::question: return QMessageBox::Question;
    case EIcon::information: break;
    }
    return QMessageBox::Information;
}

// "Text files (*.txt *.log);;All files (*.*)"
QString ToNameFilters(EText filter) {
    QStringList names;
    for (const auto& row : Outils_Fichiers::ParseFileFilters(Outils_Texte::GetText(filter))) {
        QStringList patterns;
        for (const auto& pattern : row.patterns) patterns << ToQString(pattern);
        names << QStringLiteral("%1 (%2)").arg(ToQString(row.name), patterns.join(u' '));
    }
    return names.join(QStringLiteral(";;"));
}

} // namespace

EAnswer CWindowDialogs::ShowMessage(QWidget* parent, const std::string& text, EButtons buttons, EIcon icon) {
    QMessageBox box(ToIcon(icon), Text(EText::product), ToQString(text), ToButtons(buttons), parent);
    box.setTextFormat(Qt::PlainText); // names of files are no markup
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);
    const int chosen = box.exec();
    for (const SButtonRow& row : kButtons)
        if (row.button == chosen) return row.answer;
    // Closed without a button: what asks for nothing to be done.
    return buttons == EButtons::ok ? EAnswer::ok : buttons == EButtons::yesNo ? EAnswer::no : EAnswer::cancel;
}

std::vector<std::filesystem::path> CWindowDialogs::AskPath(QWidget* parent, const SPathQuestion& question) {
    std::error_code error;
    const bool isFolder = std::filesystem::is_directory(question.proposed, error);
    const auto proposed = isFolder ? question.proposed : question.proposed.parent_path();
    const QString key = QStringLiteral("folders/%1").arg(static_cast<int>(question.filter));
    const QString folder =
        proposed.empty() && m_settings ? m_settings->value(key).toString() : ToQString(proposed);
    QFileDialog dialog(parent, Text(question.title).remove(QLatin1Char('&')), folder,
                       ToNameFilters(question.filter));
    constexpr QFileDialog::FileMode kModes[] = {QFileDialog::ExistingFile, QFileDialog::ExistingFiles,
                                                QFileDialog::AnyFile, QFileDialog::AnyFile};
    dialog.setFileMode(kModes[static_cast<int>(question.kind)]);
    if (question.kind >= EPathKind::save) dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontConfirmOverwrite, question.kind == EPathKind::saveUnasked);
    // Given to the dialog, not added afterwards: it asks about replacing the very file that will be written.
    dialog.setDefaultSuffix(
        QString::fromUtf8(question.extension.data(), static_cast<qsizetype>(question.extension.size())));
    if (!isFolder && !question.proposed.empty()) dialog.selectFile(ToQString(question.proposed.filename()));
    std::vector<std::filesystem::path> paths;
    if (dialog.exec() != QDialog::Accepted) return paths;
    if (m_settings) m_settings->setValue(key, dialog.directory().absolutePath());
    for (const QString& file : dialog.selectedFiles()) paths.push_back(ToPath(file));
    return paths;
}

void CWindowDialogs::ShowAbout(QWidget* parent, const CVersionInfo& version) {
    QMessageBox box(parent);
    box.setWindowTitle(Text(EText::aboutTitle));
    box.setIconPixmap(GetProductIcon().pixmap(QSize(64, 64), box.devicePixelRatio()));
    box.setText(QStringLiteral("<h3>%1</h3>").arg(ToQString(version.productName).toHtmlEscaped()));
    const std::string details = Outils_Texte::FormatText(
        EText::aboutVersion, {version.productVersion, version.buildNumber, version.buildReleaseDate});
    box.setInformativeText(ToQString(version.fileDescription + "\n\n" + details));
    box.exec();
}

bool CWindowDialogs::OpenLink(const QUrl& link) { return QDesktopServices::openUrl(link); }

} // namespace Application_Tarvel
