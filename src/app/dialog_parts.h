// What the dialogs are made of. UI thread.
#pragma once

#include "foundation/text_id.h"

#include <QDialog>
#include <QWidget>

#include <functional>
#include <string>

class QLineEdit;
class QPushButton;
class QSettings;
class QTreeWidget;
class QTreeWidgetItem;
class QVBoxLayout;

namespace Application_Tarvel {

using Outils_Texte::EText;

// A dialog with OK and Cancel under what the caller puts into it. Tab goes through it in the order of adding.
class CDialog : public QDialog {
  public:
    // Its size is kept in `settings`, which may be null.
    CDialog(QWidget* parent, const QString& title, QSettings* settings);

    // The widget takes the room that is left.
    void Add(QWidget* widget);
    void Add(QLayout* layout);
    // True when the dialog ended with OK, which `onOK` may refuse. Enter presses it unless the dialog has a
    // use of its own for it.
    bool Run(const std::function<bool()>& onOK = {}, bool enterIsOK = true);

  private:
    QSettings* const m_settings;
    QVBoxLayout* m_layout;
};

// A line with a button that chooses for it, also by Enter.
class CPathLine final : public QWidget {
  public:
    CPathLine(QWidget* parent, const QString& name, std::function<void()> choose);

    QLineEdit& GetLine() const { return *m_line; }
    // Its text comes from the button alone.
    void SetChosenOnly();

  private:
    QLineEdit* m_line;
    QPushButton* m_button;
};

// The text without the mark of its key.
QString WithoutKey(EText text);

// A list of rows with two columns, of which one is selected.
QTreeWidget* MakeList(QWidget* parent, EText first, EText second, const QString& name);
QTreeWidgetItem* AddRow(QTreeWidget& list, const std::string& first, const std::string& second);

} // namespace Application_Tarvel
