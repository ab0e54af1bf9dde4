#pragma once

#include <memory>
#include <utility>

#include "common/XmlParser.h"
#include "common/XmlRead.h"

namespace vyr {

/// What the parsers of the two user service bundle descriptions hold and read alike; TValues is the record.
template <class TValues>
struct TUsbdState : TXmlState<TValues> {
    using TXmlState<TValues>::values;

    /// Whether it is such a document, by either name; then it begins.
    bool Begin(void* root, const char* name, const char* otherName)
    {
        if (!this->xml->Compare(root, name) && !this->xml->Compare(root, otherName)) {
            return false;
        }
        Renew(*this);
        if (!values.globalServiceId) {
            globalServiceId.reset();
        }
        return true;
    }

    /// The attributes of a user service description. Required: one that does not say that its service is on is off.
    void ReadDescription(void* node)
    {
        std::unique_ptr<char[]> id;
        ReadAttribute(node, "globalServiceID", id);
        if (!id) {
            ReadAttribute(node, "globalServiceId", id);
        }
        globalServiceId = std::move(id);
        values.globalServiceId = globalServiceId.get();
        ReadAttribute(node, "serviceId", values.serviceId, -1);
        const CNodeText status = CNodeText::Attribute(node, "serviceStatus");
        Read(status, values.givenServiceStatus);
        values.serviceStatus = status.Int(-1) == 1;
    }

    std::unique_ptr<char[]> globalServiceId;  ///< what the record points to
};

}  // namespace vyr
