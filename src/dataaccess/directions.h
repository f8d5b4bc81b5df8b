// Sums over the unit vectors of angles: what their mean direction is made of. Any thread.
#pragma once

#include <span>

namespace Application_Tarvel {

struct SDirectionSums {
    double sine = 0;
    double cosine = 0;
    double squares = 0; // of the angles within half a turn of zero, in the unit of the angles
};

// Adds all angles to `sums`; `turn` is one full turn in their unit. Each sine and cosine is good to 1e-12.
// The direction of an angle of more than 1e15 turns means nothing; it adds a unit vector all the same.
// REQUIRES: finite angles; turn > 0.
void AddDirections(std::span<const double> angles, double turn, SDirectionSums& sums);

} // namespace Application_Tarvel
