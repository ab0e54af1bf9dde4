#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "model/Allowance.h"
#include "report/Output.h"

namespace vyr::inspect {

/// Records that were left out, by their kinds.
using TLeftOut = std::map<std::string, std::uint64_t>;

/// The output for one form of the report, within its allowance: a record that does not fit is left out and counted,
/// and as soon as there is room again a record tells how many of which kind were.
class CLimitedOutput {
  public:
    using TTell = std::string (*)(const TLeftOut& leftOut);

    /// `tell` makes the record that tells of those left out. The output outlives this.
    CLimitedOutput(COutput& output, TTell tell) : m_output(output), m_tell(tell) {}

    void Received(std::size_t bytes) { m_allowance.Received(bytes); }
    /// Bytes that the next record may have.
    std::size_t Room() const;
    /// False, and the record is counted as left out: there is no room for any, and it need not be made.
    bool Begin(const char* kind);
    void Write(const char* kind, const std::string& record);
    /// A record that is always written, behind what is left to tell.
    void Always(const std::string& record);
    /// All that were left out.
    const TLeftOut& LeftOut() const { return m_all; }

  private:
    static constexpr std::size_t k_least = 1024;  ///< room to write again when records were left out

    void m_LeaveOut(const char* kind);
    void m_Tell();

    COutput& m_output;
    const TTell m_tell;
    CAllowance m_allowance;
    TLeftOut m_untold;
    TLeftOut m_all;
};

}  // namespace vyr::inspect
