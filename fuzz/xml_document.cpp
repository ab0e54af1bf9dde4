// A document, plain or compressed, and every getter over every node that can be reached. One that is not
// compressed is taken when plain libxml2 takes it, but for what is refused for a reason that is true.
// Sources: src/common/xml src/common/XML.cpp
#include <cstring>
#include <memory>
#include <string>

#include "Fuzz.h"
#include "Mutate.h"
#include "XmlAcceptance.h"
#include "common/XML.h"
#include "platform/Failure.h"
#include "platform/Platform.h"

namespace {

const char* const k_names[] = {"a", "bsid", "serviceId", "lang", "xmlns"};

void Read(const CXML& xml, void* node)
{
    bool found = false;
    const std::unique_ptr<char[]> ns(xml.Ns(node, &found));
    Require(ns && (found || !*ns.get()));
    Require(xml.Compare(node, xml.Name(node)) || !xml.Name(node));
    const std::string content = xml.getStringContent(node, &found);
    Require(content.size() <= 524288 * 2 || !found);
    for (const char* name : k_names) {
        bool inNumber = false;
        bool inBool = false;
        const std::string text = xml.getStringProp(node, name, &found);
        const long long number = xml.PropLLong(node, name, &inNumber);
        Require(static_cast<int>(static_cast<unsigned long long>(number)) == xml.PropInt(node, name, nullptr));
        Require(xml.PropBool(node, name, &inBool) == (found && text.compare(0, 4, "true") == 0));
        CXML::CStr peeked;
        Require(found == inNumber && found == inBool && found == xml.PeekPropStr(node, name, &peeked));
        Require(!found || text == peeked.String());
    }
}

void Walk(const CXML& xml, void* node, int depth, int* budget)
{
    for (; node && --*budget > 0; node = xml.MoveNext(node)) {
        Read(xml, node);
        if (depth < 300) {
            Walk(xml, xml.MoveChild(node), depth + 1, budget);
        }
    }
}

}  // namespace

VYR_MUTATOR(MutateXml)

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SetLogPriority(LOG_PRIORITY_SILENT);
    CScript script(data, size);
    const bool compressed = script.Byte() & 1;
    const std::vector<unsigned char> text = script.Rest();
    CXML xml;
    const bool created =
        xml.Create(reinterpret_cast<const char*>(text.data()), static_cast<int>(text.size()), compressed);
    Require(created == (LastFailure() == nullptr));
    if (!compressed && text.size() >= 2) {
        RequireSameAcceptance(std::string(text.begin(), text.end()), created);
    }
    if (!created) {
        return 0;
    }
    void* root = nullptr;
    if (xml.MoveRoot(&root)) {
        int budget = 3000;
        Walk(xml, root, 0, &budget);
        int length = -1;
        const std::unique_ptr<char[]> node(xml.NodeDump(root, &length));
        Require(!node || std::strlen(node.get()) <= static_cast<std::size_t>(length));
        const std::unique_ptr<char[]> whole(xml.Dump(xml.Doc(), &length));
        CXML wrapper;
        Require(wrapper.Create(xml.Doc()));
        wrapper.Destroy();
    }
    xml.Destroy();
    return 0;
}
