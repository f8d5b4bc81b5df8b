// The middle of the window: the graphs of the project, or without one the start page. UI thread.
#pragma once

#include <QStackedWidget>

#include <filesystem>
#include <map>

namespace Application_Tarvel {

class CRecentFiles;
class CTrvDocument;
class CTrvStartPage;

class CWindowMiddle final : public QStackedWidget {
    Q_OBJECT

  public:
    // `graphs` becomes a child; `document` and `recent` must outlive the widget. Looks for what the page
    // shows of files: the dates of recent projects, and the sample mission beside `programFolder`.
    CWindowMiddle(QWidget* graphs, CTrvDocument& document, const CRecentFiles& recent,
                  const std::filesystem::path& programFolder, QWidget* parent);
    ~CWindowMiddle() override;

    // Shows what fits the document; the focus stays in the middle if it was there.
    void Update();

  Q_SIGNALS:
    // The user's choice on the start page.
    void NewRequested();
    void OpenRequested();
    void ProjectRequested(const std::filesystem::path& project);
    void RecentRequested(int index);

  private:
    void LookForFiles(const std::filesystem::path& programFolder);

    CTrvDocument& m_document;
    const CRecentFiles& m_recent;
    QWidget* m_graphs;                                // Owned as a child.
    CTrvStartPage* m_start;                           // Owned as a child.
    std::map<std::filesystem::path, QString> m_dates; // of recent projects, as far as they are known
    std::filesystem::path m_sample;                   // the sample mission; empty when it is not there
};

} // namespace Application_Tarvel
