#pragma once

#include <cstddef>

namespace vyr::inspect {

/// Most entries of a list that a report shows; of the others it tells how many they are.
std::size_t MostEntries();
/// Most lines that tell what changed in a document; of the others, how many they are.
std::size_t MostChanges();
/// The number, or one that is never reached when the limits are lifted.
std::size_t Limit(std::size_t number);
/// Lifts the limits of reports, for the whole program.
void LiftLimits(bool lift = true);

}  // namespace vyr::inspect
