#pragma once

#include <atomic>
#include <string>

#include "../common/Parse.h"
#include "../platform/Api.h"

/// Base of the low-level signalling table parsers: reads the four-byte LLS header (ATSC A/331 6.1:
/// LLS_table_id, LLS_group_id, group_count_minus1, LLS_table_version), drops a table that it has just
/// seen and hands the payload to the table's parser. How the parts go together: docs/using.md.
///
/// One object is used by one thread at a time; several may parse on several threads. Out of memory is a failed
/// Create or Parse, with a line in the log; what was held before is still held. Callbacks of subclasses come
/// inside Parse, on its thread. They may call anything of the object but Parse and Destroy, which are asserted
/// there ("!m->parsing") and do nothing, and may throw: the exception leaves Parse, and the object can be used
/// again.
///
/// Required: the records of most tables pile up, those of each new table beside all that came before, until
/// Destroy. Parsers of such tables have an extension, SetReplace(bool), off at first: while it is on, what a
/// table brings takes the place of what the last table of its group left. A group is the LLS_group_id of the
/// header, on one channel where the parser is told the channel. A table that does not parse, or is dropped as
/// a repeated one, leaves what is held, and so does one of another group; what came before SetReplace stays.
class VYR_API TCParseLLS : public IParse {
  public:
    /// With SetReplace: records that a group holds at most, all kinds together; what a table brings beyond is
    /// dropped, with one log line per table.
    static constexpr int k_maxPerGroup = 1024;
    /// With SetReplace: groups of a channel that are held at most; tables of others bring nothing, likewise.
    static constexpr int k_maxGroups = 16;

    TCParseLLS();
    ~TCParseLLS() override;

    /// Takes one whole LLS table, one UDP payload of the LLS stream, from the item's cursor on. True:
    /// the table was new and was handed on, whether or not it then parsed. False: its header equals
    /// that of the last table taken, or the item holds no whole header (asserted), or memory is out. Only the
    /// one last header is remembered, and remembered before the payload is parsed; one that memory was out for
    /// is not, and the one before it stays.
    bool Parse(IParse::SItem* item) override;
    /// Frees all that was parsed; the object can be created anew.
    virtual void Destroy() = 0;
    /// Whether a Parse of this object is under way, as in a callback.
    bool Parsing() const { return t_parsing; }

    /// With `skip`: a repeated table of this table id, or of this group id, counts as new from now on.
    /// Without: repeats are dropped again. The id 0xFF stands for none.
    void SkipCheckVersion(unsigned char tableId, unsigned char groupId, bool skip);

    /// Whether XML payloads are gzip-compressed, for every parser in the process; true at first. To
    /// be set once, at start.
    static void SetDecompressLLS(bool decompress);

    /// Separates the CMSSignedData element from an XML table; `data` is a whole LLS table of `length`
    /// bytes, header included. True: `xml` is the text without the element, `cms` the part of the
    /// element that begins behind "<CMSSignedData" and is as long as the way from there to the end
    /// tag's first byte plus 14: required to run 14 characters into the end tag. False: no such
    /// element, or not a whole one of useful length; the outputs are untouched. No signature is verified.
    bool CheckCMS(const unsigned char* data, int length, std::string& xml, std::string& cms);

  protected:
    /// Parses the payload behind the header.
    virtual bool t_Parse(IParse::SItem* item) = 0;
    /// LLS_group_id of the table being parsed.
    unsigned char t_GroupId() const { return m_lastGroupId; }
    /// The process-wide compression switch.
    bool t_DecompressLLS() const;
    /// False, asserted ("!m->parsing"), inside a callback: what Destroy asks.
    bool t_Idle() const;
    /// Set while callbacks may come.
    mutable bool t_parsing;

  private:
    bool m_CheckVersion(unsigned char tableId, unsigned char groupId, unsigned char groupCountMinus1,
                        unsigned char version);

    static std::atomic<bool> m_decompressLLS;
    unsigned char m_lastTableId;
    unsigned char m_lastGroupId;
    unsigned char m_lastGroupCountMinus1;
    unsigned char m_lastVersion;
    unsigned char m_skipTableId;
    unsigned char m_skipGroupId;
};
