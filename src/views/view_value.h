// The panel Instant values: the chosen fields with their values at the cursors, and their statistics between
// the cursors on request. UI thread.
//
// Keys: Delete removes the selected rows, Alt+Up and Alt+Down move them, Ctrl+C copies them as text.
#pragma once

#include "views/instant_values_model.h"

#include <QBasicTimer>
#include <QTreeView>

class QLabel;
class QMenu;
class QProgressBar;
class QToolButton;

namespace Outils_Configuration {
class CTrvCnfConfigFile;
}

namespace Application_Tarvel {

using Presentation_Tarvel_Graphics::CViewState;

// The list of the panel: paints what an empty list has to say.
class CValuesList final : public QTreeView {
    Q_OBJECT

  public:
    explicit CValuesList(QWidget* parent);
    void SetNotice(const QString& notice);
    // A mark around the list while a drag would drop into it.
    void MarkDrop(bool on);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QString m_notice;
    bool m_isMarked = false;
};

class CTrvViewValue final : public QWidget {
    Q_OBJECT

  public:
    // All must outlive the panel. `configuration` keeps the width of the first column.
    CTrvViewValue(CTrvDocument& document, CViewState& state,
                  Outils_Configuration::CTrvCnfConfigFile& configuration,
                  const Outils_Valeurs::CTrvAdaptors& adaptors, QWidget* parent = nullptr);
    ~CTrvViewValue() override;

    CTrvInstantValues& GetValues() { return m_values; }
    CValuesList& GetList() { return *m_list; }
    void ShowStatistics(bool show);
    bool AreStatisticsShown() const { return m_values.AreStatisticsShown(); }
    void CopyRows();
    void RemoveRows();
    // By this many places, positive downwards.
    void MoveRows(int places);
    // Takes texts, units and colours from the settings again.
    void Reformat();

  protected:
    void changeEvent(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

  private:
    std::vector<const CTrvInstantValue*> GetSelected() const;
    void OnValuesChanged();
    void ShowColumns();
    void ShowProgress();
    void MakeActions();

    CTrvInstantValues m_values;
    Outils_Configuration::CTrvCnfConfigFile& m_configuration;
    CInstantValuesModel m_model;
    // The widgets belong to the panel.
    QLabel* m_times;
    CValuesList* m_list;
    QWidget* m_foot;
    QProgressBar* m_progress;
    QAction* m_statistics = nullptr;
    QBasicTimer m_poll; // while statistics are counted
};

} // namespace Application_Tarvel
