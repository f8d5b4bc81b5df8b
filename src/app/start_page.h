// What the middle of the window shows while no project is open: the ways to begin, the projects opened last,
// and the gestures of the graphs. UI thread.
#pragma once

#include <QString>
#include <QWidget>

#include <span>
#include <vector>

class QAbstractButton;
class QLabel;
class QVBoxLayout;

namespace Application_Tarvel {

class CTrvStartPage final : public QWidget {
    Q_OBJECT

  public:
    struct SRecent {
        QString name;
        QString place; // folder, and date when it is known

        friend bool operator==(const SRecent&, const SRecent&) = default;
    };

    explicit CTrvStartPage(QWidget* parent = nullptr);

    // Newest first. The button that has the focus keeps it as long as it is there.
    void SetRecent(const std::vector<SRecent>& projects);
    void SetHasSample(bool has);

  Q_SIGNALS:
    void NewRequested();
    void OpenRequested();
    void SampleRequested();
    // By the place in the list.
    void RecentRequested(int index);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void AddGestures(QVBoxLayout& layout);

    // All owned as children.
    QAbstractButton* m_sample;
    QLabel* m_noRecent;
    QVBoxLayout* m_recentRows;
    std::vector<QAbstractButton*> m_recent;
    std::vector<SRecent> m_shown;
    std::vector<QLabel*> m_gestures;
};

} // namespace Application_Tarvel
