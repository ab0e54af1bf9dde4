#pragma once

#include <map>

#include "../common/XmlElement.h"
#include "../platform/Api.h"
#include "ESGElement/DescriptorEntry.h"

/// Parser of a service guide delivery descriptor (SGDD; OMA BCAST Service Guide): where the delivery units
/// of the guide are. The element is looked for among the root, or the node that is parsed, and its
/// following siblings. Required: a second parse adds to the lists of the first, until Destroy; see SetReplace.
class VYR_API CSGDDParse : public CXmlElement {
  public:
    /// What was parsed.
    struct SSGDDParse {
        TESGText id;                                     ///< id; null: not given
        int version = 0;                                 ///< version
        std::shared_ptr<const char[]> ns;                ///< namespace of the element; null: none
        TOwnedList<CDescriptorEntry> descriptorEntries;  ///< DescriptorEntry
    };

    /// Frees nothing: Destroy comes first, else "!m" is asserted.
    ~CSGDDParse() override;

    /// Whether the two-argument Parse takes gzip; false at first.
    void SetCompress(bool compressed);

    /// What was parsed; null before Create, good until the next Parse or Destroy.
    const SSGDDParse* State() const { return t_Values<SSGDDParse>(); }

  private:
    friend class CSGResponse;
    /// Copies of the namespaces of a document, by their addresses in it.
    using TNamespaces = std::map<const char*, std::shared_ptr<const char[]>>;
    struct SState;

    /// Lets the next parse share the copies, which outlive it.
    bool m_Share(TNamespaces* namespaces);
    vyr::SXmlKind t_Kind() const override;
};
