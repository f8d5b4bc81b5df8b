// Vectors and rotations of three axes. Level axes are north, west, up; vessel axes forward, to port, up.
#pragma once

#include <cmath>

namespace Simulation {

struct Vector3 {
    double x = 0, y = 0, z = 0;

    friend Vector3 operator+(const Vector3& a, const Vector3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
    friend Vector3 operator-(const Vector3& a, const Vector3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
    friend Vector3 operator*(double f, const Vector3& a) { return {f * a.x, f * a.y, f * a.z}; }
    Vector3& operator+=(const Vector3& a) { return *this = *this + a; }
};

inline Vector3 Cross(const Vector3& a, const Vector3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline double Norm(const Vector3& a) { return std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z); }

// Columns are the vessel axes in level axes.
struct Matrix3 {
    Vector3 x, y, z;
    // Vessel to level.
    Vector3 Apply(const Vector3& a) const { return a.x * x + a.y * y + a.z * z; }
    // Level to vessel.
    Vector3 ApplyInverse(const Vector3& a) const {
        return {x.x * a.x + x.y * a.y + x.z * a.z, y.x * a.x + y.y * a.y + y.z * a.z,
                z.x * a.x + z.y * a.y + z.z * a.z};
    }
};

} // namespace Simulation
