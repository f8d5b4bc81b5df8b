#include "app/dialogs.h"

#include "app/icons.h"
#include "foundation/texts.h"
#include "plot/text.h"

#include <QDesktopServices>
#include <QFileDialog>
#include <QMessageBox>

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

std::optional<std::filesystem::path> CWindowDialogs::AskOpenPath(QWidget* parent,
                                                                 const std::filesystem::path& folder) {
    const QString file = QFileDialog::getOpenFileName(parent, Text(EText::openTitle), ToQString(folder),
                                                      Text(EText::projectFilter));
    if (file.isEmpty()) return std::nullopt;
    return ToPath(file);
}

std::optional<std::filesystem::path> CWindowDialogs::AskSavePath(QWidget* parent,
                                                                 const std::filesystem::path& proposed) {
    QFileDialog dialog(parent, Text(EText::saveTitle), ToQString(proposed.parent_path()),
                       Text(EText::projectFilter));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    // Given to the dialog, not added behind it: it asks about replacing the very file that will be written.
    dialog.setDefaultSuffix(Text(EText::projectExtension));
    if (!proposed.empty()) dialog.selectFile(ToQString(proposed.filename()));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
    return ToPath(dialog.selectedFiles().front());
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
