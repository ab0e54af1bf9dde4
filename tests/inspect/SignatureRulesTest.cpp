#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "Findings.h"
#include "MmtCaptures.h"
#include "Signing.h"
#include "support/Places.h"

namespace {

using namespace packets;

constexpr std::int64_t k_first = 1800000000;  ///< when captures begin
constexpr std::int64_t k_last = k_first + 2;  ///< and end
constexpr std::int64_t k_day = 86400;

const std::string k_rrt = Number(0x02000001, 4) + "<RatingRegionTables/>";

/// A broadcast of two services that is signed, and what is wrong with it.
struct SSignatureCase {
    std::string broken{};
    std::function<void(SSignatureCase&)> edit = [](SSignatureCase&) {};
    std::int64_t notBefore = k_first - k_day;
    std::int64_t notAfter = k_last + 31 * k_day;
    bool within = false;    ///< signatures have the certificates of their signers
    bool announced = true;  ///< the table of certificates has that of the signer
    bool current = true;    ///< and names it
    bool next = false;      ///< it has one that is not valid yet
    std::string changed{};  ///< "SLT", "CDT" or "package": it changes behind its signature
    std::string lines = "\r\n";
    bool crlf = false;                ///< what is signed has other ends of lines than what is sent
    bool bothSigned = true;           ///< the packages of the second service are signed
    std::vector<std::string> more{};  ///< tables
    std::string arguments{};
};

std::string Replaced(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
    return text;
}

std::string Multi(const SSignatureCase& one, const CSigner& signer, const std::string& services)
{
    const std::string table = Slt(services, 1).substr(4);
    const std::string block = Number(0x010101, 3) + Number(table.size(), 2) + table;
    const std::string signature = signer.Sign(block, one.within);
    return Number(0xFE000001, 4) + (one.changed == "SLT" ? Replaced(block, "bsid", "BSID") : block) +
           Number(signature.size(), 2) + signature;
}

std::string Certificates(const SSignatureCase& one, const CSigner& signer, const std::vector<std::string>& announced)
{
    std::string data = "<ToBeSignedData OCSPRefresh='PT1H'>";
    for (const std::string& der : announced) {
        data += "<Certificates>" + CSigner::Base64(der) + "</Certificates>";
    }
    data +=
        (one.current ? "<CurrentCert>" + CSigner::Base64(signer.KeyId()) + "</CurrentCert>" : "") + "</ToBeSignedData>";
    const std::string signature = CSigner::Base64(signer.Sign(data, one.within));
    return Number(0x06000001, 4) + "<CertificationData>" +
           (one.changed == "CDT" ? Replaced(data, "PT1H", "PT2H") : data) + "<CMSSignedData>" + signature +
           "</CMSSignedData></CertificationData>";
}

std::string Package(const SSignatureCase& one, const CSigner* signer, int service)
{
    const std::string inner = Replaced(
        "Content-Type: multipart/related; boundary=i\n\n--i\nContent-Type: application/route-usd+xml\n\n"
        "<BundleDescriptionROUTE><UserServiceDescription serviceId='" +
            std::to_string(service) + "'/></BundleDescriptionROUTE>\n\n--i--\n",
        "\n", one.lines);
    if (signer == nullptr) {
        return inner;
    }
    const std::string text = one.crlf ? Replaced(inner, "\n", "\r\n") : inner;
    const std::string signature = CSigner::Base64(signer->Sign(text, one.within));
    return Replaced("Content-Type: multipart/signed; protocol=\"application/pkcs7-signature\"; boundary=o\n\n--o\n",
                    "\n", one.lines) +
           (one.changed == "package" ? Replaced(inner, "usd+xml", "xml") : inner) +
           Replaced("\n--o\nContent-Type: application/pkcs7-signature\nContent-Transfer-Encoding: base64\n\n" +
                        signature + "\n--o--\n",
                    "\n", one.lines);
}

std::string Capture(const SSignatureCase& one, const CSigner& root)
{
    const CSigner signer("Signer", one.notBefore, one.notAfter, &root);
    const std::string services = MmtService(1, 6001, 1) + MmtService(2, 6002, 1);
    CCapture capture(1);
    const std::string multi = Multi(one, signer, services);
    const std::string package = Package(one, &signer, 1);
    const std::string other = Package(one, one.bothSigned ? &signer : nullptr, 2);
    for (int i = 0; i < 2; ++i) {
        capture.AddLls(multi);
        capture.AddSession(Lct({1, 0, -1, true}, package), 6001);
        capture.AddSession(Lct({1, 0, -1, true}, other), 6002);
    }
    std::vector<std::string> announced = {root.Der()};
    if (one.announced) {
        announced.push_back(signer.Der());
    }
    if (one.next) {
        announced.push_back(CSigner("Next", k_last + 1, k_last + 40 * k_day, &root).Der());
    }
    // The certificates come behind what they verify.
    capture.AddLls(Certificates(one, signer, announced));
    for (const std::string& table : one.more) {
        capture.AddLls(table);
    }
    for (std::size_t i = 7 + one.more.size(); i < 9; ++i) {
        capture.AddSession("", 9);
    }
    return capture.Bytes();
}

TEST(SignatureRules, EachIsBrokenAlone)
{
    const CSigner root("Root", k_first - k_day, k_last + 400 * k_day);
    const CSigner otherRoot("Other", k_first - k_day, k_last + 400 * k_day);
    const CTemporary trusted(root.Pem() + otherRoot.Pem());
    const CTemporary untrusted(otherRoot.Pem());
    using TCase = SSignatureCase;
    const std::string plainSlt = Slt(MmtService(1, 6001, 1) + MmtService(2, 6002, 1), 1);
    const SSignatureCase cases[] = {
        {""},
        {"", [](TCase& one) { one.within = true; }},
        {"signature-wrong", [](TCase& one) { one.changed = "SLT"; }},
        {"signature-wrong", [](TCase& one) { std::tie(one.changed, one.within) = std::tuple("SLT", true); }},
        {"signature-wrong", [](TCase& one) { one.changed = "CDT"; }},
        {"signature-wrong", [](TCase& one) { std::tie(one.changed, one.bothSigned) = std::tuple("package", true); }},
        {"", [](TCase& one) { one.lines = "\n"; }},
        {"", [](TCase& one) { std::tie(one.lines, one.crlf) = std::tuple("\n", true); }},
        {"certificate-expired", [](TCase& one) { one.notAfter = k_first - 1; }},
        {"certificate-ends-soon", [](TCase& one) { one.notAfter = k_first; }},
        {"certificate-ends-soon", [](TCase& one) { one.notAfter = k_last + 30 * k_day; }},
        {"", [](TCase& one) { one.notAfter = k_last + 30 * k_day + 1; }},
        {"certificate-not-yet-valid", [](TCase& one) { one.notBefore = k_last + 1; }},
        {"", [](TCase& one) { one.notBefore = k_last; }},
        {"", [](TCase& one) { one.next = true; }},
        {"signer-not-announced", [](TCase& one) { one.announced = false; }},
        {"signer-not-announced", [](TCase& one) { std::tie(one.announced, one.within) = std::tuple(false, true); }},
        {"unsigned-sibling",
         [](TCase& one) {
             one.more = {k_rrt, k_rrt};
         }},
        {"", [](TCase& one) { one.more = {k_rrt}; }},
        {"",
         [&](TCase& one) {
             one.more = {plainSlt, plainSlt};
         }},
        {"unsigned-sibling", [](TCase& one) { one.bothSigned = false; }},
        {"", [&](TCase& one) { one.arguments = "--trust " + trusted.Name(); }},
        {"certificate-untrusted", [&](TCase& one) { one.arguments = "--trust " + untrusted.Name(); }},
    };
    int place = -1;
    for (SSignatureCase one : cases) {
        ++place;
        one.edit(one);
        TFindings found =
            Findings(Capture(one, root), {"certificate-", "signature-", "signer-", "unsigned-", "bad-", "document-not"},
                     one.arguments);
        for (auto& [rule, count] : found) {
            count = 1;  // several are signed by the same
        }
        EXPECT_EQ(found, Only(one.broken)) << "case " << place;
    }
}

TEST(SignatureRules, SamplesVerifyAndTheirNeighboursDoNot)
{
    const auto file = [](const char* name) { return ReadFile(DataFile(name)); };
    const std::string table = Number(0x06000001, 4) + file("lls/openssl-cdt.xml");
    for (const auto& [sample, change] :
         {std::pair(file("lls/openssl-signedmultitable.bin"), std::size_t{6}), std::pair(table, table.find("168H")),
          std::pair(file("route/openssl-smime-signed-sls.mime"), std::size_t{1000})}) {
        std::string bytes = sample;
        EXPECT_EQ(Findings(bytes, {"signature-", "certificate-"}), TFindings()) << change;
        bytes.at(change) = static_cast<char>(bytes.at(change) ^ 1);
        EXPECT_EQ(Findings(bytes, {"signature-", "certificate-"}), Only("signature-wrong")) << change;
    }
}

}  // namespace
