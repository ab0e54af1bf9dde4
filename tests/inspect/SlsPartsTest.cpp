#include "content/SlsParts.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "model/Content.h"
#include "support/Patience.h"
#include "support/Places.h"

namespace {

using namespace vyr::inspect;

SView View(const std::string& text)
{
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

SPackage Read(const std::string& text)
{
    return ReadPackage(View(text), FindSlsDocuments(View(text)));
}

/// "a.mpd application/dash+xml 12 MPD; - - 3 <DWD>": location, type, size, and what was read or the root.
std::string Shown(const SPackage& package)
{
    std::string shown = package.ended ? "" : "cut; ";
    for (const SPackagePart& part : package.parts) {
        shown += (part.contentLocation.empty() ? "-" : part.contentLocation) + ' ' +
                 (part.contentType.empty() ? "-" : part.contentType) + ' ' + std::to_string(part.size);
        for (const std::string& name : part.readAs) {
            shown += ' ' + name;
        }
        shown += (part.root.empty() ? "" : " <" + part.root + '>') + "; ";
    }
    return shown;
}

const std::string k_head = "Content-Type: multipart/related; type=\"a/b\"; boundary=\"x y\"\r\n\r\n";
const std::string k_mpd = "<MPD></MPD>\n";
const std::string k_part = "\r\n--x y\r\ncontent-TYPE: t/u;\r\n v=1\r\nContent-Location:  l \r\n\r\n";
const std::string k_end = "\r\n--x y--\r\n";

TEST(SlsParts, EveryPackage)
{
    const struct {
        const char* name;
        std::string text;
        const char* shown;
    } cases[] = {
        {"a document alone", k_mpd, "cut; "},
        {"of another type", "Content-Type: text/xml; boundary=x\r\n\r\n--x\r\n\r\n<MPD></MPD>\r\n--x--", "cut; "},
        {"without a boundary", "Content-Type: multipart/related\r\n\r\n--x\r\n\r\n<MPD></MPD>\r\n--x--", "cut; "},
        {"fields", k_head + "ignored" + k_part + k_mpd + k_end + k_part + k_mpd, "l t/u; v=1 12 MPD; "},
        {"no final boundary", k_head + k_part + k_mpd, "cut; l t/u; v=1 12 MPD; "},
        {"no part", k_head + k_end, "cut; "},
        {"an empty one", k_head + k_part + "\r\n--x y--", "l t/u; v=1 0; "},
        {"content without fields", k_head + "\n--x y\n<?xml?><!-- > --><!DOCTYPE a><a:DWD/>\n--x y\n" + k_mpd + k_end,
         "- - 37 <a:DWD>; - - 12 MPD; "},
        {"without a header", "\r\n--x\r\n\r\n#EXTM3U\n\r\n--x--", "- - 8; "},
        {"two of a kind: the first is read", k_head + k_part + k_mpd + k_part + k_mpd + k_end,
         "l t/u; v=1 12 MPD; l t/u; v=1 12 <MPD>; "},
        {"boundaries that are none", k_head + k_part + "--x\n--x yz\n --x y\n" + k_mpd + k_end, "l t/u; v=1 30 MPD; "},
        {"a boundary in a document", k_head + k_part + "<MPD>\n--x y\n</MPD>\n" + k_end, "l t/u; v=1 5 MPD; - - 7; "},
        {"behind a zero byte nothing is read", k_head + k_part + std::string(1, '\0') + k_part + k_mpd + k_end,
         "l t/u; v=1 1; l t/u; v=1 12 <MPD>; "},
        {"one in another", k_head + "--x y\nContent-Type: multipart/x; boundary=in\n\n--in\n\n1\n--in\n\n2" + k_end,
         "- - 1; - - 1; "},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(Shown(Read(test.text)), test.shown) << test.name;
    }
}

TEST(SlsParts, SignaturesAreLookedAtInForm)
{
    std::ifstream file(DataFile("route/openssl-smime-signed-sls.mime"), std::ios::binary);
    const std::string whole(std::istreambuf_iterator<char>(file), {});
    const auto changed = [&](const std::string& from, const std::string& to) {
        std::string text = whole;
        return text.replace(text.find(from), from.size(), to);
    };
    const std::size_t last = whole.rfind("\n------6B5");
    const struct {
        std::string text;
        const char* form;
        const char* fault;
    } cases[] = {
        {whole, "CMS SignedData, detached, 1 signer, SHA256", ""},
        {whole.substr(0, last), "CMS SignedData, detached, 1 signer, SHA256", ""},
        {whole.substr(0, last - 9), "not CMS SignedData", "the signature of the package is not CMS SignedData"},
        {changed("Encoding: base64", "Encoding: 8bit"), "not CMS SignedData",
         "the signature of the package is not CMS SignedData"},
        {changed("\nMII", "\n!II"), "not base64", "the signature of the package is not base64"},
        {changed("Type: application/pkcs7-signature", "Type: text/plain"), "",
         "the package is multipart/signed, and has no signature"},
        {changed("multipart/signed", "multipart/mixed"), "CMS SignedData, detached, 1 signer, SHA256", ""},
    };
    for (const auto& test : cases) {
        const SPackage package = Read(test.text);
        EXPECT_EQ(package.signature ? package.signature->headline : "", test.form);
        EXPECT_EQ(package.signatureFault, test.fault);
        EXPECT_EQ(package.parts.size(), 5u);
    }
}

TEST(SlsParts, ItemsAndParts)
{
    const auto both = [](const std::string& items, const std::vector<std::string>& locations) {
        std::string text = k_head + "\n--x y\n\n<metadataEnvelope>" + items + "</metadataEnvelope>";
        for (const std::string& location : locations) {
            text += "\n--x y\nContent-Location: " + location + "\n\n" + k_mpd;
        }
        text += k_end;
        std::string reason;
        const std::vector<SEnvelopeItem> read = ReadEnvelope(View(text), reason);
        const SPackage package = Read(text);
        return ItemsWithoutPart(package, read) + '|' + PartsWithoutItem(package, read);
    };
    const std::string a = "<item metadataURI='a'/>";
    const std::string b = "<item metadataURI='b&amp;c'/>";
    EXPECT_EQ(both(a + b + "<item/>", {"b&c", "a"}), "|");
    EXPECT_EQ(both(a + b, {"A", "b&c"}),
              "1 item of the metadata envelope without a part in the package: a|"
              "1 part of the package without an item in the metadata envelope: A");
    EXPECT_EQ(both(a, {"a", "", "B"}),
              "|2 parts of the package without an item in the metadata envelope: B, 1 without Content-Location");
    EXPECT_EQ(both(a + b, std::vector<std::string>(63, "a")),
              "1 item of the metadata envelope without a part in the package: b&c|");
    EXPECT_EQ(both(a + b, std::vector<std::string>(64, "a")), "|") << "not all parts are known";
    std::string many;
    for (int i = 0; i < 9; ++i) {
        many += "<item metadataURI='" + std::string(100, static_cast<char>('a' + i)) + "'/>";
    }
    const std::string cut = both(many, {});
    EXPECT_NE(cut.find(" and 1 more|"), std::string::npos) << cut;
    EXPECT_LT(cut.size(), 700u);
}

TEST(SlsParts, HostilePackagesTakeLittle)
{
    const std::string deep = "--x y\nContent-Type: multipart/a; boundary=\"x y\"\n\n";
    std::string nested = k_head;
    std::string parts = k_head;
    std::string lines = k_head + k_part;
    std::string fields = k_head + "--x y\n";
    while (parts.size() < 8000000) {
        parts += "--x y\n\n";
        lines += "--x\n";
        nested += nested.size() < 2000000 ? deep : "";
    }
    while (fields.size() < 8000000) {
        fields += "Content-Type: " + std::string(1000, 'a') + "\n " + std::string(100000, 'b') + '\n';
    }
    const CPatience patience("packages of 8 MB");
    const SPackage many = Read(parts);
    EXPECT_EQ(many.parts.size(), 64u);
    EXPECT_EQ(many.moreParts, (parts.size() - k_head.size()) / 7 - 64);
    EXPECT_EQ(Read(lines).parts.size(), 1u);
    EXPECT_LE(Read(nested).parts.size(), 64u);
    EXPECT_LE(Read(fields).parts.at(0).contentType.size(), 1024u);
}

}  // namespace
