#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// When the tables and the objects of signalling of one capture came, repeats as well.

namespace vyr::inspect {

/// Arrivals that are so close to each other that they are kept as one.
struct SArrivalMark {
    double at = 0;  ///< of the first, in seconds as of SDelivery::seconds
    std::uint64_t count = 0;
    std::uint64_t changes = 0;  ///< of these, those that were another version than the last
};

enum class EArrivals { TABLE, SIGNALLING, MESSAGE, GUIDE };

/// The arrivals of one table of a group, of all signalling objects of a session, of its messages of one id, or of its
/// objects of the guide.
struct SArrivalLine {
    EArrivals kind = EArrivals::TABLE;
    std::string place;              ///< "224.0.23.60:4937"
    unsigned id = 0;                ///< of the table or the messages
    unsigned groupId = 0;           ///< of the table
    bool insideMultiTable = false;  ///< the table
    std::vector<unsigned> services = {};
    std::uint64_t came = 0;
    std::uint64_t changes = 0;
    std::optional<double> gap = std::nullopt;  ///< the longest time between two, in seconds
    std::vector<SArrivalMark> marks = {};      ///< of those that have a time, in order
};

struct SArrivalLines {
    std::vector<SArrivalLine> lines;
    std::uint64_t more = 0;  ///< arrivals of lines beyond those that are kept
};

}  // namespace vyr::inspect
