// East and north of a point of the WGS-84 ellipsoid, and the ellipse of a position's uncertainty. Pure
// arithmetic, any thread.
#pragma once

namespace Presentation_Tarvel_Graphics {

// Metres.
struct SPlace {
    double east = 0;
    double north = 0;

    friend bool operator==(const SPlace&, const SPlace&) = default;
};

// The plane that touches the ellipsoid at its origin. Points count as on the ellipsoid, whatever their
// height.
class CLocalFrame {
  public:
    CLocalFrame() = default;
    // Degrees, north and east positive.
    CLocalFrame(double latitude, double longitude);

    double GetLatitude() const { return m_latitude; }
    double GetLongitude() const { return m_longitude; }
    // Not finite for coordinates that are not.
    SPlace ToPlace(double latitude, double longitude) const;
    // Metres of one degree at the origin.
    double GetMetresPerLatitude() const { return m_perLatitude; }
    double GetMetresPerLongitude() const { return m_perLongitude; }

  private:
    double m_latitude = 0, m_longitude = 0;
    double m_sine = 0, m_cosine = 1; // of the latitude
    double m_x = 0, m_z = 0;         // of the origin, in its own meridian plane
    double m_perLatitude = 0, m_perLongitude = 0;
};

// The ellipse of one standard deviation.
struct SUncertainty {
    double semiMajor = 0; // metres
    double semiMinor = 0; // metres
    double angle = 0;     // radians, of the major axis from east to north
};

// From the standard deviations in metres and the covariance of north and east in square metres. A covariance
// beyond what the deviations allow counts as the greatest that they do.
SUncertainty ToEllipse(double north, double east, double covariance);

} // namespace Presentation_Tarvel_Graphics
