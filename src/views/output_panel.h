// The output lines with the choice of those that are shown. UI thread.
#pragma once

#include <QWidget>

class QComboBox;
class QLineEdit;

namespace Application_Tarvel {

class CTrvOutputWnd;

class CTrvOutputPanel final : public QWidget {
    Q_OBJECT

  public:
    explicit CTrvOutputPanel(QWidget* parent = nullptr);

    CTrvOutputWnd& GetLines() const { return *m_lines; }

  private:
    // All owned as children.
    QComboBox* m_levels;
    QLineEdit* m_filter;
    CTrvOutputWnd* m_lines;
};

} // namespace Application_Tarvel
