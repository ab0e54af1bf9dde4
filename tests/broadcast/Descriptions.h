#pragma once

#include <cstdint>
#include <istream>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "inspect/Signing.h"

/// Texts that describe what is sent, as tests/data/broadcast/README.md has their forms, and the bytes that they
/// describe. What is wrong in them is thrown as std::runtime_error.
class CDescriptions {
  public:
    /// One word of a line.
    struct SWord {
        std::string text;
        bool quoted = false;
    };
    using TLine = std::vector<SWord>;
    using TValues = std::map<std::string, std::string>;

    /// `time`: of signatures, seconds since 1970.
    CDescriptions(std::string folder, std::int64_t time);

    /// What the names that descriptions ask for stand for from now on.
    void SetValues(TValues values) { m_values = std::move(values); }
    /// What a file describes: the fields of a layout, or a text with its marks replaced.
    std::string Bytes(const std::string& file);
    /// That compressed, without name and time.
    std::string Compressed(const std::string& file);

    /// The words of the next line that has any; none at the end.
    static TLine Line(std::istream& text);
    static std::string File(const std::string& path);
    /// Seconds since 1970 of a time such as 2026-11-22T01:00:00Z.
    static std::int64_t Time(const std::string& text);
    /// IPv4.
    static std::uint32_t Address(const std::string& text);

  private:
    const std::string& m_Value(const std::string& name) const;
    const CSigner& m_Signer(const std::string& name);
    std::string m_Block(std::istream& text);
    std::string m_Marked(const std::string& text);
    std::string m_Mark(const TLine& words);

    std::string m_folder;
    std::int64_t m_time;
    TValues m_values;
    std::map<std::string, std::unique_ptr<CSigner>> m_signers;
    std::string m_signed;  ///< what the next signature is of
};
