#pragma once

#include <cstring>
#include <string>

#include "Fuzz.h"
#include "common/xml/Refusal.h"
#include "support/XmlOracle.h"

/// A document is taken when plain libxml2 takes it, but for what is refused for a reason that is true.
inline void RequireSameAcceptance(const std::string& text, bool created)
{
    const char* reason = vyr::xml::RefusalOf(text.data(), text.size());
    Require(!(created && reason));
    // Plain libxml2 could be busy with these for ever.
    for (const char* slow : {"parameter", "entities", "identifiers"}) {
        if (reason && (std::strstr(reason, slow) || text.size() > 20000)) {
            return;
        }
    }
    const SXmlTruth truth(text);
    Require(!truth.accepted || !reason || std::strstr(reason, "encoding") || truth.Says(reason));
    Require(!created || (truth.accepted && truth.WithinLimits()));
    // What is left is the budget for all that the document's entities expand to.
    Require(created || reason || !truth.accepted || truth.expansion > 0);
}
