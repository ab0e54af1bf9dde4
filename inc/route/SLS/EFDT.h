#pragma once

#include <list>
#include <string>

#include "../../common/Owned.h"
#include "../../common/XmlElement.h"
#include "../../platform/Api.h"

/// One file of an extended FDT: the File element (RFC 6726 3.4.2, ATSC A/331 annex A.3.3). Numbers that
/// are not given are -1 (all bits set), texts empty. Lists of applications are cut behind 65,536 in all of a parse.
struct VYR_API SFDTFile {
    virtual ~SFDTFile() = default;

    std::string contentLocation;              ///< URI of the file
    unsigned long long toi = 0;               ///< transport object identifier
    long long transferLength = 0;             ///< bytes as they are carried
    long long contentLength = 0;              ///< bytes of the file
    std::string contentType;                  ///< MIME type
    std::string contentEncoding;              ///< such as "gzip"
    std::list<std::string> appContextIdList;  ///< URIs of the applications that use the file
};

/// Parameters of an FDT instance, and its files.
struct VYR_API SFDTGlobal {
    SFDTGlobal() = default;
    virtual ~SFDTGlobal();
    SFDTGlobal(const SFDTGlobal&) = delete;
    SFDTGlobal& operator=(const SFDTGlobal&) = delete;

    long long expires = -1;                   ///< NTP seconds; -1: not given
    char* contentType = nullptr;              ///< new[]; null: not given
    char* contentEncoding = nullptr;          ///< new[]; null: not given
    int efdtVersion = -1;                     ///< -1: not given
    std::list<std::string> appContextIdList;  ///< URIs of the applications that use the files
    TPtrArray<SFDTFile> files;                ///< in document order

    // Extension: attributes of the instance, which SEFDTInfo has where elements of its own give them.
    std::string fileTemplate;         ///< pattern of the files' names, with $TOI$; empty: not given
    long long maxExpiresDelta = -1;   ///< seconds to add to the arrival of a packet, at most; -1: not given
    long long maxTransportSize = -1;  ///< bytes of the largest object; -1: not given
};

/// What an extended FDT holds. Numbers that are not given are 0xFFFFFFFF.
struct VYR_API SEFDTInfo {
    SEFDTInfo() = default;
    virtual ~SEFDTInfo();
    SEFDTInfo(const SEFDTInfo&) = delete;
    SEFDTInfo& operator=(const SEFDTInfo&) = delete;

    unsigned int tsi = 0xFFFFFFFF;               ///< transport session identifier
    char* idRef = nullptr;                       ///< new[]; empty: not given
    unsigned int version = 0xFFFFFFFF;           ///< of the EFDT
    unsigned int maxExpiresDelta = 0xFFFFFFFF;   ///< seconds
    unsigned int maxTransportSize = 0xFFFFFFFF;  ///< bytes of the largest object
    char* fileTemplate = nullptr;                ///< new[]; null: none
    SFDTGlobal* fdtGlobal = nullptr;             ///< the last FDT instance; null: none
};

/// Told of an extended FDT at the end of its parse, inside Parse and on its thread: the record is complete, and
/// good until the parser's next Parse or Destroy. What it may call: see XMLBase.
struct SEFDTInfoCallback {
    void* context;                               ///< handed back to fn
    void (*fn)(void* context, SEFDTInfo* info);  ///< null: nobody is told; the record stays the parser's
};

/// Parser of an extended file delivery table (EFDT; ATSC A/331 annex A.3.3): the files of one LCT
/// session. Each parse that succeeds replaces the record of the one before.
class VYR_API CEFDT : public CXmlElement {
  public:
    /// Copies the record; null takes it back.
    bool SetCallback(const SEFDTInfoCallback* callback);
    /// The record of the last parse, null before the first; good until the next Parse or Destroy.
    SEFDTInfo* GetEFDTInfo() const;

  private:
    vyr::SXmlKind t_Kind() const override;
};
