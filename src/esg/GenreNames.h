#pragma once

namespace vyr {

/// Whether there are names of genres; from then on they stay as they are. Safe from every thread.
bool GenreNamesKnown();
/// The name of a genre term, good until the process ends; null: none. Likewise.
const char* GenreName(int index);

}  // namespace vyr
