#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "../common/Owned.h"
#include "../common/Parse.h"
#include "../platform/Api.h"
#include "ESGFragmentBase.h"

/// Parser of service guide delivery units (SGDU; OMA BCAST Service Guide): a table of fragments, and the
/// fragments. Life: construct, Create, Parse, Destroy, delete; one object for each unit (see Parse). An
/// object that is not created is asserted ("m"); it is used by one thread at a time. See docs/using.md.
class VYR_API CSGDUParse : public IParse {
  public:
    /// One entry of the fragment table.
    struct SFragmentHead {
        virtual ~SFragmentHead() = default;

        unsigned int fragmentTransportID = 0;  ///< fragmentTransportID
        unsigned int fragmentVersion = 0;      ///< fragmentVersion
        unsigned int fragmentOffset = 0;       ///< offset of the fragment, bytes from an origin common to all
    };

    /// One fragment.
    struct SFragmentSGDU {
        virtual ~SFragmentSGDU() = default;

        unsigned char fragmentEncoding = 0;     ///< fragmentEncoding; 0: XML, other fragments have no more
        unsigned char fragmentType = 0;         ///< fragmentType; 1: service, 2: content, 3: schedule
        std::unique_ptr<unsigned char[]> data;  ///< the XML text and a zero byte; null: none
        unsigned int length = 0;                ///< of the text, bytes
        /// The parsed fragment: a CESGServiceFragment, CESGContentFragment or CESGScheduleFragment as
        /// fragmentType says; null: none.
        TOwned<CESGFragmentBase> fragment;
    };

    /// What was parsed.
    struct SSGDUParse {
        virtual ~SSGDUParse() = default;

        bool compress = false;                                      ///< as SetCompress said
        unsigned int inflateLimit = 0;                              ///< as SetInflateLimit said
        bool replace = false;                                       ///< as SetReplace said
        std::unique_ptr<char[]> extracted;                          ///< the inflated unit; null: none
        std::size_t extractedSize = 0;                              ///< its size, bytes
        unsigned int extensionOffset = 0;                           ///< extension_offset
        unsigned short reserved = 0;                                ///< reserved
        unsigned int nOServiceGuideFragments = 0;                   ///< n_o_service_guide_fragments
        std::vector<std::unique_ptr<SFragmentHead>> arrayHead;      ///< in the units' order
        std::vector<std::unique_ptr<SFragmentSGDU>> arrayFragment;  ///< the fragments kept, in the units' order
    };

    CSGDUParse();
    /// Frees nothing: Destroy comes first, else "!m" is asserted.
    ~CSGDUParse() override;
    CSGDUParse(const CSGDUParse&) = delete;
    CSGDUParse& operator=(const CSGDUParse&) = delete;

    /// Parses the unit at the item's cursor, which is byte-aligned. Fragments that do not parse, or of
    /// another type, are dropped. False: the header, the table or the fragments leave the unit, or it does
    /// not inflate; fragments before that are kept. A compressed unit is inflated, and the item points to
    /// the inflated bytes afterwards, which live until the next Parse or Destroy.
    ///
    /// Required: table entries and fragments pile up until Destroy (see SetReplace), and fragments are cut with the
    /// offsets that stand first in the pile, so that a second unit is cut with the offsets of the first. A fragment of
    /// another encoding than XML is not stepped over: the next one is read from behind its encoding.
    bool Parse(IParse::SItem* item) override;
    /// Frees everything; the object can be created anew.
    virtual void Destroy();

    /// Makes the parser ready, for units that are not compressed; a second call is asserted: false.
    bool Create();
    /// Whether units are compressed with gzip; others fail then.
    void SetCompress(bool compressed);
    /// Extension: the most that a unit may inflate to, bytes; 0, the default: as much as memory holds.
    void SetInflateLimit(unsigned int bytes);

    /// Extension, off by default: what a unit brings takes the place of what the last one left, so that it is cut
    /// with its own offsets; a unit that fails leaves what is held. Held is then what one unit holds, 64 bytes at
    /// most for each of its own, which SetInflateLimit bounds.
    void SetReplace(bool replace);

    /// What was parsed; null before Create, good until the next Parse or Destroy.
    const SSGDUParse* State() const { return m; }

  private:
    bool t_ProcessServiceGuide(IParse::SItem* item);
    bool m_ProcessFragmentSGDU(IParse::SItem* item, unsigned int index, bool last);
    TOwned<CESGFragmentBase> t_ProcessFragment(int fragmentType, const char* data, unsigned int length);
    bool m_Parse(IParse::SItem* item);
    bool m_ExtractData(IParse::SItem* item);

    SSGDUParse* m;
};
