#pragma once

namespace vyr {

/// While one lives, this thread asks for the file of genre names once at most: a fragment has thousands of
/// genres, and a unit thousands of fragments. One inside another changes nothing.
class CGenreAsking {
  public:
    CGenreAsking();
    ~CGenreAsking();
    CGenreAsking(const CGenreAsking&) = delete;
    CGenreAsking& operator=(const CGenreAsking&) = delete;

    /// Whether the file is to be asked for; true without such an object.
    static bool First();
};

}  // namespace vyr
