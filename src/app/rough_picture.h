// A drawing of the inertial unit as it stands in its vehicle. UI thread.
#pragma once

#include <QWidget>

namespace Application_Tarvel {

// The box is seen from the right, behind and above, with the logo and the connectors on their sides; a side
// that looks away is drawn dashed.
class CRoughPicture final : public QWidget {
  public:
    // `isLand` names the directions of a car and not those of a ship.
    CRoughPicture(bool isLand, QWidget* parent = nullptr);

    // Sides of the vehicle: 0 up, 1 down, 2 starboard, 3 port, 4 bow, 5 stern.
    void SetSides(int logo, int connector);
    QSize sizeHint() const override { return {260, 220}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    const bool m_isLand;
    int m_logo = 0;
    int m_connector = 4;
};

} // namespace Application_Tarvel
