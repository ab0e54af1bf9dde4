#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <tuple>

#include "measure/CaptureClock.h"
#include "measure/Traffic.h"
#include "model/Arrivals.h"
#include "model/Report.h"
#include "model/Witness.h"

namespace vyr::inspect {

/// Notes when the tables and objects of signalling of a capture come, in memory of a bounded size: marks that are too
/// many join to fewer of a longer time.
class CArrivals : public IWitness {
  public:
    static constexpr std::size_t k_mostLines = 256;
    static constexpr std::size_t k_mostMarks = 512;  ///< of a line
    static constexpr std::size_t k_mostServices = 8;

    /// The report tells it of what comes while there is one; `traffic`, whose packet that came with.
    CArrivals(CReport& report, const CTraffic& traffic);
    ~CArrivals() override;
    CArrivals(const CArrivals&) = delete;
    CArrivals& operator=(const CArrivals&) = delete;

    void Table(const STable& table) override;
    void Signalling(const SSignalling& signalling) override;
    void Message(const SMessage& message) override;
    void GuideObject(const SGuideObject& object) override;
    void Guide(const SGuide&) override {}

    SArrivalLines Result() const;

  private:
    using TKey = std::tuple<EArrivals, std::string, unsigned, unsigned, bool>;
    struct SMark {
        std::int64_t at;
        std::uint64_t count;
        std::uint64_t changes;
    };
    struct SLine {
        SArrivalLine line;
        std::vector<SMark> marks;
        unsigned width = 0;  ///< of the times that a mark can stand for, microseconds as a power of two
        std::int64_t last = -1;
        std::int64_t gap = -1;
    };

    void m_Note(const SArrivalLine& line, EStatus status, const SSource& source);
    static void m_Mark(SLine& line, std::int64_t at, bool changed);

    CReport& m_report;
    const CTraffic& m_traffic;
    std::map<TKey, SLine> m_lines;
    std::uint64_t m_more = 0;
};

}  // namespace vyr::inspect
